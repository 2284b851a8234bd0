# cpack runs this when the files of every component are in ${CPACK_TEMPORARY_DIRECTORY}/<component>
# and before it makes packages of them: adds to each what Debian asks for.

function(vq_run)  # vq_run(COMMAND...) : a step that must not fail
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(vq_gzip file)  # the same bytes whenever it is made
  vq_run(gzip -9nf ${file})
endfunction()

set(packages ${CPACK_VQ_SOURCE}/cmake/packages)
set(staging ${CPACK_TEMPORARY_DIRECTORY})
set(share usr/share)

# The time of all files in the packages, unless the caller sets another.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND git -C ${CPACK_VQ_SOURCE} log -1 --format=%ct
    OUTPUT_VARIABLE time OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE status)
  if(status)
    file(TIMESTAMP ${CPACK_VQ_SOURCE}/CHANGELOG.md time "%s")
  endif()
  set(ENV{SOURCE_DATE_EPOCH} ${time})
endif()

# The documents are in the directory of the package's name.
file(RENAME ${staging}/documentation/${share}/doc/vq_client_common
  ${staging}/documentation/${share}/doc/libvq-client-common-doc)

if(EXISTS ${staging}/documentation/${share}/doc/libvq-client-common-doc/html)
  file(APPEND ${staging}/documentation/${share}/doc/libvq-client-common-doc/README.md
    "\nThe same and the reference as a site: [html/index.html](html/index.html).\n")
endif()

foreach(pair IN LISTS CPACK_VQ_PACKAGES)
  string(REPLACE "=" ";" pair ${pair})
  list(POP_FRONT pair component package)
  set(doc ${staging}/${component}/${share}/doc/${package})
  file(MAKE_DIRECTORY ${doc})
  file(COPY ${packages}/copyright DESTINATION ${doc})
  execute_process(
    COMMAND python3 ${packages}/changelog.py ${CPACK_VQ_SOURCE}/CHANGELOG.md
      ${CPACK_DEBIAN_PACKAGE_RELEASE} ${CPACK_PACKAGE_CONTACT}
    OUTPUT_FILE ${doc}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
  vq_gzip(${doc}/changelog.Debian)
  file(GLOB manual ${staging}/${component}/${share}/man/man1/*.1)
  foreach(page IN LISTS manual)
    vq_gzip(${page})
  endforeach()
  # Whatever the umask was.
  vq_run(chmod -R u+rwX,go+rX,go-w ${staging}/${component})
endforeach()

# The symbols file. A symbol that it has and the library has not is an error; a new one belongs to
# this version.
file(GLOB library ${staging}/runtime/usr/lib/*/libvq_client_common.so.*.*)
get_filename_component(directory ${CPACK_VQ_SYMBOLS} DIRECTORY)
# Without it dpkg-gensymbols of Debian 13 refuses to work.
file(WRITE ${directory}/debian/control
  "Source: ${CPACK_PACKAGE_NAME}\n\nPackage: ${CPACK_VQ_RUNTIME}\nArchitecture: any\n")
execute_process(
  COMMAND dpkg-gensymbols -c1 -p${CPACK_VQ_RUNTIME} -v${CPACK_PACKAGE_VERSION}
    -I${packages}/symbols -O${CPACK_VQ_SYMBOLS} -e${library}
    -P${staging}/runtime
  WORKING_DIRECTORY ${directory} RESULT_VARIABLE status OUTPUT_VARIABLE answer ERROR_VARIABLE answer)
if(status)
  message(FATAL_ERROR "the library has lost symbols that a release promised\n${answer}")
endif()
