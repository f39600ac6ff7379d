# How everything below is compiled: options, warnings, sanitizers, reproducible output.

option(BUILD_SHARED_LIBS "Build libZmApi as a shared library" OFF)
option(ZM_WERROR "Treat warnings as errors (on in every preset)" OFF)
option(ZM_LIBFUZZER "Link the fuzz targets with libFuzzer (clang only)" OFF)
set(ZM_SANITIZE "" CACHE STRING "Sanitizers for all code, for example \"address,undefined\"")
set(ZM_GTEST_SOURCE "" CACHE PATH
  "GoogleTest's sources, for compilers and flags that the installed library does not go with")

# What the user or an enclosing project chose stays, if it can compile this.
if(NOT CMAKE_CXX_STANDARD OR CMAKE_CXX_STANDARD LESS 20 OR CMAKE_CXX_STANDARD EQUAL 98)
  set(CMAKE_CXX_STANDARD 20)
endif()
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

if(ZM_GTEST_SOURCE)  # before the options below, which are not for others' code
  set(BUILD_GMOCK OFF)
  set(INSTALL_GTEST OFF)
  include(FetchContent)
  FetchContent_Declare(GTest SOURCE_DIR "${ZM_GTEST_SOURCE}" SYSTEM OVERRIDE_FIND_PACKAGE)
  FetchContent_MakeAvailable(GTest)
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

# Files of 2 GiB and more are files on 32-bit machines, too.
add_compile_definitions(_FILE_OFFSET_BITS=64)

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

# zm_optional(OPTION DIRECTORY [PACKAGE]): a part that the library and the tool do without. ON builds
# it and wants PACKAGE, AUTO builds it where PACKAGE is found.
function(zm_optional option directory)
  set(default AUTO)
  if(NOT PROJECT_IS_TOP_LEVEL)
    set(default OFF)
  endif()
  set(${option} ${default} CACHE STRING "Build ${directory}/: ON, OFF or AUTO")
  set(found TRUE)
  if(${option} AND ARGC GREATER 2)
    find_package(${ARGV2} QUIET)
    set(found ${${ARGV2}_FOUND})
    if(NOT found AND NOT ${option} STREQUAL "AUTO")
      message(FATAL_ERROR "${option}: ${ARGV2} was not found")
    endif()
  endif()
  if(${option} AND found)
    add_subdirectory(${directory})
  endif()
endfunction()
