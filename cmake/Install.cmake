# Installation: the library, its two public headers, a CMake package, a pkg-config file and the licences.
include(CMakePackageConfigHelpers)

install(TARGETS specialeffects EXPORT specialeffects-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES framework/SpecialEffectFilter.h framework/SpecialEffectFactory.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/specialeffects/framework)
# The library contains glyphs, whose licence has to go with every copy.
install(FILES effects/animated/GlyphTable.license.txt DESTINATION ${CMAKE_INSTALL_DATADIR}/specialeffects)

install(EXPORT specialeffects-targets NAMESPACE specialeffects::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/specialeffects)
configure_package_config_file(cmake/specialeffects-config.cmake.in
    ${PROJECT_BINARY_DIR}/specialeffects-config.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/specialeffects)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/specialeffects-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/specialeffects-config.cmake
    ${PROJECT_BINARY_DIR}/specialeffects-config-version.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/specialeffects)

# The pkg-config file names its prefix relative to itself, so that an installed copy may be put anywhere.
file(RELATIVE_PATH SE_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" SE_PREFIX_FROM_PKGCONFIG "${SE_PREFIX_FROM_PKGCONFIG}")
configure_file(cmake/specialeffects.pc.in ${PROJECT_BINARY_DIR}/specialeffects.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/specialeffects.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES LICENSE NOTICE NEWS.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
