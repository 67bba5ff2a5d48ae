# Warnings, sanitizers and hardening, as one interface target that every target of ours links.
add_library(quorva_compiler INTERFACE)

target_compile_options(quorva_compiler INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${QUORVA_WARNINGS_AS_ERRORS}>:-Werror>
    -Wno-missing-field-initializers # fields left out of a designated initializer take their default
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported()

if(QUORVA_SANITIZE)
    target_compile_options(quorva_compiler INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(quorva_compiler INTERFACE -fsanitize=address,undefined)
endif()

if(QUORVA_COVERAGE)
    target_compile_options(quorva_compiler INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(quorva_compiler INTERFACE --coverage)
endif()

if(QUORVA_FUZZ)
    target_compile_options(quorva_compiler INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer -g -O1)
    target_link_options(quorva_compiler INTERFACE -fsanitize=address,undefined)
endif()

# A program loads the libraries it uses, not all that the layers beneath it know.
target_link_options(quorva_compiler INTERFACE "LINKER:--as-needed")

set(hardened "$<CONFIG:Release>")
target_compile_definitions(quorva_compiler INTERFACE "$<${hardened}:_GLIBCXX_ASSERTIONS>")
if(NOT CMAKE_CXX_FLAGS MATCHES _FORTIFY_SOURCE) # a distribution's own flags may set it already
    target_compile_definitions(quorva_compiler INTERFACE "$<${hardened}:_FORTIFY_SOURCE=2>")
endif()
target_compile_options(quorva_compiler INTERFACE
    "$<${hardened}:-fstack-protector-strong;-fstack-clash-protection>"
    # g++ 12 gives false alarms about std::string when it optimizes (GCC bug 105651). Elsewhere the
    # option must not be: clang and clang-tidy, which reads the debug build's, refuse unknown ones.
    "$<$<AND:${hardened},$<CXX_COMPILER_ID:GNU>>:-Wno-restrict>")
target_link_options(quorva_compiler INTERFACE
    "$<${hardened}:LINKER:-z,relro,-z,now,-z,noexecstack>")
