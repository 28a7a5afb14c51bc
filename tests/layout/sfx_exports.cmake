# libsfx exports the functions that its header declares, and nothing else.
#
#     cmake -DLIBRARY=... -DHEADER=... -DNM=... -DREADELF=... -DVERSION=... -P sfx_exports.cmake
cmake_minimum_required(VERSION 3.25)

file(READ ${HEADER} header)
string(REGEX MATCHALL "SFX_API [^;]*[ *]sfx_[a-z_]+[(]" declarations "${header}")
set(declared "")
foreach(declaration IN LISTS declarations)
    string(REGEX MATCH "sfx_[a-z_]+[(]$" name "${declaration}")
    string(REPLACE "(" "" name "${name}")
    list(APPEND declared ${name})
endforeach()
list(LENGTH declared count)
if(count LESS 30)
    message(FATAL_ERROR "found only ${count} functions in ${HEADER}")
endif()

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
    OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE " [^\n]*\n" ";" exported "${listing}")
list(REMOVE_ITEM exported "")

set(missing ${declared})
list(REMOVE_ITEM missing ${exported})
set(unexpected ${exported})
list(REMOVE_ITEM unexpected ${declared})
foreach(symbol IN LISTS missing)
    message(SEND_ERROR "not exported: ${symbol}")
endforeach()
foreach(symbol IN LISTS unexpected)
    message(SEND_ERROR "exported, but not in the header: ${symbol}")
endforeach()

include(${CMAKE_CURRENT_LIST_DIR}/library_needs.cmake)
check_library_needs(${LIBRARY} ${READELF} sfx ${VERSION})
