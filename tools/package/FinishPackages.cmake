# Run by CPack on the trees of the packages, before it packs them: what Debian wants otherwise than
# an installation from source.
file(GLOB TREES ${CPACK_TEMPORARY_DIRECTORY}/*${CPACK_PACKAGING_INSTALL_PREFIX})
if(NOT TREES)
  message(FATAL_ERROR "no package to finish below ${CPACK_TEMPORARY_DIRECTORY}")
endif()

foreach(TREE ${TREES})
  file(GLOB DOCUMENTS ${TREE}/share/doc/*)
  execute_process(
    COMMAND ${CPACK_ZRHTTP_CHANGELOG} ${DOCUMENTS}/CHANGELOG.md ${CPACK_PACKAGE_NAME}
      ${CPACK_PACKAGE_CONTACT}
    OUTPUT_FILE ${DOCUMENTS}/changelog COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${DOCUMENTS}/CHANGELOG.md)
  file(GLOB PAGES ${TREE}/share/man/man1/*.1)
  execute_process(COMMAND gzip -9n ${DOCUMENTS}/changelog ${PAGES} COMMAND_ERROR_IS_FATAL ANY)
  # The system finds the library in its own place.
  file(GLOB PROGRAMS ${TREE}/bin/*)
  foreach(PROGRAM ${PROGRAMS})
    file(RPATH_REMOVE FILE ${PROGRAM})
  endforeach()
endforeach()
