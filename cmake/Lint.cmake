# Formatter and linters as build steps with stamps: what did not change is not looked at again.
#   lint-format  clang-format      lint-tidy   clang-tidy, against the mingw target
#   lint-cppcheck cppcheck         lint-scripts  shellcheck and pyflakes
#   lint         all of them

set(KELDA_ROOMS include src host webview2 testbed tests)

# kelda_lint_step(target stamp-name SOURCES... COMMAND command...): one stamp, made anew when a source changes.
function(kelda_lint_step target stamp)
    cmake_parse_arguments(arg "" "" "DEPENDS;COMMAND" ${ARGN})
    set(stamp_file ${CMAKE_BINARY_DIR}/lint/${stamp}.stamp)
    get_filename_component(stamp_directory ${stamp_file} DIRECTORY)
    file(MAKE_DIRECTORY ${stamp_directory})
    add_custom_command(OUTPUT ${stamp_file}
        COMMAND ${arg_COMMAND}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp_file}
        DEPENDS ${arg_DEPENDS}
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        COMMENT "${target} ${stamp}"
        VERBATIM)
    set_property(GLOBAL APPEND PROPERTY ${target}_STAMPS ${stamp_file})
endfunction()

function(kelda_collect_sources out_sources out_headers)
    set(sources)
    set(headers)
    foreach(room IN LISTS KELDA_ROOMS)
        file(GLOB_RECURSE found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${room}/*.cpp)
        list(APPEND sources ${found})
        file(GLOB_RECURSE found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${room}/*.h)
        list(APPEND headers ${found})
    endforeach()
    set(${out_sources} ${sources} PARENT_SCOPE)
    set(${out_headers} ${headers} PARENT_SCOPE)
endfunction()

# clang's own view of the target: g++'s C++ library and the platform headers, without g++'s compiler headers.
function(kelda_clang_arguments out)
    set(arguments --extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-Wno-unknown-warning-option)
    foreach(directory IN LISTS CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES)
        if(NOT directory MATCHES "/lib/gcc/[^/]+/[^/]+/include(-fixed)?$")
            list(APPEND arguments --extra-arg=-isystem${directory})
        endif()
    endforeach()
    set(${out} ${arguments} PARENT_SCOPE)
endfunction()

function(kelda_add_lint_target)
    find_program(CLANG_FORMAT clang-format)
    find_program(CLANG_TIDY clang-tidy)
    find_program(CPPCHECK cppcheck)
    find_program(SHELLCHECK shellcheck)
    find_program(PYFLAKES NAMES pyflakes3 pyflakes)
    if(NOT (CLANG_FORMAT AND CLANG_TIDY AND CPPCHECK AND SHELLCHECK AND PYFLAKES))
        if(KELDA_REQUIRE_LINTERS)
            message(FATAL_ERROR "clang-format, clang-tidy, cppcheck, shellcheck and pyflakes3 are all needed.")
        endif()
        return()
    endif()
    if(NOT KELDA_BUILD_TESTS)
        return()
    endif()
    kelda_collect_sources(sources headers)
    kelda_clang_arguments(clang_arguments)
    set(tidy_configurations .clang-tidy testbed/.clang-tidy tests/.clang-tidy)
    list(TRANSFORM tidy_configurations PREPEND ${PROJECT_SOURCE_DIR}/)

    foreach(file IN LISTS sources headers)
        file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR} ${file})
        kelda_lint_step(lint-format format/${name} DEPENDS ${file} ${PROJECT_SOURCE_DIR}/.clang-format
                        COMMAND ${CLANG_FORMAT} --dry-run -Werror ${file})
    endforeach()
    foreach(file IN LISTS sources)
        file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR} ${file})
        kelda_lint_step(lint-tidy tidy/${name} DEPENDS ${file} ${headers} ${tidy_configurations}
                        COMMAND ${CLANG_TIDY} -p ${CMAKE_BINARY_DIR} --quiet ${clang_arguments} ${file})
    endforeach()

    list(TRANSFORM KELDA_ROOMS PREPEND ${PROJECT_SOURCE_DIR}/ OUTPUT_VARIABLE rooms)
    kelda_lint_step(lint-cppcheck cppcheck DEPENDS ${sources} ${headers}
        COMMAND ${CPPCHECK} --quiet --error-exitcode=1 --platform=win64 --library=windows --library=googletest
                --std=c++20 --language=c++ --inline-suppr --enable=warning,performance,portability
                --suppress=missingIncludeSystem ${rooms})

    file(GLOB scripts CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/*.sh ${PROJECT_SOURCE_DIR}/tools/*.sh)
    list(APPEND scripts ${PROJECT_SOURCE_DIR}/tools/run-in-wine ${PROJECT_SOURCE_DIR}/tools/run-unit-test
         ${PROJECT_SOURCE_DIR}/.ci/run)
    kelda_lint_step(lint-scripts shell DEPENDS ${scripts} COMMAND ${SHELLCHECK} -x ${scripts})
    file(GLOB_RECURSE modules CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/testbed/*.py
         ${PROJECT_SOURCE_DIR}/tests/*.py ${PROJECT_SOURCE_DIR}/tools/*.py ${PROJECT_SOURCE_DIR}/webview2/*.py)
    kelda_lint_step(lint-scripts python DEPENDS ${modules} COMMAND ${PYFLAKES} ${modules})

    foreach(target IN ITEMS lint-format lint-tidy lint-cppcheck lint-scripts)
        get_property(stamps GLOBAL PROPERTY ${target}_STAMPS)
        add_custom_target(${target} DEPENDS ${stamps})
        # Also tests, so that they are counted; the lock keeps two of them from building at once.
        add_test(NAME ${target} COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR} --target ${target})
        set_tests_properties(${target} PROPERTIES RESOURCE_LOCK build TIMEOUT 1800)
    endforeach()
    add_custom_target(lint DEPENDS lint-format lint-tidy lint-cppcheck lint-scripts)
endfunction()
