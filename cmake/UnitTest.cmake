# Test programs on GoogleTest, built for the target from Debian's source package.
include(GoogleTest)

set(KELDA_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's sources")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads OFF CACHE BOOL "" FORCE)
add_subdirectory(${KELDA_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

# kelda_add_unit_test(NAME source... [LIBRARIES library...] [ALONE])
# One test program; each of its cases is a test of CTest in a process of its own. ALONE is for cases that need the
# keyboard focus, or something else that there is only one of.
function(kelda_add_unit_test name)
    cmake_parse_arguments(arg "ALONE" "" "LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE kelda_compiler gmock_main ${arg_LIBRARIES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR ${PROJECT_SOURCE_DIR}/tools/run-unit-test)
    set(properties TIMEOUT 60)
    if(arg_ALONE)
        list(APPEND properties RUN_SERIAL TRUE)
    endif()
    gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                         PROPERTIES ${properties})
endfunction()
