# Test programs on GoogleTest, built for the target from Debian's source package.

set(KELDA_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's sources")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads OFF CACHE BOOL "" FORCE)
add_subdirectory(${KELDA_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

# Only for its precompiled headers, which serve every test program.
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test_headers.cpp CONTENT "")
add_library(kelda_test_headers OBJECT ${CMAKE_BINARY_DIR}/test_headers.cpp)
target_link_libraries(kelda_test_headers PRIVATE kelda_compiler gmock)
kelda_precompile_headers(kelda_test_headers
    windows.h gtest/gtest.h gmock/gmock.h algorithm array filesystem functional memory string string_view utility vector)

# kelda_add_unit_test(NAME source... [LIBRARIES library...] [COST cost])
# One test program, which is one test of CTest: tools/run_gtest.py runs its cases in one process and counts them. Tests of a
# high cost begin first.
function(kelda_add_unit_test name)
    cmake_parse_arguments(arg "" "COST" "LIBRARIES" ${ARGN})
    if(NOT arg_COST)
        set(arg_COST 1)
    endif()
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE kelda_compiler gmock_main ${arg_LIBRARIES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    kelda_use_precompiled_headers_of(${name} kelda_test_headers)
    add_test(NAME ${name}
        COMMAND ${Python3_EXECUTABLE} -B ${PROJECT_SOURCE_DIR}/tools/run_gtest.py ${name} $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES TIMEOUT 1800 COST ${arg_COST})
endfunction()
