# Compiler settings of every target of ours, gathered in one interface library.
add_library(kelda_compiler INTERFACE)

target_compile_definitions(kelda_compiler INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
    WINVER=0x0A00 _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000000)

if(MSVC)
    target_compile_options(kelda_compiler INTERFACE /W4 /WX /permissive- /utf-8)
else()
    # -Wno-restrict: GCC 12 sees overlaps in std::string concatenation that are not there.
    target_compile_options(kelda_compiler INTERFACE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wold-style-cast -Wno-restrict -Werror)
    # The modules need no file of the compiler's beside them.
    target_link_options(kelda_compiler INTERFACE -static)
endif()

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()
