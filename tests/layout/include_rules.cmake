# Which folder may include which, checked on the #include lines of the tree.
#
#     cmake -DROOT=... -P include_rules.cmake
#
#   imaging      imaging
#   framework    framework
#   effects/*    framework without the catalogue, imaging, its own folder; never an effect's header but its own
#   facetrack    the same
#   sfx          sfx, framework, imaging; sfx.h nothing of the tree
#   host         its own folder and sfx.h
#   tests/abi    its own folder
#   bridges/*    its own folder, sfx.h; its tests the same and tests/soak/Soak.h
#   web          its own folder, sfx.h
#
# The module itself includes nothing from outside but the standard library and the compiler's intrinsics; the operating
# system's headers are for files named after it.
# Paths start at the root of the tree in the module; elsewhere they may be relative.
cmake_minimum_required(VERSION 3.25)

set(rooms framework imaging effects facetrack sfx host bridges tests bench tools)
list(JOIN rooms "|" any_room)
set(public_headers framework/SpecialEffectFilter.h framework/SpecialEffectFactory.h)

# The includes of a file, in `out`: <name> and "name" both as name, prefixed with < or ".
function(read_includes file out)
    file(STRINGS ${ROOT}/${file} lines REGEX "^[ \t]*#[ \t]*include")
    set(includes "")
    foreach(line IN LISTS lines)
        if(line MATCHES "include[ \t]*([<\"])([^>\"]+)[>\"]")
            list(APPEND includes "${CMAKE_MATCH_1}${CMAKE_MATCH_2}")
        else()
            violation(${file} "an include that cannot be read: ${line}")
        endif()
    endforeach()
    set(${out} "${includes}" PARENT_SCOPE)
endfunction()

function(violation file what)
    message(SEND_ERROR "${file}: ${what}")
endfunction()

