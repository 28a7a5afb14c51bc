# Installs the built tree, moves the copy elsewhere, and builds and runs a small outside program against it: once
# as a CMake package, once with the flags of pkg-config.
#
#     cmake -DBUILD=... -DOUTSIDE=... -DSCRATCH=... -DCOMPILER=... -DGENERATOR=... -DFLAGS=... -DPKG_CONFIG=...
#           -DVERSION=... -P installed_copy.cmake
cmake_minimum_required(VERSION 3.25)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(run_program)
    run(${ARGN})
    if(NOT output STREQUAL "41 effects, luma 155\n")
        message(FATAL_ERROR "the outside program says: ${output}")
    endif()
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/first)
file(RENAME ${SCRATCH}/first ${SCRATCH}/prefix)
set(prefix ${SCRATCH}/prefix)

# The two public headers and no other.
file(GLOB_RECURSE headers RELATIVE ${prefix}/include ${prefix}/include/*)
list(SORT headers)
if(NOT headers STREQUAL "specialeffects/framework/SpecialEffectFactory.h;specialeffects/framework/SpecialEffectFilter.h")
    message(SEND_ERROR "installed headers: ${headers}")
endif()
file(GLOB_RECURSE licence ${prefix}/share/specialeffects/GlyphTable.license.txt)
if(licence STREQUAL "")
    message(SEND_ERROR "the licence of the glyphs is not installed")
else()
    file(READ ${licence} text)
    foreach(notice "Copyright (c) 2003 by Bitstream, Inc." "Bitstream Vera is a trademark" "PROVIDED \"AS IS\"")
        string(FIND "${text}" "${notice}" place)
        if(place EQUAL -1)
            message(SEND_ERROR "the licence of the glyphs lacks: ${notice}")
        endif()
    endforeach()
endif()
file(GLOB_RECURSE library ${prefix}/*/libspecialeffects.so.${VERSION})
if(library STREQUAL "")
    message(FATAL_ERROR "libspecialeffects.so.${VERSION} is not installed")
endif()
get_filename_component(library_folder ${library} DIRECTORY)

# As a CMake package.
run(${CMAKE_COMMAND} -S ${OUTSIDE} -B ${SCRATCH}/package -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_CXX_FLAGS=${FLAGS} -DCMAKE_PREFIX_PATH=${prefix} -DWANTED_VERSION=${VERSION})
run(${CMAKE_COMMAND} --build ${SCRATCH}/package)
run_program(${SCRATCH}/package/outside)

# With pkg-config.
if(NOT PKG_CONFIG)
    message("pkg-config is not installed: its half was left out")
    return()
endif()
set(ENV{PKG_CONFIG_PATH} ${library_folder}/pkgconfig)
run(${PKG_CONFIG} --modversion specialeffects)
string(STRIP "${output}" version)
if(NOT version STREQUAL VERSION)
    message(SEND_ERROR "pkg-config says version ${version}")
endif()
run(${PKG_CONFIG} --cflags --libs specialeffects)
separate_arguments(package_flags UNIX_COMMAND "${output}")
run(${COMPILER} -std=c++17 ${FLAGS} ${OUTSIDE}/main.cpp -o ${SCRATCH}/outside ${package_flags})
set(ENV{LD_LIBRARY_PATH} ${library_folder})
run_program(${SCRATCH}/outside)
file(REMOVE_RECURSE ${SCRATCH})
