# Installs what other projects need to link Tarno::Shared: files for find_package(Tarno), and tarno.pc for pkg-config.
include(CMakePackageConfigHelpers)

set(package "${CMAKE_INSTALL_LIBDIR}/cmake/Tarno")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/TarnoConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(EXPORT Tarno NAMESPACE Tarno:: FILE TarnoTargets.cmake DESTINATION "${package}" COMPONENT development)
install(FILES cmake/TarnoConfig.cmake "${PROJECT_BINARY_DIR}/TarnoConfigVersion.cmake"
        DESTINATION "${package}" COMPONENT development)

# Both name files relative to their own folder, so that they work with any `cmake --install --prefix`.
file(RELATIVE_PATH prefix_from_pc "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/tarno.pc.in tarno.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/tarno.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
