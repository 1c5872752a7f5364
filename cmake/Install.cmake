# What `cmake --install` gives a host: headers, library, CMake and pkg-config files, examples and
# documentation. No installed file names a directory of the machine that built it. The components
# are the Debian packages.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Lumetra)
set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/lumetra)

target_include_directories(Lumetra PUBLIC
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/lumetra>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS Lumetra EXPORT LumetraTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
install(FILES lumetra/lumetra lumetra/lumetra.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/lumetra COMPONENT development)

install(EXPORT LumetraTargets NAMESPACE Lumetra:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/LumetraConfig.cmake.in LumetraConfig.cmake
  INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(LumetraConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/LumetraConfig.cmake
              ${PROJECT_BINARY_DIR}/LumetraConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# The prefix as seen from the .pc file, so that the installed tree can be moved.
file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/lumetra.pc.in lumetra.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lumetra.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(FILES CHANGELOG.md DESTINATION ${doc_dir} COMPONENT development)
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html # there once the target docs has been built
  DESTINATION ${doc_dir} COMPONENT development OPTIONAL)
install(DIRECTORY examples DESTINATION ${doc_dir} COMPONENT examples)
