# What "cmake --install" puts where, in parts: the tool (torvel-tools), what a program needs that
# uses the library (libzmapi-dev) and, only as a package, its reference (libzmapi-doc).
# scripts/package makes a Debian package of each.
include(CMakePackageConfigHelpers)

option(ZM_INSTALL "Install the library and the tool" ${PROJECT_IS_TOP_LEVEL})
option(ZM_DEBIAN "Install documents as Debian's packages do, with the prefix /usr" OFF)
if(NOT ZM_INSTALL)
  return()
endif()

set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(packaging "${PROJECT_SOURCE_DIR}/packaging")
set(made "${PROJECT_BINARY_DIR}/packaging")
set(tools COMPONENT torvel-tools)
set(dev COMPONENT libzmapi-dev)

# The tool and the library with its headers.
file(RELATIVE_PATH to_libdir "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
if(BUILD_SHARED_LIBS)
  set_target_properties(zmconfigfile zmconfigcheck PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libdir}")
endif()
install(TARGETS zmconfigfile zmconfigcheck RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" ${tools})
install(TARGETS ZmApi EXPORT ZmApiTargets
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" ${dev}
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" ${dev}
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/torvel" ${dev})

# find_package(ZmApi)
set(cmakedir "${CMAKE_INSTALL_LIBDIR}/cmake/ZmApi")
install(EXPORT ZmApiTargets NAMESPACE ZmApi:: DESTINATION "${cmakedir}" ${dev})
configure_package_config_file("${packaging}/ZmApiConfig.cmake.in" "${made}/ZmApiConfig.cmake"
  INSTALL_DESTINATION "${cmakedir}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${made}/ZmApiConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${made}/ZmApiConfig.cmake" "${made}/ZmApiConfigVersion.cmake"
  DESTINATION "${cmakedir}" ${dev})

# pkg-config: the prefix is found from where the file lies, so that the tree can be moved.
file(RELATIVE_PATH ZM_PC_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" ZM_PC_PREFIX "${ZM_PC_PREFIX}")
if(NOT BUILD_SHARED_LIBS)  # the archive alone: whoever links it links Expat too, also without --static
  set(ZM_PC_REQUIRES "Requires: expat")
endif()
configure_file("${packaging}/ZmApi.pc.in" "${made}/ZmApi.pc" @ONLY)
install(FILES "${made}/ZmApi.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" ${dev})

# Completion, where each shell looks. Debian's zsh looks for packages' files in a directory of
# their own, and for local ones where every other zsh does.
set(ZM_ZSH_COMPLETIONS_DIR "" CACHE STRING
  "Where the completion for zsh is installed; empty: where the zsh of the prefix looks")
if(ZM_ZSH_COMPLETIONS_DIR)
  set(zshdir "${ZM_ZSH_COMPLETIONS_DIR}")
elseif(CMAKE_INSTALL_PREFIX STREQUAL "/usr" AND EXISTS "/etc/debian_version")
  set(zshdir "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
else()
  set(zshdir "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
endif()
set(ZM_BASH_COMPLETIONS_DIR "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" CACHE STRING
  "Where the completion for bash is installed")
foreach(tool zmconfigfile zmconfigcheck)
  install(FILES "${PROJECT_SOURCE_DIR}/completions/${tool}.bash" RENAME ${tool}
    DESTINATION "${ZM_BASH_COMPLETIONS_DIR}" ${tools})
  install(FILES "${PROJECT_SOURCE_DIR}/completions/_${tool}" DESTINATION "${zshdir}" ${tools})
endforeach()

# Manual pages, compressed as man pages are everywhere; without gzip as they are.
set(ZM_MAN_PAGES
  zmconfigcheck.1 zmconfigfile.1 zmconfigfile.5)

find_program(ZM_GZIP gzip)
function(zm_install_gzipped file name)  # FILE as NAME.gz; further arguments go to install()
  if(NOT ZM_GZIP)
    install(FILES "${file}" RENAME "${name}" ${ARGN})
    return()
  endif()
  set(gz "${PROJECT_BINARY_DIR}/gz/${name}.gz")
  if(NOT TARGET gz-${name})
    add_custom_command(OUTPUT "${gz}" DEPENDS "${file}" VERBATIM
      COMMAND "${CMAKE_COMMAND}" -E make_directory "${PROJECT_BINARY_DIR}/gz"
      COMMAND "${ZM_GZIP}" -9nc "${file}" > "${gz}")
    add_custom_target(gz-${name} ALL DEPENDS "${gz}")
  endif()
  install(FILES "${gz}" ${ARGN})
endfunction()

foreach(page IN LISTS ZM_MAN_PAGES)
  string(REGEX MATCH "[0-9]$" section "${page}")
  zm_install_gzipped("${PROJECT_SOURCE_DIR}/man/${page}" "${page}"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" ${tools})
endforeach()

# Licence, guide and examples. Each Debian package has a document directory of its own.
set(docdir_torvel-tools "${CMAKE_INSTALL_DOCDIR}")
set(docdir_libzmapi-dev "${CMAKE_INSTALL_DOCDIR}")
if(ZM_DEBIAN)
  set(ZM_PACKAGES torvel-tools libzmapi-dev)
  if(TARGET docs AND DOXYGEN_FOUND AND ZM_DOT)
    list(APPEND ZM_PACKAGES libzmapi-doc)
    install(DIRECTORY "${PROJECT_BINARY_DIR}/docs/html"
      DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/libzmapi-doc" COMPONENT libzmapi-doc)
  endif()
  configure_file("${packaging}/changelog.in" "${made}/changelog" @ONLY)
  foreach(part IN LISTS ZM_PACKAGES)
    set(docdir_${part} "${CMAKE_INSTALL_DATADIR}/doc/${part}")
    install(FILES "${packaging}/copyright" DESTINATION "${docdir_${part}}" COMPONENT ${part})
    install(FILES "${packaging}/lintian-overrides" RENAME "${part}"
      DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" COMPONENT ${part})
    zm_install_gzipped("${made}/changelog" changelog.Debian
      DESTINATION "${docdir_${part}}" COMPONENT ${part})
  endforeach()
else()
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" ${tools})
endif()
install(FILES "${PROJECT_SOURCE_DIR}/examples/farm.conf"
  DESTINATION "${docdir_torvel-tools}/examples" ${tools})
install(FILES "${PROJECT_SOURCE_DIR}/docs/zmconfigcheck.schema.json"
  DESTINATION "${docdir_torvel-tools}" ${tools})
install(FILES "${PROJECT_SOURCE_DIR}/docs/guide.md" DESTINATION "${docdir_libzmapi-dev}" ${dev})
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/" DESTINATION "${docdir_libzmapi-dev}/examples"
  ${dev} FILES_MATCHING PATTERN "*.cpp" PATTERN "*.out")
if(ZM_DEBIAN)  # else both directories are one
  install(FILES "${PROJECT_SOURCE_DIR}/examples/farm.conf"
    DESTINATION "${docdir_libzmapi-dev}/examples" ${dev})
endif()

# Takes away what the last "cmake --install" put there, and the directories that it made.
add_custom_target(uninstall VERBATIM
  COMMAND "${CMAKE_COMMAND}" -D "MANIFEST=${PROJECT_BINARY_DIR}/install_manifest.txt"
          -P "${CMAKE_CURRENT_LIST_DIR}/ZmUninstall.cmake")

if(ZM_DEBIAN)
  include(ZmPackages)
endif()