function(sources out)
    set(patterns "")
    foreach(folder IN LISTS ARGN)
        foreach(extension h c cpp inc)
            list(APPEND patterns ${ROOT}/${folder}/*.${extension})
        endforeach()
    endforeach()
    file(GLOB_RECURSE found RELATIVE ${ROOT} ${patterns})
    set(${out} "${found}" PARENT_SCOPE)
endfunction()

# Those with a suffix: the compiler's intrinsics, and the C headers of the header for C.
set(standard_headers immintrin.h arm_neon.h wasm_simd128.h stddef.h stdint.h)
# Targets without threads or a file system have not all of the standard library: framework/Mutex.h and imaging/Files.h
# stand for these.
set(missing_headers filesystem fstream mutex shared_mutex thread condition_variable)

# What a file includes from the tree must match `allowed`; what it includes from elsewhere must be standard.
function(check_module_file file allowed)
    read_includes(${file} includes)
    foreach(include IN LISTS includes)
        string(SUBSTRING ${include} 0 1 bracket)
        string(SUBSTRING ${include} 1 -1 name)
        if(bracket STREQUAL "<" AND NOT name MATCHES "^(${any_room})/")
            if(name IN_LIST missing_headers AND NOT file STREQUAL "framework/Mutex.h")
                violation(${file} "<${name}> is not there on every target")
            elseif(NOT name MATCHES "^[a-z0-9_]+$" AND NOT name IN_LIST standard_headers)
                violation(${file} "<${name}> is not of the standard library")
            endif()
        elseif(NOT name MATCHES "${allowed}" OR bracket STREQUAL "<")
            violation(${file} "may not include ${name}")
        endif()
    endforeach()
endfunction()

# The same of a file that may include the operating system's headers given.
function(check_system_file file allowed)
    list(APPEND standard_headers ${ARGN})
    check_module_file(${file} "${allowed}")
endfunction()

# ---- the module ------------------------------------------------------------------------------------
sources(files imaging)
foreach(file IN LISTS files)
    if(file STREQUAL "imaging/FilesPosix.cpp")
        check_system_file(${file} "^imaging/" sys/stat.h)
    elseif(file MATCHES "Windows\\.cpp$")
        check_system_file(${file} "^imaging/" windows.h)
    else()
        check_module_file(${file} "^imaging/")
    endif()
endforeach()

sources(files framework)
foreach(file IN LISTS files)
    if(file MATCHES "Windows\\.cpp$")
        check_system_file(${file} "^framework/" windows.h)
    else()
        check_module_file(${file} "^framework/")
    endif()
endforeach()
foreach(file IN LISTS public_headers)
    check_module_file(${file} "^framework/SpecialEffectFilter\\.h$")
endforeach()

sources(files effects facetrack)
foreach(file IN LISTS files)
    get_filename_component(folder ${file} DIRECTORY)
    if(file MATCHES "Windows\\.cpp$")
        check_system_file(${file} "^(framework/|imaging/|${folder}/)" windows.h)
    else()
        check_module_file(${file} "^(framework/|imaging/|${folder}/)")
    endif()
endforeach()

# An effect's header names the effect. Only the effect itself sees it.
set(effect_headers "")
foreach(file IN LISTS files)
    if(file MATCHES "\\.h$")
        file(STRINGS ${ROOT}/${file} names REGEX "DisplayName = ")
        if(names)
            list(APPEND effect_headers ${file})
        endif()
    endif()
endforeach()
foreach(file IN LISTS files)
    read_includes(${file} includes)
    string(REGEX REPLACE "\\.[a-z]+$" "" stem ${file})
    foreach(include IN LISTS includes)
        string(SUBSTRING ${include} 1 -1 name)
        if(name MATCHES "^framework/Catalogue")
            violation(${file} "may not include the catalogue")
        elseif(name IN_LIST effect_headers AND NOT name STREQUAL "${stem}.h")
            violation(${file} "may not include another effect, ${name}")
        endif()
    endforeach()
endforeach()

# ---- libsfx ----------------------------------------------------------------------------------------
sources(files sfx)
foreach(file IN LISTS files)
    if(file STREQUAL "sfx/sfx.h")
        check_module_file(${file} "^$")
    elseif(file MATCHES "Windows\\.cpp$")
        check_system_file(${file} "^(sfx|imaging)/" windows.h)
    elseif(file STREQUAL "sfx/FilesPosix.cpp")
        # Where the library itself lies is asked of the dynamic linker.
        check_system_file(${file} "^(sfx|imaging)/" sys/stat.h unistd.h dlfcn.h)
    else()
        check_module_file(${file} "^(sfx|framework|imaging)/")
    endif()
endforeach()

# ---- those outside ---------------------------------------------------------------------------------
# Checks that `file` in `room` includes, of the tree, only the room's own files and `allowed`.
function(check_outside_file file room)
    read_includes(${file} includes)
    foreach(include IN LISTS includes)
        string(SUBSTRING ${include} 0 1 bracket)
        string(SUBSTRING ${include} 1 -1 name)
        get_filename_component(folder ${file} DIRECTORY)
        if(name IN_LIST ARGN)
            continue()
        endif()
        set(ours FALSE)
        if(name MATCHES "^(${any_room})/" OR name MATCHES "\\.\\./")
            set(ours TRUE)
        endif()
        if(ours AND NOT name MATCHES "^${room}/[^.]")
            violation(${file} "may not include ${name}")
        elseif(bracket STREQUAL "\"" AND NOT ours AND NOT EXISTS ${ROOT}/${folder}/${name})
            violation(${file} "may not include ${name}: it is not in ${folder}")
        endif()
    endforeach()
endfunction()

sources(files host)
foreach(file IN LISTS files)
    check_outside_file(${file} host sfx/sfx.h)
endforeach()

sources(files bridges)
foreach(file IN LISTS files)
    get_filename_component(folder ${file} DIRECTORY)
    check_outside_file(${file} ${folder} sfx/sfx.h)
endforeach()

sources(files web)
foreach(file IN LISTS files)
    check_outside_file(${file} web sfx/sfx.h)
endforeach()

sources(files tests/abi)
foreach(file IN LISTS files)
    check_outside_file(${file} tests/abi)
endforeach()

foreach(room tests/bridges/frei0r tests/bridges/gstreamer tests/bridges/obs)
    sources(files ${room})
    foreach(file IN LISTS files)
        check_outside_file(${file} ${room} sfx/sfx.h tests/soak/Soak.h)
    endforeach()
endforeach()
