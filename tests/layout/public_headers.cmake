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
