# Builds for the 32-bit target on a 64-bit PC: the PC's own g++ with -m32 (Debian's g++-multilib), headers and libraries
# of a Debian i386 root. The environment variable NYXCONFIG_I386_ROOT names the root, or it is the one that ./dev makes.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)

if(DEFINED ENV{NYXCONFIG_I386_ROOT} AND NOT "$ENV{NYXCONFIG_I386_ROOT}" STREQUAL "")
    set(i386_root "$ENV{NYXCONFIG_I386_ROOT}")
else()
    set(i386_root "${CMAKE_CURRENT_LIST_DIR}/../../build/i386-root")
endif()
get_filename_component(i386_root "${i386_root}" ABSOLUTE)
if(NOT EXISTS "${i386_root}/usr/lib/i386-linux-gnu/cmake/Qt5Core")
    message(FATAL_ERROR "${i386_root} is no i386 root with Qt's QtCore; ./dev cross makes one, "
        "or NYXCONFIG_I386_ROOT names another")
endif()

set(CMAKE_CXX_COMPILER g++)
set(CMAKE_CXX_FLAGS_INIT -m32)
set(CMAKE_SYSROOT "${i386_root}")
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# A 64-bit kernel runs the programs; loader and libraries come from the root.
set(CMAKE_CROSSCOMPILING_EMULATOR "${i386_root}/lib/ld-linux.so.2" --library-path
    "${i386_root}/usr/lib/i386-linux-gnu:${i386_root}/lib/i386-linux-gnu")
