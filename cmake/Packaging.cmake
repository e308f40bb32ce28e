# Debian packages, one per component of Install.cmake; made by cpack in a build folder of the preset "package".

set(runtime_package "libnyxconfig${PROJECT_VERSION_MAJOR}")
set(same_version "(= ${PROJECT_VERSION})")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nyxconfig)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "nyxconfig")
set(CPACK_PACKAGE_CONTACT "nyxconfig maintainers <maintainers@nyxconfig.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime development common)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The libraries go in without debug information, which gets packages of its own (.ddeb).
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/platform")

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The library: reads, writes and compares device footprints, the XML documents
that say what an instrument is and what it consists of, and keeps their history.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "nyxconfig-common (>= ${PROJECT_VERSION})")

set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "For development: headers, CMake package and pkg-config file.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libnyxconfig-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime_package} ${same_version}, qtbase5-dev (>= 5.9)")

set(CPACK_COMPONENT_COMMON_DESCRIPTION "Common files: the folder of the link files, and what else does not depend on
the architecture.")
set(CPACK_DEBIAN_COMMON_PACKAGE_NAME nyxconfig-common)
set(CPACK_DEBIAN_COMMON_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_COMMON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_COMMON_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/packaging/debian/postinst;${PROJECT_SOURCE_DIR}/packaging/debian/postrm")

if(NYXCONFIG_PLATFORM STREQUAL "pc")
    list(APPEND CPACK_COMPONENTS_ALL platform)
    # The stand-ins, or the firmware's libraries in their place.
    string(APPEND CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS
        ", nyxconfig-pc-platform | libvelautil1, nyxconfig-pc-platform | libvelatrace1")
    string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", nyxconfig-pc-platform ${same_version}")
    set(CPACK_COMPONENT_PLATFORM_DESCRIPTION "Stand-ins for the firmware's property store and trace on a PC,
libvelautil and libvelatrace. Not for an instrument, whose firmware brings its own.")
    set(CPACK_DEBIAN_PLATFORM_PACKAGE_NAME nyxconfig-pc-platform)
    set(CPACK_DEBIAN_PLATFORM_PACKAGE_SECTION libs)
    set(CPACK_DEBIAN_PLATFORM_PACKAGE_SHLIBDEPS ON)
    # The names of packages that hold the firmware's own.
    set(CPACK_DEBIAN_PLATFORM_PACKAGE_PROVIDES "libvelautil1, libvelatrace1")
    set(CPACK_DEBIAN_PLATFORM_PACKAGE_CONFLICTS "libvelautil1, libvelatrace1")
    set(CPACK_DEBIAN_PLATFORM_PACKAGE_REPLACES "libvelautil1, libvelatrace1")
endif()

if(NYXCONFIG_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
    set(CPACK_COMPONENT_TOOLS_DESCRIPTION "Command-line tool: footprint shows, verifies and compares device footprints,
explains their history, and puts fleets of them into tables.")
    set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME nyxconfig-tools)
    set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
    set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime_package} (>= ${PROJECT_VERSION})")
    set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "graphviz")
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/DeviceFootprint")
endif()

include(CPack)
