# What every target of this project has in common.

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# nyxconfig_target(<target>): language level, warnings and sanitizers.
function(nyxconfig_target target)
    target_compile_features(${target} PUBLIC cxx_std_17)
    set_target_properties(${target} PROPERTIES CXX_STANDARD 17 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                             $<$<BOOL:${NYXCONFIG_WERROR}>:-Werror>)
    if(NYXCONFIG_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${NYXCONFIG_SANITIZE} -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer)
        # With the sanitizers, gcc takes members of the standard library's regular expressions for uninitialised.
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
        target_link_options(${target} PRIVATE -fsanitize=${NYXCONFIG_SANITIZE})
    endif()
endfunction()
