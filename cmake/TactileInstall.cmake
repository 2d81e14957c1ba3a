# Where everything goes, for cmake --install, and for the portable folder that cpack packs.

include(GNUInstallDirs)
set(CMAKE_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/tactile-host)

set(package_dir ${CMAKE_CURRENT_LIST_DIR}/../packaging)
set(TACTILE_RELEASE_DATE 2026-11-23)

foreach(program IN ITEMS tactile-host tactile-host-demo tactile-log tactile-plot tactile-sim)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

set(metainfo ${CMAKE_BINARY_DIR}/packaging/tactile-host.metainfo.xml)
configure_file(${package_dir}/tactile-host.metainfo.xml.in ${metainfo} @ONLY)
install(FILES ${package_dir}/udev/60-tactile-bridges.rules ${package_dir}/udev/61-tactile-bridges-uaccess.rules
  DESTINATION lib/udev/rules.d)
install(FILES ${package_dir}/tactile-host.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${metainfo} DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES ${package_dir}/icons/tactile-host.svg DESTINATION ${icons}/scalable/apps)
foreach(size IN ITEMS 32 48 64 128 256)
  install(FILES ${package_dir}/icons/tactile-host-${size}.png
    DESTINATION ${icons}/${size}x${size}/apps RENAME tactile-host.png)
endforeach()
install(DIRECTORY ${package_dir}/licences DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${package_dir}/../docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.md PATTERN *.png)

# Of the portable folder only: what stands at its top.
set(package_name tactile-host-${PROJECT_VERSION}-linux-x86_64)
configure_file(${package_dir}/portable/README.txt.in ${CMAKE_BINARY_DIR}/packaging/README.txt @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/packaging/README.txt DESTINATION . COMPONENT portable EXCLUDE_FROM_ALL)
install(PROGRAMS ${package_dir}/portable/setup.sh DESTINATION . COMPONENT portable EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR TGZ)
set(CPACK_PACKAGE_FILE_NAME ${package_name})
set(CPACK_PACKAGING_INSTALL_PREFIX "")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL Unspecified portable)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)

if(TACTILE_BUILD_TESTS AND UNIX)
  find_program(DESKTOP_FILE_VALIDATE desktop-file-validate)
  find_program(APPSTREAMCLI appstreamcli)
  if(DESKTOP_FILE_VALIDATE)
    add_test(NAME packaging/desktop_entry COMMAND ${DESKTOP_FILE_VALIDATE} ${package_dir}/tactile-host.desktop)
  endif()
  if(APPSTREAMCLI)
    add_test(NAME packaging/metainfo COMMAND ${APPSTREAMCLI} validate --no-net ${metainfo})
  endif()
endif()
