# What `cmake --install` gives a host: headers, library, CMake and pkg-config files, examples and
# documentation. No installed file names a directory of the machine that built it. The components
# are the Debian packages. The builds with Qt 5 and Qt 6 share no file but those of the render library.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package Lumetra)
set(include_dir ${CMAKE_INSTALL_INCLUDEDIR})
if(qt_suffix)
  string(APPEND package -Qt${LUMETRA_QT_MAJOR})
  string(APPEND include_dir /lumetra${qt_suffix})
endif()
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${package})
set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/lumetra${qt_suffix})

target_include_directories(Lumetra PUBLIC
  $<INSTALL_INTERFACE:${include_dir}/lumetra>
  $<INSTALL_INTERFACE:${include_dir}>)
install(TARGETS Lumetra EXPORT ${package}Targets
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
install(FILES lumetra/lumetra lumetra/lumetra.h
  DESTINATION ${include_dir}/lumetra COMPONENT development)

install(EXPORT ${package}Targets NAMESPACE Lumetra:: DESTINATION ${package_dir}
  COMPONENT development)
configure_package_config_file(cmake/LumetraConfig.cmake.in ${package}Config.cmake
  INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${package}ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/${package}Config.cmake
              ${PROJECT_BINARY_DIR}/${package}ConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# The prefix as seen from the .pc file, so that the installed tree can be moved.
file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/lumetra.pc.in lumetra${qt_suffix}.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lumetra${qt_suffix}.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The render library knows nothing of Qt: both builds install the same one.
set(render_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/LumetraRender)
set(render_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/lumetra-render)
target_include_directories(LumetraRender PUBLIC $<INSTALL_INTERFACE:${render_include_dir}>)
install(TARGETS LumetraRender EXPORT LumetraRenderTargets
  RUNTIME COMPONENT render
  LIBRARY COMPONENT render NAMELINK_COMPONENT render-development
  ARCHIVE COMPONENT render-development)
install(DIRECTORY render DESTINATION ${render_include_dir} COMPONENT render-development
  FILES_MATCHING PATTERN *.h PATTERN colormap_knots.h EXCLUDE PATTERN colormap_slots.h EXCLUDE
  PATTERN compiler.h EXCLUDE PATTERN dye_names.h EXCLUDE PATTERN dye_published.h EXCLUDE
  PATTERN parsed_number.h EXCLUDE PATTERN render_row.h EXCLUDE PATTERN lumetra_render.h EXCLUDE)
install(FILES render/lumetra_render.h render/lumetra_render.hpp DESTINATION ${render_include_dir}
  COMPONENT render-development)
install(EXPORT LumetraRenderTargets NAMESPACE Lumetra:: DESTINATION ${render_package_dir}
  COMPONENT render-development)
configure_package_config_file(cmake/LumetraRenderConfig.cmake.in LumetraRenderConfig.cmake
  INSTALL_DESTINATION ${render_package_dir} NO_SET_AND_CHECK_MACRO
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(LumetraRenderConfigVersion.cmake
  VERSION ${render_version} COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/LumetraRenderConfig.cmake
              ${PROJECT_BINARY_DIR}/LumetraRenderConfigVersion.cmake
  DESTINATION ${render_package_dir} COMPONENT render-development)
configure_file(cmake/lumetra-render.pc.in lumetra-render.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lumetra-render.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT render-development)

install(FILES CHANGELOG.md DESTINATION ${doc_dir} COMPONENT documentation)
install(FILES LICENSE DESTINATION ${doc_dir} COMPONENT licence) # packages bring it in their own way
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html # there once the target docs has been built
  DESTINATION ${doc_dir} COMPONENT documentation OPTIONAL)
install(DIRECTORY examples DESTINATION ${doc_dir} COMPONENT examples)

if(LUMETRA_BUILD_APPS)
  # Finds the library beside it, wherever the tree lies; system folders are searched anyway.
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(RELATIVE_PATH lib_from_bin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(lumetra_command lumetra_viewer PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}")
  endif()
  install(TARGETS lumetra_command RUNTIME COMPONENT tools)
  # Packages bring these, like the licence, in their own way.
  install(FILES packaging/tools/lumetra.1 packaging/tools/lumetra-viewer.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT manual)
  install(FILES packaging/tools/lumetra.bash RENAME lumetra
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions COMPONENT tools)
  install(DIRECTORY workflows DESTINATION ${doc_dir} COMPONENT tools
    USE_SOURCE_PERMISSIONS PATTERN README.md EXCLUDE PATTERN __pycache__ EXCLUDE)
  install(TARGETS lumetra_viewer RUNTIME COMPONENT viewer)
  set(viewer_data apps/viewer/data)
  install(FILES ${viewer_data}/lumetra-viewer.desktop
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/applications COMPONENT viewer)
  install(FILES ${viewer_data}/lumetra-viewer.svg
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/icons/hicolor/scalable/apps COMPONENT viewer)
  install(FILES ${viewer_data}/invalid.lumetra.Viewer.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/metainfo COMPONENT viewer)
endif()
