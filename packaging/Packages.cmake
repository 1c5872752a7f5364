# Debian packages, one for each component of the installation; scripts/package makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumetra)
set(CPACK_PACKAGE_CONTACT "The libLumetra developers <developers@lumetra.invalid>")
set(CPACK_COMPONENTS_ALL runtime development examples)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)

set(description "libLumetra tints the gray channels of a fluorescence microscope with the colours of
their dyes, stretches levels, applies colour tables and merges shifted channels.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME liblumetra${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${description}\nThis is the library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=") # newer ones of the same name will do

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liblumetra-dev)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${description}\nThis is what building with it needs.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION}), qtbase5-dev, libopencv-dev")

set(CPACK_DEBIAN_EXAMPLES_PACKAGE_NAME lumetra-examples)
set(CPACK_DEBIAN_EXAMPLES_DESCRIPTION "${description}\nThese are programs that use it, as sources.")
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_DEPENDS "liblumetra-dev (>= ${PROJECT_VERSION})")

include(CPack)
