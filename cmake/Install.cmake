# Installation: both libraries with their public headers, CMake packages and pkg-config files, data and licences.
include(CMakePackageConfigHelpers)

# The pkg-config files name their prefix relative to themselves, so that an installed copy may be put anywhere.
file(RELATIVE_PATH SE_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" SE_PREFIX_FROM_PKGCONFIG "${SE_PREFIX_FROM_PKGCONFIG}")

# A library `name`, which is its target, its CMake package and its pkg-config file; its headers lie in or below
# `include_folder`.
function(se_install_library name description include_folder)
    install(TARGETS ${name} EXPORT ${name}-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    set(package ${CMAKE_INSTALL_LIBDIR}/cmake/${name})
    install(EXPORT ${name}-targets NAMESPACE ${name}:: DESTINATION ${package})
    set(SE_LIBRARY ${name})
    set(SE_DESCRIPTION ${description})
    set(SE_INCLUDE_FOLDER ${include_folder})
    configure_package_config_file(cmake/package-config.cmake.in ${PROJECT_BINARY_DIR}/${name}-config.cmake
        INSTALL_DESTINATION ${package})
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/${name}-config-version.cmake
        COMPATIBILITY SameMajorVersion)
    install(FILES ${PROJECT_BINARY_DIR}/${name}-config.cmake ${PROJECT_BINARY_DIR}/${name}-config-version.cmake
        DESTINATION ${package})
    configure_file(cmake/package.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

se_install_library(specialeffects "${PROJECT_DESCRIPTION}: the module" ${CMAKE_INSTALL_INCLUDEDIR}/specialeffects)
install(FILES framework/SpecialEffectFilter.h framework/SpecialEffectFactory.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/specialeffects/framework)
# The library contains glyphs, whose licence has to go with every copy.
install(FILES effects/animated/GlyphTable.license.txt DESTINATION ${CMAKE_INSTALL_DATADIR}/specialeffects)

se_install_library(sfx "${PROJECT_DESCRIPTION} behind a flat C interface" ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES sfx/sfx.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/sfx)
install(FILES sfx/presets.ini DESTINATION ${CMAKE_INSTALL_DATADIR}/specialeffects)

install(FILES LICENSE NOTICE NEWS.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
