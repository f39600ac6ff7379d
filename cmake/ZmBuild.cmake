# How everything below is compiled: options, warnings, sanitizers, reproducible output.

option(BUILD_SHARED_LIBS "Build libZmApi as a shared library" OFF)
option(ZM_WERROR "Treat warnings as errors (on in every preset)" OFF)
option(ZM_LIBFUZZER "Link the fuzz targets with libFuzzer (clang only)" OFF)
set(ZM_SANITIZE "" CACHE STRING "Sanitizers for all code, for example \"address,undefined\"")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(PROJECT_IS_TOP_LEVEL)
  if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release)
  endif()
  if(CMAKE_CXX_FLAGS_RELEASE STREQUAL "-O3 -DNDEBUG")  # CMake's default, not somebody's choice
    set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
  endif()
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(ZM_WERROR)
  add_compile_options(-Werror)
endif()

if(ZM_LIBFUZZER)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "ZM_LIBFUZZER needs clang++ (use the preset \"fuzz\")")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(ZM_SANITIZE)
  add_compile_options(-fsanitize=${ZM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZM_SANITIZE})
endif()

# The same sources give the same bytes wherever they are built: no path of this machine in the
# objects, no time or owner in the archive, no build path in the tool.
add_compile_options(
  "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  set(CMAKE_CXX_ARCHIVE_CREATE "<CMAKE_AR> qcD <TARGET> <LINK_FLAGS> <OBJECTS>")
  set(CMAKE_CXX_ARCHIVE_APPEND "<CMAKE_AR> qD <TARGET> <LINK_FLAGS> <OBJECTS>")
  set(CMAKE_CXX_ARCHIVE_FINISH "<CMAKE_RANLIB> -D <TARGET>")
endif()

# zm_optional(OPTION DIRECTORY [PACKAGE P NAME N]): a part that the library and the tool do without.
# On by default when this is the top-level project and package P is found.
function(zm_optional option directory)
  cmake_parse_arguments(PARSE_ARGV 2 ARG "" "PACKAGE;NAME" "")
  option(${option} "Build ${directory}/" ${PROJECT_IS_TOP_LEVEL})
  if(NOT ${option})
    return()
  endif()
  if(ARG_PACKAGE)
    find_package(${ARG_PACKAGE} QUIET)
    if(NOT ${ARG_PACKAGE}_FOUND)
      message(STATUS "${ARG_NAME} not found: ${directory}/ is not built (${option}=OFF silences this)")
      return()
    endif()
  endif()
  add_subdirectory(${directory})
endfunction()
