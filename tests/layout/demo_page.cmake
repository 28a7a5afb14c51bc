# The demo's page is made from what the program says in JSON: every effect gets a card, every property a row.
#
#     cmake -DROOT=... -DAWK=... -DPROGRAM=... -DSCRATCH=... -P demo_page.cmake
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${SCRATCH})
file(MAKE_DIRECTORY ${SCRATCH})
set(effects graphic-pen-3 rain logo-animation sepia)
foreach(effect ${effects})
    execute_process(COMMAND ${PROGRAM} info ${effect} --json OUTPUT_VARIABLE report COMMAND_ERROR_IS_FATAL ANY)
    file(APPEND ${SCRATCH}/effects.txt "\"request\": \"${effect}:A=<1>\",\n${report}")
endforeach()
execute_process(COMMAND ${AWK} -f ${ROOT}/tools/demo_page.awk ${SCRATCH}/effects.txt
    OUTPUT_VARIABLE page COMMAND_ERROR_IS_FATAL ANY)

function(expect_count pattern wanted)
    string(REGEX MATCHALL "${pattern}" found "${page}")
    list(LENGTH found count)
    if(NOT count EQUAL wanted)
        message(SEND_ERROR "${count} times \"${pattern}\" where there should be ${wanted}, in:\n${page}")
    endif()
endfunction()

expect_count("<article id=" 4)
expect_count("</article>" 4)
expect_count("<table>" 3)
expect_count("</table>" 3)
expect_count("No properties" 1)
expect_count("<tr title=" 13)                                         # 1 and 2 and 10 and none
expect_count("<td>drop-size</td><td>3</td><td>2 to 16</td></tr>" 1)
expect_count("<tr title=\"Diameter of a drop in pixels.\">" 1)
expect_count("background: #" 5)
expect_count("<h2>Graphic Pen 3</h2>" 1)
expect_count("-e rain:A=&lt" 1)
file(REMOVE_RECURSE ${SCRATCH})
