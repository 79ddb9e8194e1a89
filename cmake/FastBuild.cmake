# A quick build: precompiled headers, and the sources of testbed and tests in unity batches. The modules that are shipped keep
# their optimisation. Both hide a missing #include, which tools/check_includes.py and `./lint.sh --alone` find.
option(KELDA_FAST_BUILD "Precompile the platform's headers, and compile testbed and tests in unity batches" OFF)

# Once they are precompiled, GCC no longer spares the system's headers its warnings about possible flows, which are often
# wrong: they are printed, but are no errors. `./lint.sh --alone` compiles what is shipped without precompiled headers, and there
# they are.
function(kelda_tolerate_flow_warnings target)
    if(NOT MSVC)
        target_compile_options(${target} PRIVATE
            -Wno-error=array-bounds -Wno-error=maybe-uninitialized -Wno-error=stringop-overflow -Wno-error=stringop-overread)
    endif()
endfunction()

# kelda_precompile_headers(TARGET header...)
function(kelda_precompile_headers target)
    if(KELDA_FAST_BUILD)
        list(TRANSFORM ARGN REPLACE "(.+)" "<\\1>" OUTPUT_VARIABLE headers)
        target_precompile_headers(${target} PRIVATE ${headers})
        kelda_tolerate_flow_warnings(${target})
    endif()
endfunction()

# kelda_use_precompiled_headers_of(TARGET other): both targets need the same compiler options.
function(kelda_use_precompiled_headers_of target other)
    if(KELDA_FAST_BUILD)
        target_precompile_headers(${target} REUSE_FROM ${other})
        kelda_tolerate_flow_warnings(${target})
    endif()
endfunction()

# Settings of the folders whose programs are never shipped. A batch of that size compiles about as quickly as one of its
# sources without precompiled headers, so that a changed source costs no more than before.
macro(kelda_unshipped_folder)
    set(CMAKE_UNITY_BUILD ${KELDA_FAST_BUILD})
    set(CMAKE_UNITY_BUILD_BATCH_SIZE 5)
    if(KELDA_FAST_BUILD AND NOT MSVC)
        # Not -O0: that leaves so many small functions that linking one test program takes ten seconds.
        add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-O1>)
    endif()
endmacro()
