# Debian packages, one a component: runtime, development, tool, python. scripts/package builds and tries them.
set(QUO_MAINTAINER "libquoFPAlg maintainers <maintainers@libquofpalg.example>" CACHE STRING
    "Maintainer field of the Debian packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libquofpalg)
set(CPACK_PACKAGE_VENDOR libquoFPAlg)
set(CPACK_PACKAGE_CONTACT "${QUO_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE libquofpalg)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Of a package with a library: which package others depend on. Packages without one are left as they are.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)

set(runtime libquofpalg${PROJECT_VERSION})
set(same_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(packaging ${PROJECT_BINARY_DIR}/packaging)
configure_file(packaging/changelog.in ${packaging}/changelog.Debian @ONLY)
execute_process(COMMAND gzip -9nfk ${packaging}/changelog.Debian)

# quo_package(<component> <package> SECTION <section> SUMMARY <line> TEXT <line>... [OVERRIDES <lines>...]): a package
# with its description, its copyright and changelog, and what the package checker is told.
function(quo_package component package)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "SECTION;SUMMARY" "TEXT;OVERRIDES")
  list(JOIN arg_TEXT "\n" text)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${arg_SECTION} PARENT_SCOPE)
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${arg_SUMMARY}\n${text}" PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)

  list(PREPEND arg_OVERRIDES "# The packages are not uploaded to Debian." initial-upload-closes-no-bugs)
  list(JOIN arg_OVERRIDES "\n" overrides)
  file(CONFIGURE OUTPUT ${packaging}/overrides/${package} CONTENT "${overrides}\n")
  install(FILES ${packaging}/overrides/${package} DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
    COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES packaging/copyright ${packaging}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

set(about "The library takes raw gray frames of a fingerprint sensor, cleans and scores"
          "them, inspects them for defects, makes and matches small templates, measures"
          "noise and calibrates the sensor.")

set(CPACK_COMPONENTS_ALL "")
quo_package(runtime ${runtime} SECTION libs
  SUMMARY "image processing for a fingerprint sensor - shared library"
  TEXT ${about}
  OVERRIDES "# The package generator writes these calls; the trigger is there too." maintscript-calls-ldconfig)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/runtime/triggers)

quo_package(development libquofpalg-dev SECTION libdevel
  SUMMARY "image processing for a fingerprint sensor - development files"
  TEXT ${about} "." "This package holds the header, what CMake and pkg-config need to find the"
       "library, and example programs.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime} ${same_version}")
install(DIRECTORY examples/c/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libquofpalg-dev/examples
  COMPONENT development EXCLUDE_FROM_ALL)

if(QUO_BUILD_TOOLS)
  quo_package(tool quofp SECTION graphics
    SUMMARY "command-line tool for frames of a fingerprint sensor"
    TEXT "It makes synthetic frames, cleans, measures and inspects real ones (PNG, PGM or"
         "raw), and draws what the library libquoFPAlg sees in them.")
  set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${runtime} ${same_version}")
endif()

if(QUO_BUILD_PYTHON)
  quo_package(python python3-quofpalg SECTION python
    SUMMARY "image processing for a fingerprint sensor - Python 3"
    TEXT ${about} "." "This package holds the Python module quofpalg, with NumPy arrays in and out.")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${runtime} (>= ${PROJECT_VERSION}), python3 (>= 3.9), python3-numpy")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-matplotlib, python3-pil")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/python/postinst
      ${PROJECT_SOURCE_DIR}/packaging/python/prerm)
  install(FILES python/examples/stages.py DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/python3-quofpalg/examples
    COMPONENT python EXCLUDE_FROM_ALL)
endif()

include(CPack)
