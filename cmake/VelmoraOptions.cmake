# velmora_options: the language level, warnings and sanitizers of all targets.
# Link it PRIVATE, so that the warnings stay with the target itself.

option(VELMORA_WERROR "Treat warnings as errors" OFF)
set(VELMORA_SANITIZE "" CACHE STRING
    "Sanitizers as in -fsanitize=, for example address,undefined or thread")

add_library(velmora_options INTERFACE)

target_compile_features(velmora_options INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)

target_compile_options(velmora_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    $<$<BOOL:${VELMORA_WERROR}>:-Werror>)

# GCC 12 takes some additions to temporary strings for accesses out of bounds.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(velmora_options INTERFACE
        -Wno-error=array-bounds -Wno-error=restrict -Wno-error=stringop-overflow)
endif()

if(VELMORA_SANITIZE)
    set(sanitizer_flags
        -fsanitize=${VELMORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(velmora_options INTERFACE ${sanitizer_flags})
    target_link_options(velmora_options INTERFACE ${sanitizer_flags})
endif()
