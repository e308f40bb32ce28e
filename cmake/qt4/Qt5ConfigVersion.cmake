# Any version of Qt 5 that is asked for is answered with Qt 4.

set(PACKAGE_VERSION "4.8")
set(PACKAGE_VERSION_COMPATIBLE TRUE)
