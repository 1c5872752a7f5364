# Debian packages, one for each component of the installation; scripts/package makes them. The render
# library and the examples are the same for either generation of Qt and come with the build for Qt 5.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumetra${qt_suffix})
# Debian's tools require an address. The domain of this one never exists; see SECURITY.md.
set(CPACK_PACKAGE_CONTACT "The libLumetra authors <authors@lumetra.invalid>")
if(LUMETRA_QT_MAJOR EQUAL 5)
  set(CPACK_COMPONENTS_ALL runtime development render render-development examples documentation)
  set(runtime_package liblumetra${PROJECT_VERSION_MAJOR})
  set(qt_package qtbase5-dev)
else()
  set(CPACK_COMPONENTS_ALL runtime development)
  set(runtime_package liblumetra${qt_suffix}-${PROJECT_VERSION_MAJOR})
  set(qt_package qt${LUMETRA_QT_MAJOR}-base-dev)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/without_ldconfig.cmake)

set(description "libLumetra tints the gray channels of a fluorescence microscope with the
colours of their dyes, sets contrast limits, applies LUTs and merges shifted
channels.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${description}\nThis package contains the library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=") # newer ones of the same name also work

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liblumetra${qt_suffix}-dev)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${description}\nThis package contains the files needed to build with it.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${runtime_package} (= ${PROJECT_VERSION}), ${qt_package}, libopencv-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "lumetra-doc, lumetra-examples")

set(render_description "liblumetra-render makes one image from planes of gray pixels and their display
settings (dye, contrast limits, gamma, offset), for C++ and, by a C interface,
for other languages.")

set(CPACK_DEBIAN_RENDER_PACKAGE_NAME liblumetra-render0)
set(CPACK_DEBIAN_RENDER_DESCRIPTION "${render_description}\nThis package contains the library.")
set(CPACK_DEBIAN_RENDER_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RENDER_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RENDER_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(CPACK_DEBIAN_RENDER_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)

set(CPACK_DEBIAN_RENDER-DEVELOPMENT_PACKAGE_NAME liblumetra-render-dev)
set(CPACK_DEBIAN_RENDER-DEVELOPMENT_DESCRIPTION "${render_description}\nThis package contains the files needed to build with it.")
set(CPACK_DEBIAN_RENDER-DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_RENDER-DEVELOPMENT_PACKAGE_DEPENDS
    "liblumetra-render0 (= ${PROJECT_VERSION}), libopencv-dev")

set(CPACK_DEBIAN_EXAMPLES_PACKAGE_NAME lumetra-examples)
set(CPACK_DEBIAN_EXAMPLES_DESCRIPTION "${description}\nThis package contains the sources of example programs.")
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_DEPENDS "liblumetra-dev (>= ${PROJECT_VERSION}), liblumetra-render-dev (>= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME lumetra-doc)
set(CPACK_DEBIAN_DOCUMENTATION_DESCRIPTION "${description}\nThis package contains the pages on the programs, the libraries and Python.")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
# Up to 1.0.0, the pages were in the package for developers.
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_BREAKS "liblumetra-dev (<= 1.0.0)")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_REPLACES "liblumetra-dev (<= 1.0.0)")

if(LUMETRA_BUILD_APPS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME lumetra-tools)
  set(CPACK_DEBIAN_TOOLS_DESCRIPTION "${description}\nThis package contains the command lumetra, for images, stacks and data sets,\nand recipes for whole plates.")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "lumetra-doc, lumetra-viewer, parallel, snakemake")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
  # The render library is not installed where packages are made, and its interface may change from one
  # version to the next, so the programs ask for the one that they were built with.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/render")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS
      "liblumetra-render0 (= ${PROJECT_VERSION}), fonts-dejavu-core")

  list(APPEND CPACK_COMPONENTS_ALL viewer)
  set(CPACK_DEBIAN_VIEWER_PACKAGE_NAME lumetra-viewer)
  set(CPACK_DEBIAN_VIEWER_DESCRIPTION "${description}\nThis package contains the viewer, for cameras and image files.")
  set(CPACK_DEBIAN_VIEWER_PACKAGE_SECTION science)
  set(CPACK_DEBIAN_VIEWER_PACKAGE_SUGGESTS "lumetra-doc, lumetra-tools")
  set(CPACK_DEBIAN_VIEWER_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_VIEWER_PACKAGE_DEPENDS
      "liblumetra-render0 (= ${PROJECT_VERSION}), fonts-dejavu-core")
endif()

if(LUMETRA_BUILD_PYTHON AND BUILD_SHARED_LIBS AND LUMETRA_QT_MAJOR EQUAL 5)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-lumetra)
  set(CPACK_DEBIAN_PYTHON_DESCRIPTION "${description}\nThis package contains the package lumetra for Python, on numpy.")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS lumetra-doc)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
      "liblumetra-render0 (= ${PROJECT_VERSION}), python3 (>= 3.9), python3-numpy")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
      "${PROJECT_SOURCE_DIR}/packaging/python/postinst;${PROJECT_SOURCE_DIR}/packaging/python/prerm")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
endif()

# Every package contains the licence and the changes, where and as Debian expects them.
foreach(file IN ITEMS changelog tools/lumetra.1 tools/lumetra-viewer.1)
  get_filename_component(name ${file} NAME)
  execute_process(COMMAND gzip --best --no-name --stdout ${CMAKE_CURRENT_LIST_DIR}/${file}
                  OUTPUT_FILE ${PROJECT_BINARY_DIR}/${name}.gz)
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/lumetra.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
  COMPONENT tools EXCLUDE_FROM_ALL)
install(FILES ${PROJECT_BINARY_DIR}/lumetra-viewer.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
  COMPONENT viewer EXCLUDE_FROM_ALL)
install(FILES packaging/doc-base RENAME lumetra-doc.lumetra
  DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc-base COMPONENT documentation EXCLUDE_FROM_ALL)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} name)
  install(FILES packaging/copyright ${PROJECT_BINARY_DIR}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME}
    COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

include(CPack)
