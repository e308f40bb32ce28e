# What is installed, by component:
#   runtime      the library
#   platform     the stand-ins for the firmware's libraries, with NYXCONFIG_PLATFORM=pc only
#   development  headers, links for the linker, CMake package and pkg-config file; of the stand-ins too, and what explains
#                differences (tools/differences)
#   common       what does not depend on the architecture

include(CMakePackageConfigHelpers)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/nyxconfig")

set(shared_libraries nyxconfig)
if(NYXCONFIG_PLATFORM STREQUAL "pc")
    list(APPEND shared_libraries velautil velatrace)
    # A program finds the library, and that the stand-ins beside itself, wherever the prefix is.
    set_target_properties(nyxconfig PROPERTIES INSTALL_RPATH "\$ORIGIN")
endif()
foreach(library IN LISTS shared_libraries)
    set(component platform)
    set(header_folder "${CMAKE_INSTALL_INCLUDEDIR}/nyxconfig/platform")
    if(library STREQUAL "nyxconfig")
        set(component runtime)
        set(header_folder "${CMAKE_INSTALL_INCLUDEDIR}/nyxconfig")
    endif()
    install(TARGETS ${library} EXPORT nyxconfigTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${component} NAMELINK_COMPONENT development
        PUBLIC_HEADER DESTINATION "${header_folder}" COMPONENT development)
    target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${header_folder}>)
endforeach()

# --- CMake package --------------------------------------------------------------------------------------------------

configure_package_config_file(cmake/nyxconfigConfig.cmake.in "${PROJECT_BINARY_DIR}/nyxconfigConfig.cmake"
    INSTALL_DESTINATION "${package_folder}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/nyxconfigConfigVersion.cmake"
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(EXPORT nyxconfigTargets NAMESPACE nyxconfig:: DESTINATION "${package_folder}" COMPONENT development)
install(FILES "${PROJECT_BINARY_DIR}/nyxconfigConfig.cmake" "${PROJECT_BINARY_DIR}/nyxconfigConfigVersion.cmake"
    DESTINATION "${package_folder}" COMPONENT development)

# --- pkg-config -----------------------------------------------------------------------------------------------------

# pc_path(<variable> <folder>): the folder in the words of a pkg-config file, relative to its prefix if it lies below.
function(pc_path variable folder)
    cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
    cmake_path(IS_PREFIX CMAKE_INSTALL_PREFIX "${folder}" NORMALIZE is_below)
    if(is_below)
        cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}")
        set(folder "\${prefix}/${folder}")
    endif()
    set(${variable} "${folder}" PARENT_SCOPE)
endfunction()

pc_path(pc_libdir "${CMAKE_INSTALL_LIBDIR}")
pc_path(pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
# The prefix follows from where the file lies, so that the whole prefix can be moved.
set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
if(pc_libdir MATCHES "^\\\${prefix}/(.*)")
    string(REGEX REPLACE "[^/]+" ".." pc_up "${CMAKE_MATCH_1}")
    set(pc_prefix "\${pcfiledir}/../${pc_up}")
endif()
set(pc_platform_libs "")
if(NYXCONFIG_PLATFORM STREQUAL "pc")
    set(pc_platform_libs " -Wl,-rpath-link,\${libdir}")
endif()
configure_file(cmake/nyxconfig.pc.in "${PROJECT_BINARY_DIR}/nyxconfig.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/nyxconfig.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
    COMPONENT development)

# --- The folder of the link files -----------------------------------------------------------------------------------

install(FILES packaging/tmpfiles.d/nyxconfig.conf DESTINATION lib/tmpfiles.d COMPONENT common)

# --- The schemas of the file formats --------------------------------------------------------------------------------

install(FILES schema/footprint.xsd schema/footprint-link.xsd DESTINATION "${CMAKE_INSTALL_DATADIR}/nyxconfig"
    COMPONENT common)
