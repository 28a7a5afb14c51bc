# Lines are counted in what the project delivers. The tests here have copies of their own of functions in headers, some of
# which the library runs at compile time only. -O1 is enough for the loops over pixels.
foreach(target module_objects sfx_objects host_parts specialeffects_program gstspecialeffects sfx_frei0r
        make_editor_files obs_plugin framework_tests imaging_tests facetrack_tests sfx_tests)
    if(TARGET ${target})
        target_compile_options(${target} PRIVATE -O1 -fprofile-instr-generate -fcoverage-mapping)
    endif()
endforeach()
