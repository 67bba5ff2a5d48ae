# Warnings, sanitizers and hardening, as interface targets: every library and program links
# quorva_compiler, and the tests link quorva_test_compiler.
add_library(quorva_warnings INTERFACE)
add_library(quorva_compiler INTERFACE)
add_library(quorva_test_compiler INTERFACE)
target_link_libraries(quorva_compiler INTERFACE quorva_warnings)
target_link_libraries(quorva_test_compiler INTERFACE quorva_warnings)

target_compile_options(quorva_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${QUORVA_WARNINGS_AS_ERRORS}>:-Werror>
    -pthread
    -Wno-missing-field-initializers # fields left out of a designated initializer take their default
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported()

# One kind of code for libraries and test programs, so that they can share precompiled headers.
target_compile_options(quorva_test_compiler INTERFACE -fPIC)

# The tests' own code is not checked for undefined behaviour: the checks double the time that its
# macros take to compile, and what is tested is checked.
if(QUORVA_SANITIZE)
    target_compile_options(quorva_warnings INTERFACE
        -fsanitize=address -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(quorva_compiler INTERFACE -fsanitize=undefined)
    target_link_options(quorva_warnings INTERFACE -fsanitize=address,undefined)
endif()

if(QUORVA_COVERAGE)
    target_compile_options(quorva_compiler INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(quorva_warnings INTERFACE --coverage)
endif()

if(QUORVA_FUZZ)
    target_compile_options(quorva_compiler INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer -g -O1)
    target_link_options(quorva_compiler INTERFACE -fsanitize=address,undefined)
endif()

# A program loads the libraries it uses, not all that the layers beneath it know.
target_link_options(quorva_warnings INTERFACE "LINKER:--as-needed")

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

# precompile(TARGET OWNER OPTIONS HEADERS...): gives the target the headers that OWNER, which is made here when
# it is first named, has precompiled with the target's options.
function(precompile target owner options)
    if(NOT QUORVA_PRECOMPILED_HEADERS)
        return()
    endif()
    if(NOT TARGET ${owner})
        file(WRITE ${PROJECT_BINARY_DIR}/${owner}.cpp "")
        add_library(${owner} OBJECT ${PROJECT_BINARY_DIR}/${owner}.cpp)
        target_link_libraries(${owner} PRIVATE fmt::fmt Threads::Threads ${options})
        target_precompile_headers(${owner} PRIVATE ${ARGN})
    endif()
    target_precompile_headers(${target} REUSE_FROM ${owner})
endfunction()
