# Run by cpack when the packages are written: what it cannot say of a shared library. The linker's
# cache is renewed by dpkg's own trigger instead of scripts, and the library goes beside those of
# other processors.
list(FILTER CPACK_PACKAGE_FILES INCLUDE REGEX "/${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME}_[^/]*$")
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(files ${CPACK_TEMPORARY_DIRECTORY}/unpacked)
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${files} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${files}/DEBIAN/postinst ${files}/DEBIAN/postrm)
  file(WRITE ${files}/DEBIAN/triggers "activate-noawait ldconfig\n")
  file(READ ${files}/DEBIAN/control control)
  string(STRIP "${control}" control)
  file(WRITE ${files}/DEBIAN/control "${control}\nMulti-Arch: same\n")
  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build ${files} ${package}
                  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
