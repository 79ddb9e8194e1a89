# Python's unittest modules as tests of CTest.

# kelda_add_python_tests(FOLDER [COST cost] [ENVIRONMENT NAME=VALUE...]): each test_*.py of a folder of the repository is a
# test; tools/run_unittest.py counts its cases. Tests of a high cost begin first.
function(kelda_add_python_tests folder)
    cmake_parse_arguments(arg "" "COST" "ENVIRONMENT" ${ARGN})
    if(NOT arg_COST)
        set(arg_COST 1)
    endif()
    file(GLOB modules CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/${folder}/test_*.py)
    foreach(module IN LISTS modules)
        string(REGEX REPLACE "\\.py$" "" name ${module})
        string(REPLACE "/" "." name ${name})
        add_test(NAME ${name}
            COMMAND ${Python3_EXECUTABLE} -B ${PROJECT_SOURCE_DIR}/tools/run_unittest.py ${name}
            WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
        set_tests_properties(${name} PROPERTIES TIMEOUT 1800 COST ${arg_COST} ENVIRONMENT "${arg_ENVIRONMENT}")
    endforeach()
endfunction()
