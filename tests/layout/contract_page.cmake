# The page about the contract shows the example host as the tests compile and run it.
#
#     cmake -DPAGE=... -DEXAMPLE=... -P contract_page.cmake
cmake_minimum_required(VERSION 3.25)

file(READ ${PAGE} page)
file(READ ${EXAMPLE} example)
string(FIND "${page}" "```cpp\n${example}```" place)
if(place EQUAL -1)
    message(FATAL_ERROR "${PAGE} does not show docs/example_host.cpp word for word in a ```cpp block")
endif()
