# What lets a program outside of this project link Tarno::Shared: find_package(Tarno), and pkg-config's tarno.pc.
include(CMakePackageConfigHelpers)

set(package "${CMAKE_INSTALL_LIBDIR}/cmake/Tarno")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/TarnoConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(EXPORT Tarno NAMESPACE Tarno:: FILE TarnoTargets.cmake DESTINATION "${package}" COMPONENT development)
install(FILES cmake/TarnoConfig.cmake "${PROJECT_BINARY_DIR}/TarnoConfigVersion.cmake"
        DESTINATION "${package}" COMPONENT development)

# Both find their files relative to their own place, so that `cmake --install --prefix` can put them anywhere.
file(RELATIVE_PATH prefix_from_pc "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/tarno.pc.in tarno.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/tarno.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
