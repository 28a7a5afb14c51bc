# What a Windows build has in addition: the face cascade, which a program built for this machine makes, and import
# libraries for hosts built with Microsoft's compiler, beside those for MinGW.
#
# Such a host links to C names only. Of the module that is the creation function: all else it reaches through tables of
# virtual operations.
set(SE_CASCADE_FOLDER "" CACHE PATH "Folder of haar.txt and its licence, made by a build for this machine")
if(SE_CASCADE_FOLDER)
    set(cascade ${SE_CASCADE_FOLDER}/haar.txt ${SE_CASCADE_FOLDER}/haar.license.txt)
    file(COPY ${cascade} DESTINATION ${PROJECT_BINARY_DIR}/share/specialeffects)
    install(FILES ${cascade} DESTINATION ${CMAKE_INSTALL_DATADIR}/specialeffects)
endif()

# The licences of what is linked into the files, as Debian states them.
foreach(package mingw-w64-x86-64-dev gcc-mingw-w64-x86-64-posix-runtime libstb-dev)
    install(FILES /usr/share/doc/${package}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR}
        RENAME ${package}.copyright.txt OPTIONAL)
endforeach()

find_program(SE_DLLTOOL llvm-dlltool)
if(NOT SE_DLLTOOL)
    message(STATUS "The import libraries for Microsoft's compiler are not built: they need llvm-dlltool")
    return()
endif()

file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/specialeffects.def
    CONTENT "LIBRARY specialeffects.dll\nEXPORTS\n    CreateSpecialEffectFactory\n")
target_link_options(sfx PRIVATE LINKER:--output-def=${PROJECT_BINARY_DIR}/sfx.def)
foreach(library specialeffects sfx)
    add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/${library}.lib
        COMMAND ${SE_DLLTOOL} -m i386:x86-64 -D ${library}.dll -d ${PROJECT_BINARY_DIR}/${library}.def
            -l ${PROJECT_BINARY_DIR}/${library}.lib
        DEPENDS ${library} VERBATIM)
endforeach()
add_custom_target(import_libraries ALL
    DEPENDS ${PROJECT_BINARY_DIR}/specialeffects.lib ${PROJECT_BINARY_DIR}/sfx.lib)
add_dependencies(product import_libraries)
install(FILES ${PROJECT_BINARY_DIR}/specialeffects.lib ${PROJECT_BINARY_DIR}/sfx.lib
    DESTINATION ${CMAKE_INSTALL_LIBDIR})
