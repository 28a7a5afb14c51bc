# Compiler settings that the whole tree shares, as interface targets.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()

find_program(SE_CCACHE ccache)
if(SE_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${SE_CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${SE_CCACHE})
endif()

option(SE_WERROR "Treat warnings as errors" ON)
set(SE_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined or thread")

add_library(se_warnings INTERFACE)
target_compile_options(se_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    $<$<BOOL:${SE_WERROR}>:-Werror>)

# Linked by everything: instrumentation has to be everywhere or nowhere.
add_library(se_sanitizers INTERFACE)
if(SE_SANITIZE)
    target_compile_options(se_sanitizers INTERFACE -fsanitize=${SE_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer -g1)
    target_link_options(se_sanitizers INTERFACE -fsanitize=${SE_SANITIZE})
endif()

# Floating results are the same on every processor: no contraction to fused multiply-add, no fast-math.
add_library(se_module_flags INTERFACE)
target_compile_options(se_module_flags INTERFACE -ffp-contract=off)
target_link_libraries(se_module_flags INTERFACE se_sanitizers)

# The shared library `name` exports what the file `exports` lists: .map names patterns for ELF; .def names symbols for
# Windows, and is left out where the sources mark them.
function(se_shared_library name exports)
    set_target_properties(${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR} LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}
        ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    if(WIN32)
        set_target_properties(${name} PROPERTIES PREFIX "")
        if(EXISTS ${exports}.def)
            target_sources(${name} PRIVATE ${exports}.def)
        endif()
    else()
        set_target_properties(${name} PROPERTIES LINK_DEPENDS ${exports}.map)
        target_link_options(${name} PRIVATE LINKER:--version-script=${exports}.map)
    endif()
    # Clang puts the sanitizers' run-time library into programs only; a library refers to the program's.
    if(NOT (SE_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang"))
        target_link_options(${name} PRIVATE LINKER:--no-undefined)
    endif()
endfunction()

# WebAssembly: C++ exceptions by its own instructions, in the form that all browsers have. Nothing is loaded at another
# address. The compiler calls the target's name deprecated, but Debian's packages use it.
if(WASI)
    set(CMAKE_CXX_COMPILE_OPTIONS_PIC "")
    option(SE_WASM_SIMD "Use 128-bit vectors" ON)
    # The files are to be small, and unrolled loops are large.
    add_compile_options(-fno-unroll-loops $<$<BOOL:${SE_WASM_SIMD}>:-msimd128>
        $<$<COMPILE_LANGUAGE:CXX>:-fwasm-exceptions>
        "SHELL:-mllvm -wasm-use-legacy-eh" -Wno-deprecated)
    add_link_options(-Wno-deprecated)
endif()

# Removes the sources of other systems from the list named: ...Windows.cpp is for Windows, ...Posix.cpp for all others.
function(se_leave_out_other_systems list)
    set(other Windows)
    if(WIN32)
        set(other Posix)
    endif()
    list(FILTER ${list} EXCLUDE REGEX "${other}\\.cpp$")
    set(${list} "${${list}}" PARENT_SCOPE)
endfunction()
