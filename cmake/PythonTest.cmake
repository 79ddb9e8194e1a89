# Python's unittest methods as tests of CTest, each in a process of its own.
find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter)

# kelda_add_python_tests(FOLDER [ENVIRONMENT NAME=VALUE...]): the test_*.py modules of a folder of the repository.
function(kelda_add_python_tests folder)
    cmake_parse_arguments(arg "" "" "ENVIRONMENT" ${ARGN})
    file(GLOB modules CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/test_*.py)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${modules})
    execute_process(
        COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/list_python_tests.py ${PROJECT_SOURCE_DIR} ${folder}
        OUTPUT_VARIABLE names OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    string(REPLACE "\n" ";" names "${names}")
    foreach(name IN LISTS names)
        if(name STREQUAL "")
            continue()
        endif()
        add_test(NAME ${name} COMMAND ${Python3_EXECUTABLE} -B -m unittest ${name} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
        set_tests_properties(${name} PROPERTIES TIMEOUT 120 ENVIRONMENT "${arg_ENVIRONMENT}")
    endforeach()
endfunction()
