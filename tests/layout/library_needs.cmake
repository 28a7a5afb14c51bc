# The dependencies of a shared library.

# Programs link against the major version only. The C++ run-time libraries and the C library are all that it needs.
function(check_library_needs library readelf name version)
    string(REGEX MATCH "^[0-9]+" major ${version})
    execute_process(COMMAND ${readelf} -d ${library} OUTPUT_VARIABLE dynamic)
    if(NOT dynamic MATCHES "soname: \\[lib${name}\\.so\\.${major}\\]")
        message(SEND_ERROR "the soname is not lib${name}.so.${major}")
    endif()
    string(REGEX MATCHALL "NEEDED[^\n]*\\[[^]\n]*\\]" needed "${dynamic}")
    foreach(line IN LISTS needed)
        string(REGEX REPLACE ".*\\[(.*)\\]" "\\1" needs "${line}")
        if(NOT needs MATCHES "^(libstdc\\+\\+|libc\\+\\+|libc\\+\\+abi|libm|libmvec|libgcc_s|libc|ld-linux.*)\\.so")
            message(SEND_ERROR "needs ${needs}")
        endif()
    endforeach()
endfunction()
