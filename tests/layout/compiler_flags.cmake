# Wide characters of the contract are 16-bit types of their own: the compiler's wchar_t is never narrowed.
# Floating results are the same everywhere: nothing relaxes them.
#
#     cmake -DROOT=... -DBUILD=... -P compiler_flags.cmake
cmake_minimum_required(VERSION 3.25)

# Put together, so that this file is not its own finding.
string(CONCAT narrowing "-fshort" "-wchar")
string(CONCAT relaxing "-f" "fast-math|-O" "fast|-funsafe" "-math|-fassociative" "-math|-ffp-contract=" "(fast|on)")

file(GLOB_RECURSE files RELATIVE ${ROOT} ${ROOT}/CMakeLists.txt ${ROOT}/*.cmake ${ROOT}/*.sh)
list(FILTER files EXCLUDE REGEX "^build/")
foreach(name CMakePresets.json Makefile .ci/run)
    if(EXISTS ${ROOT}/${name})
        list(APPEND files ${name})
    endif()
endforeach()
list(LENGTH files count)
if(count LESS 3)
    message(FATAL_ERROR "the build files were not found")
endif()
foreach(file IN LISTS files)
    file(READ ${ROOT}/${file} content)
    if(content MATCHES "${narrowing}|${relaxing}")
        message(SEND_ERROR "${file} has ${CMAKE_MATCH_0}")
    endif()
endforeach()

# What the compiler is really called with.
file(READ ${BUILD}/compile_commands.json commands)
if(commands MATCHES "${narrowing}|${relaxing}")
    message(SEND_ERROR "compile_commands.json has ${CMAKE_MATCH_0}")
endif()
file(STRINGS ${BUILD}/compile_commands.json lines REGEX "\"command\".*module_objects")
list(LENGTH lines count)
if(count EQUAL 0)
    message(SEND_ERROR "compile_commands.json names no file of the module")
endif()
foreach(line IN LISTS lines)
    if(NOT line MATCHES "-ffp-contract=off")
        message(SEND_ERROR "compiled without -ffp-contract=off: ${line}")
    endif()
endforeach()
