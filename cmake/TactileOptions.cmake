# Language level, warnings, Qt definitions and sanitizers of everything that is ours.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # The sloppiness is what lets ccache serve translation units that use a precompiled header.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} ${CCACHE_PROGRAM})
endif()

add_library(tactile_options INTERFACE)
target_include_directories(tactile_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_definitions(tactile_options INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_URL_CAST_FROM_STRING
  QT_NO_FOREACH
  QT_NO_KEYWORDS
  QT_DEPRECATED_WARNINGS)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  target_compile_options(tactile_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-align -Wunused -Wformat=2 -Wimplicit-fallthrough
    $<$<BOOL:${TACTILE_WARNINGS_AS_ERRORS}>:-Werror>
    -fpch-preprocess)
endif()

if(MSVC)
  # The sources are UTF-8 whatever the system's code page is.
  target_compile_options(tactile_options INTERFACE /utf-8)
  target_compile_definitions(tactile_options INTERFACE NOMINMAX)
endif()

if(TACTILE_SANITIZERS)
  target_compile_options(tactile_options INTERFACE
    -fsanitize=${TACTILE_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tactile_options INTERFACE -fsanitize=${TACTILE_SANITIZERS})
endif()
