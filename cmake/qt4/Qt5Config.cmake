# Takes the place of Qt 5 in a build with Qt 4: cmake -DQt5_DIR=<this folder>

find_package(Qt4 4.8 REQUIRED QtCore)
if(NOT TARGET Qt5::Core)
    add_library(Qt5::Core ALIAS Qt4::QtCore)
endif()
