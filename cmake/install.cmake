# What `cmake --install` puts in place: the programs, the man page, and the library as a CMake package.
include(CMakePackageConfigHelpers)

install(TARGETS vireloce RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(VIRELOCE_KIT)
    install(TARGETS vireloce-kit RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(TARGETS vireloce_core EXPORT vireloceTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vireloce FILES_MATCHING PATTERN "*.h")
# Installed headers include each other as their users do, so that short paths such as "db/pin.h" stay the users' own.
install(CODE "set(include_dir \"${CMAKE_INSTALL_INCLUDEDIR}\")")
install(SCRIPT cmake/qualifyIncludes.cmake)
install(FILES docs/vireloce.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(VIRELOCE_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/vireloce)
configure_package_config_file(cmake/vireloceConfig.cmake.in ${PROJECT_BINARY_DIR}/vireloceConfig.cmake
    INSTALL_DESTINATION ${VIRELOCE_PACKAGE_DIR}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vireloceConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(EXPORT vireloceTargets NAMESPACE vireloce:: DESTINATION ${VIRELOCE_PACKAGE_DIR})
install(FILES ${PROJECT_BINARY_DIR}/vireloceConfig.cmake ${PROJECT_BINARY_DIR}/vireloceConfigVersion.cmake
    DESTINATION ${VIRELOCE_PACKAGE_DIR})
