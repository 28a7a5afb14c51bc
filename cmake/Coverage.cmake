# Lines are counted in what the project delivers, not in its tests. -O1 is enough for the loops over pixels.
foreach(target module_objects sfx_objects host_parts specialeffects_program gstspecialeffects)
    if(TARGET ${target})
        target_compile_options(${target} PRIVATE -O1 -fprofile-instr-generate -fcoverage-mapping)
    endif()
endforeach()
