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
  # cpack's packages of debug symbols have the modes of the umask and md5sums of its own directory.
  execute_process(
    COMMAND sh -c "export LC_ALL=C && chmod -R u+rwX,go+rX,go-w . && find . -path ./DEBIAN \
-prune -o -type f -printf '%P\\0' | sort -z | xargs -0 md5sum >DEBIAN/md5sums"
    WORKING_DIRECTORY ${tree} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(
    COMMAND dpkg-deb --root-owner-group -Z${CPACK_VQ_COMPRESSION} --build ${tree} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${tree})
endforeach()
