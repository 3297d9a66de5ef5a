# velmora_add_suites(TARGET [PREFIX TEXT] [FILTER PATTERN] [COSTLY SUITE...] PROPERTIES NAME VALUE...)
# Adds a test for each suite of a GoogleTest program. A process for a suite, not for each of its
# tests: loading the media libraries would take longer than most tests do. The costly ones start
# first, so that no core is idle while the last of them ends.
set(velmora_list_suites ${CMAKE_CURRENT_LIST_DIR}/ListSuites.cmake)
function(velmora_add_suites target)
    cmake_parse_arguments(PARSE_ARGV 1 suites "" "PREFIX;FILTER" "COSTLY;PROPERTIES")
    if(NOT suites_FILTER)
        set(suites_FILTER "*")
    endif()
    set(list ${CMAKE_CURRENT_BINARY_DIR}/${target}-${suites_PREFIX}suites.cmake)
    set(listed ${list}.listed)
    add_custom_command(OUTPUT ${listed}
        COMMAND ${CMAKE_COMMAND}
            "-DPROGRAM=$<TARGET_FILE:${target}>" "-DLIST=${list}" "-DPREFIX=${suites_PREFIX}"
            "-DFILTER=${suites_FILTER}" "-DCOSTLY=${suites_COSTLY}"
            "-DPROPERTIES=${suites_PROPERTIES}" -P ${velmora_list_suites}
        COMMAND ${CMAKE_COMMAND} -E touch ${listed}
        DEPENDS ${target} ${velmora_list_suites} VERBATIM)
    add_custom_target(${target}-${suites_PREFIX}suites ALL DEPENDS ${listed})
    set(found ${CMAKE_CURRENT_BINARY_DIR}/${target}-${suites_PREFIX}found.cmake)
    file(WRITE ${found} "include([==[${list}]==] OPTIONAL)\n") # the program may not be built
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${found})
endfunction()
