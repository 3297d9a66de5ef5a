# Writes to LIST a test for each suite of the GoogleTest program PROGRAM; see GoogleTestSuites.cmake.
cmake_minimum_required(VERSION 3.25)
execute_process(
    COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen
        ${PROGRAM} --gtest_list_tests --gtest_filter=${FILTER}
    OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" lines "${output}")
set(tests "")
foreach(line IN LISTS lines)
    if(NOT line MATCHES "^([A-Za-z0-9_/]+)\\.")
        continue()
    endif()
    set(suite ${CMAKE_MATCH_1})
    set(name "[==[${PREFIX}${suite}]==]")
    string(APPEND tests
        "add_test(${name} [==[${PROGRAM}]==] --gtest_brief=1 [==[--gtest_filter=${suite}.*]==])\n")
    string(APPEND tests "set_tests_properties(${name} PROPERTIES")
    foreach(word IN LISTS PROPERTIES)
        string(APPEND tests " [==[${word}]==]")
    endforeach()
    if(suite IN_LIST COSTLY)
        string(APPEND tests " COST 100")
    endif()
    string(APPEND tests ")\n")
endforeach()
if(NOT tests)
    message(FATAL_ERROR "${PROGRAM} has no tests")
endif()
file(WRITE ${LIST} "${tests}")
