# A quick build: precompiled headers everywhere, and the sources of testbed and tests in unity batches. Neither changes what
# is built. Both hide a missing #include, which tools/check_includes.py and `./lint.sh --alone` find.
option(KELDA_FAST_BUILD "Precompile the platform's headers, and compile testbed and tests in unity batches" OFF)

# kelda_precompile_headers(TARGET header...)
function(kelda_precompile_headers target)
    if(KELDA_FAST_BUILD)
        list(TRANSFORM ARGN REPLACE "(.+)" "<\\1>" OUTPUT_VARIABLE headers)
        target_precompile_headers(${target} PRIVATE ${headers})
    endif()
endfunction()

# kelda_use_precompiled_headers_of(TARGET other): both targets need the same compiler options.
function(kelda_use_precompiled_headers_of target other)
    if(KELDA_FAST_BUILD)
        target_precompile_headers(${target} REUSE_FROM ${other})
    endif()
endfunction()

# Settings of the folders whose programs are never shipped. A batch of that size compiles about as quickly as one of its
# sources without precompiled headers, so that a changed source costs no more than before.
macro(kelda_unshipped_folder)
    set(CMAKE_UNITY_BUILD ${KELDA_FAST_BUILD})
    set(CMAKE_UNITY_BUILD_BATCH_SIZE 5)
    if(NOT MSVC)
        add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-O0>)
    endif()
endmacro()
