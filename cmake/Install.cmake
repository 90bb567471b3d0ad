# What is installed, in three components: the shared library, what building against it needs, and
# the tool; and the Debian package of each.
include(CMakePackageConfigHelpers)

set(HEADER_DIR ${CMAKE_INSTALL_INCLUDEDIR}/zrhttpbase3)
set(PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZrHttpBase3)

install(TARGETS ZrHttpBase3_shared EXPORT ZrHttpBase3
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(TARGETS ZrMwMApiWrapper
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/zrhttpbase3 COMPONENT runtime)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/
  DESTINATION ${HEADER_DIR} COMPONENT development FILES_MATCHING PATTERN "*.h"
  PATTERN platform EXCLUDE) # in the tree a link to what follows
install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/include/
  DESTINATION ${HEADER_DIR} COMPONENT development FILES_MATCHING PATTERN "*.h")
install(EXPORT ZrHttpBase3 NAMESPACE ZrHttpBase3:: FILE ZrHttpBase3Config.cmake
  DESTINATION ${PACKAGE_DIR} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZrHttpBase3ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
# The file finds the rest from where it lies itself, wherever it is installed.
file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/zrhttpbase3.pc.in ${PROJECT_BINARY_DIR}/zrhttpbase3.pc
  @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ZrHttpBase3ConfigVersion.cmake
  DESTINATION ${PACKAGE_DIR} COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/zrhttpbase3.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

set(PAGES ${PROJECT_BINARY_DIR}/pages)
install(TARGETS zrhttp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
install(FILES ${PAGES}/zrhttp.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
install(FILES ${PAGES}/zrhttp.bash RENAME zrhttp
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tool)
install(FILES ${PAGES}/_zrhttp
  DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tool)

set(RUNTIME_PACKAGE libzrhttpbase3-${PROJECT_VERSION_MAJOR})
set(DEVELOPMENT_PACKAGE libzrhttpbase3-dev)
set(TOOL_PACKAGE zrhttp)
set(CPACK_PACKAGE_CONTACT "ZrHttpBase3 developers <zrhttpbase3@example.org>")

# What the headers compiled into library and tool want to be passed on with them: the terms, as the
# system's copyright file of the package has them.
function(read_terms VARIABLE LICENCE PACKAGE)
  set(FILE /usr/share/doc/${PACKAGE}/copyright)
  set(TERMS " As in the file \"copyright\" of ${PACKAGE}.\n")
  if(EXISTS ${FILE})
    file(READ ${FILE} TEXT)
    if(TEXT MATCHES "\n\nLicense: ${LICENCE}\n(( [^\n]*\n)+)")
      set(TERMS "${CMAKE_MATCH_1}")
    endif()
  endif()
  set(${VARIABLE} "${TERMS}" PARENT_SCOPE)
endfunction()
read_terms(EXPAT_TERMS Expat nlohmann-json3-dev)
read_terms(BSD_3_CLAUSE_TERMS BSD-3-clause libcli11-dev)
configure_file(${PROJECT_SOURCE_DIR}/tools/package/copyright.in ${PROJECT_BINARY_DIR}/copyright
  @ONLY)

foreach(COMPONENT runtime development tool)
  string(TOUPPER ${COMPONENT} PART)
  set(${PART}_DOCUMENTS ${CMAKE_INSTALL_DATADIR}/doc/${${PART}_PACKAGE})
  install(FILES ${PROJECT_BINARY_DIR}/copyright ${PROJECT_SOURCE_DIR}/README.md
    ${PROJECT_SOURCE_DIR}/SECURITY.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${${PART}_DOCUMENTS} COMPONENT ${COMPONENT})
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
  DESTINATION ${DEVELOPMENT_DOCUMENTS} COMPONENT development
  FILES_MATCHING PATTERN "*.md" PATTERN "*.cpp" PATTERN "CMakeLists.txt"
  PATTERN bank-site EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/bench/README.md ${PROJECT_SOURCE_DIR}/bench/RESULTS.md
  DESTINATION ${DEVELOPMENT_DOCUMENTS}/bench COMPONENT development)

# A project around this one packs for itself.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zrhttpbase3)
set(CPACK_PACKAGE_VENDOR "ZrHttpBase3 developers")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development tool)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/tools/package/FinishPackages.cmake)
set(CPACK_ZRHTTP_CHANGELOG ${PROJECT_SOURCE_DIR}/tools/package/changelog)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SOURCE zrhttpbase3)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${RUNTIME_PACKAGE})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
configure_file(${PROJECT_SOURCE_DIR}/tools/package/shlibs.in ${PROJECT_BINARY_DIR}/shlibs @ONLY)
# By the trigger the linker's cache is renewed as Debian wants it; CPack adds scripts that do it too.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/shlibs
  ${PROJECT_SOURCE_DIR}/tools/package/triggers)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "chromium, ca-certificates")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${DEVELOPMENT_PACKAGE})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME ${TOOL_PACKAGE})
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION web)

include(CPack)
cpack_add_component(runtime DESCRIPTION "HTTP base library of an e-banking client
Fetches and submits web pages by driving a browser, one in the program or a
Chromium, and hands back exactly the bytes that the server sent. Downloads
files, composes forms and headers, and takes replies apart.")
cpack_add_component(development DEPENDS runtime
  DESCRIPTION "HTTP base library of an e-banking client: headers
What building against the library needs: its headers, a CMake package and a
pkg-config file, with the documents and an example for each task.")
cpack_add_component(tool DEPENDS runtime
  DESCRIPTION "Command-line tool of an e-banking client's HTTP base library
Fetches and submits pages by driving a browser, downloads files, composes
forms and reads replies. With a manual page and completions for bash and zsh.")
