# CPack adds scripts that call ldconfig to packages of libraries, whose trigger does that already.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  if(NOT package MATCHES "/liblumetra[^/]*[0-9]_[^/]*\\.deb$")
    continue()
  endif()
  set(unpacked ${package}.unpacked)
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${unpacked} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${unpacked}/DEBIAN/postinst ${unpacked}/DEBIAN/postrm)
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${unpacked} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${unpacked})
endforeach()
