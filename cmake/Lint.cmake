# The steps of the linters, which lint.sh runs. They need the flags of each source by itself, from compile_commands.json, so
# the build folder must not use unity files or precompiled headers.
set(KELDA_LINTERS clang-format clang-tidy cppcheck shellcheck pyflakes3)

# kelda_add_lint_steps(): target lint-steps writes lint/steps.ninja in the build folder, and the headers that the build generates.
function(kelda_add_lint_steps)
    foreach(linter IN LISTS KELDA_LINTERS)
        find_program(KELDA_LINTER_${linter} ${linter})
        if(NOT KELDA_LINTER_${linter})
            if(KELDA_REQUIRE_LINTERS)
                message(FATAL_ERROR "${linter} is missing; the linters are ${KELDA_LINTERS}.")
            endif()
            return()
        endif()
    endforeach()
    if(NOT CMAKE_EXPORT_COMPILE_COMMANDS OR NOT KELDA_BUILD_TESTS OR KELDA_FAST_BUILD)
        return()
    endif()
    add_custom_target(lint-steps
        COMMAND ${Python3_EXECUTABLE} -B ${PROJECT_SOURCE_DIR}/tools/lint_steps.py ${CMAKE_BINARY_DIR}
                --system-headers "${CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES}"
        VERBATIM)
    add_dependencies(lint-steps webview2_not_implemented_header)
endfunction()
