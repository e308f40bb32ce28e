# The style and the script of the report's page, as constants of the program. Their digests stand in the page, so that a
# browser takes nothing else for style or script.

foreach(asset IN ITEMS style:style.css script:sort.js)
    string(REGEX REPLACE ":.*" "" name ${asset})
    string(REGEX REPLACE ".*:" "${CMAKE_CURRENT_LIST_DIR}/" file ${asset})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    file(READ "${file}" ${name})
    file(SHA256 "${file}" ${name}_sha256)
endforeach()
configure_file("${CMAKE_CURRENT_LIST_DIR}/ReportAssets.cpp.in" "${CMAKE_CURRENT_BINARY_DIR}/ReportAssets.cpp" @ONLY)
