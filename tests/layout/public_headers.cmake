# Each public header compiles on its own and twice over, in C++17 and C++20, without a warning.
#
#     cmake -DROOT=... -DCOMPILER=... -DSCRATCH=... -P public_headers.cmake
cmake_minimum_required(VERSION 3.25)

foreach(header SpecialEffectFilter SpecialEffectFactory)
    foreach(standard 17 20)
        set(source ${SCRATCH}/${header}.cpp)
        file(WRITE ${source} "#include \"framework/${header}.h\"\n#include \"framework/${header}.h\"\n")
        execute_process(
            COMMAND ${COMPILER} -std=c++${standard} -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I${ROOT} ${source}
            RESULT_VARIABLE result ERROR_VARIABLE errors)
        if(NOT result EQUAL 0)
            message(SEND_ERROR "${header}.h does not compile in C++${standard}:\n${errors}")
        endif()
    endforeach()
endforeach()

# The header of libsfx is for C as well.
foreach(language c99 c11 c++11 c++20)
    string(REGEX REPLACE "[0-9]+$" "" suffix ${language})
    string(REPLACE "c++" "cpp" suffix ${suffix})
    set(source ${SCRATCH}/sfx.${suffix})
    file(WRITE ${source} "#include \"sfx/sfx.h\"\n#include \"sfx/sfx.h\"\nsfx_picture picture = SFX_PICTURE_INIT;\n")
    if(suffix STREQUAL "c")
        set(compiler ${C_COMPILER})
    else()
        set(compiler ${COMPILER})
    endif()
    execute_process(
        COMMAND ${compiler} -std=${language} -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I${ROOT} ${source}
        RESULT_VARIABLE result ERROR_VARIABLE errors)
    if(NOT result EQUAL 0)
        message(SEND_ERROR "sfx.h does not compile as ${language}:\n${errors}")
    endif()
endforeach()
