# The README shows the example host as it is compiled and run by the tests.
#
#     cmake -DREADME=... -DEXAMPLE=... -P readme.cmake
cmake_minimum_required(VERSION 3.25)

if(NOT EXISTS ${README})
    message("there is no README yet")
    return()
endif()
file(READ ${README} readme)
file(READ ${EXAMPLE} example)
string(FIND "${readme}" "```cpp\n${example}```" place)
if(place EQUAL -1)
    message(FATAL_ERROR "README.md does not show docs/example_host.cpp word for word in a ```cpp block")
endif()
