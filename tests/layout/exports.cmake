# The library's dynamic symbols are the creation function and the two exported classes, and nothing else.
#
#     cmake -DLIBRARY=... -DNM=... -DREADELF=... -DVERSION=... -P exports.cmake
cmake_minimum_required(VERSION 3.25)

# What a class of the contract consists of. The complete-object constructors (C1) of an abstract class can never
# be called, and some compilers leave them out.
set(filter _ZN20CSpecialEffectFilter)
set(region _ZN23CROISpecialEffectFilter)
set(required
    CreateSpecialEffectFactory
    ${filter}C2Ev                                        # constructor
    ${filter}C2ERKS_                                     # copy constructor
    ${filter}aSERKS_                                     # assignment
    ${filter}18DeletingDestructorEj                      # slot 0
    ${filter}15GetInternalInfoEv                         # slot 15
    ${filter}12GetPropCountEv                            # slot 16
    ${filter}15GetPropTypeInfoEiPDsjS0_jS0_j             # slot 17
    ${filter}15GetPropTypeInfoEiPcjS0_jS0_j              # slot 18
    _ZTV20CSpecialEffectFilter _ZTI20CSpecialEffectFilter _ZTS20CSpecialEffectFilter
    ${region}C2Ev
    ${region}C2ERKS_
    ${region}aSERKS_
    _ZTV23CROISpecialEffectFilter _ZTI23CROISpecialEffectFilter _ZTS23CROISpecialEffectFilter)
set(optional ${filter}C1Ev ${filter}C1ERKS_ ${region}C1Ev ${region}C1ERKS_)

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
    OUTPUT_VARIABLE listing RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "nm cannot read ${LIBRARY}")
endif()
string(REGEX REPLACE " [^\n]*\n" ";" symbols "${listing}")
list(REMOVE_ITEM symbols "")

set(missing ${required})
list(REMOVE_ITEM missing ${symbols})
set(unexpected ${symbols})
list(REMOVE_ITEM unexpected ${required} ${optional})
foreach(symbol IN LISTS missing)
    message(SEND_ERROR "not exported: ${symbol}")
endforeach()
foreach(symbol IN LISTS unexpected)
    message(SEND_ERROR "exported, but not part of the contract: ${symbol}")
endforeach()

include(${CMAKE_CURRENT_LIST_DIR}/library_needs.cmake)
check_library_needs(${LIBRARY} ${READELF} specialeffects ${VERSION})
