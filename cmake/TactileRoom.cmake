# One static library a folder, one test executable a topic.

# The Qt headers that nearly every file includes are compiled once: for the targets that link QtWidgets, and for all others.
add_library(tactile_pch_core OBJECT ${CMAKE_CURRENT_LIST_DIR}/pch.cpp)
target_link_libraries(tactile_pch_core PRIVATE tactile_options Qt5::Core)
target_precompile_headers(tactile_pch_core PRIVATE ${CMAKE_CURRENT_LIST_DIR}/pch_core.h)

add_library(tactile_pch_widgets OBJECT ${CMAKE_CURRENT_LIST_DIR}/pch.cpp)
target_link_libraries(tactile_pch_widgets PRIVATE tactile_options Qt5::Widgets)
target_precompile_headers(tactile_pch_widgets PRIVATE ${CMAKE_CURRENT_LIST_DIR}/pch_widgets.h)

set_target_properties(tactile_pch_core tactile_pch_widgets PROPERTIES
  POSITION_INDEPENDENT_CODE ON AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)

# tactile_configure(<target> [WIDGETS] [NO_PCH]): what every target of ours has in common.
function(tactile_configure target)
  cmake_parse_arguments(ARG "WIDGETS;NO_PCH" "" "" ${ARGN})
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_link_libraries(${target} PRIVATE tactile_options)
  if(ARG_NO_PCH)
    return()
  endif()
  if(ARG_WIDGETS)
    target_precompile_headers(${target} REUSE_FROM tactile_pch_widgets)
  else()
    target_precompile_headers(${target} REUSE_FROM tactile_pch_core)
  endif()
endfunction()

# Adds library tactile_<name> of the given type, and its alias tactile::<name>.
function(tactile_add_library name type)
  cmake_parse_arguments(ARG "WIDGETS" "" "SOURCES;LINK" ${ARGN})
  add_library(tactile_${name} ${type} ${ARG_SOURCES})
  add_library(tactile::${name} ALIAS tactile_${name})
  target_include_directories(tactile_${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(tactile_${name} PUBLIC Qt5::Core ${ARG_LINK})
  if(ARG_WIDGETS)
    target_link_libraries(tactile_${name} PUBLIC Qt5::Widgets)
    tactile_configure(tactile_${name} WIDGETS)
  else()
    tactile_configure(tactile_${name})
  endif()
endfunction()

# tactile_add_room(<name> [WIDGETS] SOURCES ... [LINK ...]): the static library of a folder. WIDGETS says that the room links
# QtWidgets. LINK is public.
function(tactile_add_room name)
  tactile_add_library(${name} STATIC ${ARGN})
endfunction()

# tactile_add_provider(<name> SOURCES ... [LINK ...]): an object library, so that the vendor operations are in the program
# whatever the order of linking.
function(tactile_add_provider name)
  tactile_add_library(${name} OBJECT ${ARGN})
endfunction()
