# Qwt draws the plotter's curves. It comes without a package file of its own for CMake, and its name bears that of Qt or not.

if(TACTILE_BUILD_PLOT)
  find_path(QWT_INCLUDE_DIR qwt_plot.h PATH_SUFFIXES qwt qwt-qt5 qt5/qwt)
  find_library(QWT_LIBRARY NAMES qwt-qt5 qwt)
  mark_as_advanced(QWT_INCLUDE_DIR QWT_LIBRARY)
  if(QWT_INCLUDE_DIR AND QWT_LIBRARY)
    add_library(tactile_qwt UNKNOWN IMPORTED)
    set_target_properties(tactile_qwt PROPERTIES
      IMPORTED_LOCATION ${QWT_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${QWT_INCLUDE_DIR})
  else()
    message(STATUS "Qwt is not installed: everything but the plotter is built")
    set(TACTILE_BUILD_PLOT OFF)
  endif()
endif()
