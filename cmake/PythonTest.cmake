# Python's unittest methods as tests of CTest, each in a process of its own.

# kelda_add_python_tests(FOLDER [ALONE] [ENVIRONMENT NAME=VALUE...]): the test_*.py modules of a folder of the repository.
# ALONE is for tests that need the display, or something else that there is only one of.
function(kelda_add_python_tests folder)
    cmake_parse_arguments(arg "ALONE" "" "ENVIRONMENT" ${ARGN})
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
        set_tests_properties(${name} PROPERTIES TIMEOUT 300 ENVIRONMENT "${arg_ENVIRONMENT}")
        if(arg_ALONE)
            set_tests_properties(${name} PROPERTIES RUN_SERIAL TRUE)
        endif()
    endforeach()
endfunction()
