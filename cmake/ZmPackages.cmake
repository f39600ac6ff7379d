# Debian packages, one for each part that is installed. Included last: CPack reads what is set here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME torvel)
set(CPACK_PACKAGE_VERSION "${ZM_RELEASE}")
set(CPACK_PACKAGE_CONTACT "The Torvel developers <bugs@torvel.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own, as its first line
set(CPACK_PACKAGE_VENDOR "The Torvel developers")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})

set(CPACK_COMPONENTS_ALL ${ZM_PACKAGES})
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE "${ZM_REVISION}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_TORVEL-TOOLS_PACKAGE_NAME torvel-tools)
set(CPACK_DEBIAN_TORVEL-TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TORVEL-TOOLS_DESCRIPTION "show what a render farm's settings files expand to
zmconfigfile reads macro configuration files, expands sections, parents,
host patterns and references in them, and prints what a worker of a
Torvel render farm will see.")

set(CPACK_DEBIAN_LIBZMAPI-DEV_PACKAGE_NAME libzmapi-dev)
set(CPACK_DEBIAN_LIBZMAPI-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_LIBZMAPI-DEV_PACKAGE_DEPENDS "libexpat1-dev")
set(CPACK_DEBIAN_LIBZMAPI-DEV_DESCRIPTION "class library of the Torvel render farm, development files
The static library, its headers and what CMake and pkg-config need to
find it: texts, lists, hashes, macro configuration files, ranges and
host patterns, expressions, and binary and XML packs.")

set(CPACK_DEBIAN_LIBZMAPI-DOC_PACKAGE_NAME libzmapi-doc)
set(CPACK_DEBIAN_LIBZMAPI-DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_LIBZMAPI-DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_LIBZMAPI-DOC_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_LIBZMAPI-DOC_DESCRIPTION "class library of the Torvel render farm, reference
What every class and operation of the library takes, gives and owns, and
a guide with programs, as HTML.")

include(CPack)
