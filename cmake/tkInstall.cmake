# Installation (make install, PREFIX honoured) and the Debian package (make package).
include(GNUInstallDirs)

set(TK_APP_ID "com.tekamo.ChronoletPlus")

install(TARGETS chronolet RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES "${PROJECT_SOURCE_DIR}/resources/chronolet.1"
  DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")

if(TARGET chronolet-plus)
  install(TARGETS chronolet-plus RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
  install(FILES "${PROJECT_SOURCE_DIR}/resources/${TK_APP_ID}.desktop"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
  configure_file("${PROJECT_SOURCE_DIR}/resources/${TK_APP_ID}.metainfo.xml"
    "${CMAKE_BINARY_DIR}/generated/${TK_APP_ID}.metainfo.xml" @ONLY)
  install(FILES "${CMAKE_BINARY_DIR}/generated/${TK_APP_ID}.metainfo.xml"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")

  # The icon theme takes the SVG as it is and PNGs the build renders from it, for the
  # desktops and sizes that don't scale SVG themselves.
  set(tk_icon_svg "${PROJECT_SOURCE_DIR}/resources/images/chronolet.svg")
  set(tk_icon_sizes 16 24 32 48 64 128 256)
  set(tk_icon_root "${CMAKE_BINARY_DIR}/icons")
  add_executable(tk_render_icon "${PROJECT_SOURCE_DIR}/tools/icons/tkRenderIcon.cpp")
  target_link_libraries(tk_render_icon PRIVATE Qt6::Gui Qt6::Svg)
  set(tk_icon_pngs "")
  foreach(size IN LISTS tk_icon_sizes)
    list(APPEND tk_icon_pngs "${tk_icon_root}/${size}x${size}/apps/${TK_APP_ID}.png")
  endforeach()
  add_custom_command(OUTPUT ${tk_icon_pngs}
    COMMAND tk_render_icon "${tk_icon_svg}" "${tk_icon_root}" ${tk_icon_sizes}
    DEPENDS tk_render_icon "${tk_icon_svg}"
    COMMENT "Rendering the application icon")
  add_custom_target(tk_icons ALL DEPENDS ${tk_icon_pngs})
  install(DIRECTORY "${tk_icon_root}/" DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor")
  install(FILES "${tk_icon_svg}" DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps"
    RENAME "${TK_APP_ID}.svg")
endif()

set(CPACK_GENERATOR "DEB")
set(CPACK_PACKAGE_NAME "chronolet-plus")
set(CPACK_PACKAGE_VENDOR "Tekamo")
set(CPACK_PACKAGE_CONTACT "Tekamo <support@tekamo.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "time tracker for people who bill their time")
set(CPACK_PACKAGE_DESCRIPTION "Named timers with a job record, a time sheet with undo, copy and \
paste, totals and a printed report, billing code lists, and the command line chronolet over \
the same files.")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME "DEB-DEFAULT")
set(CPACK_DEBIAN_PACKAGE_SECTION "utils")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The images are SVG, read through Qt's image and icon plugins, which dpkg-shlibdeps can't
# see in the executable.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
set(CPACK_DEBIAN_COMPRESSION_TYPE "gzip")
include(CPack)
