# The commands of the README work as written, except those that need a camera.
#
#     cmake -DROOT=... -DPROGRAM=... -DSCRATCH=... -P readme_commands.cmake
cmake_minimum_required(VERSION 3.25)

get_filename_component(folder ${PROGRAM} DIRECTORY)
set(ENV{PATH} "${folder}:$ENV{PATH}")
file(REMOVE_RECURSE ${SCRATCH})
file(MAKE_DIRECTORY ${SCRATCH})
file(COPY ${ROOT}/demo DESTINATION ${SCRATCH})

set(run 0)
file(STRINGS ${ROOT}/README.md commands REGEX "^specialeffects ")
foreach(command IN LISTS commands)
    string(REGEX REPLACE " +#.*" "" command "${command}")
    if(command MATCHES "/dev/|cameras")
        continue()
    endif()
    execute_process(COMMAND sh -c "${command}" WORKING_DIRECTORY ${SCRATCH} OUTPUT_QUIET
        RESULT_VARIABLE result ERROR_VARIABLE errors)
    if(NOT result EQUAL 0 OR NOT errors STREQUAL "")
        message(SEND_ERROR "${command}\nends with ${result}: ${errors}")
    endif()
    math(EXPR run "${run} + 1")
endforeach()
if(run LESS 5)
    message(SEND_ERROR "only ${run} commands are left in README.md")
endif()
file(REMOVE_RECURSE ${SCRATCH})
