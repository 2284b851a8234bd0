# cpack runs this when the packages are made, and it makes each again with dpkg-deb, for which no file is
# younger than SOURCE_DATE_EPOCH. cpack gives a package with a shared library maintainer scripts that
# call ldconfig, which the trigger of that name does already, and once for all packages.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  get_filename_component(name ${package} NAME)
  set(tree ${package}.tree)
  file(REMOVE_RECURSE ${tree})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
  if(name MATCHES "^${CPACK_VQ_RUNTIME}_")
    file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
  endif()
  execute_process(
    COMMAND dpkg-deb --root-owner-group -Z${CPACK_VQ_COMPRESSION} --build ${tree} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${tree})
endforeach()
