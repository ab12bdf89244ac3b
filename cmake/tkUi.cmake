# The Qt 6 layer: ui/ builds the static library tk_ui (moc, uic and rcc run
# automatically), app/ the executable. Designer files and images live under
# resources/, where AUTOUIC looks for the forms that ui/ includes.
find_package(Qt6 REQUIRED COMPONENTS Widgets PrintSupport Network Svg DBus)
# The X11 screen saver extension's client library, for the user's idle time on an X11
# desktop. Without it the application still builds and asks the session bus alone.
find_package(X11)

file(GLOB TK_UI_SOURCES CONFIGURE_DEPENDS
  "${PROJECT_SOURCE_DIR}/ui/*.cpp" "${PROJECT_SOURCE_DIR}/ui/*.h")
file(GLOB TK_UI_RESOURCES CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/resources/*.qrc")
# "Timer menu.ui" keeps the name the timer window asks for, and a file name
# with a blank is beyond AUTOUIC's include scanner: uic runs on it here, into
# a header whose name AUTOUIC leaves alone.
set(TK_TIMER_MENU_FORM "${CMAKE_CURRENT_BINARY_DIR}/tk_ui_forms/tkTimerMenuForm.h")
add_custom_command(OUTPUT "${TK_TIMER_MENU_FORM}"
  COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_CURRENT_BINARY_DIR}/tk_ui_forms"
  COMMAND Qt6::uic -o "${TK_TIMER_MENU_FORM}" "${PROJECT_SOURCE_DIR}/resources/Timer menu.ui"
  DEPENDS "${PROJECT_SOURCE_DIR}/resources/Timer menu.ui"
  VERBATIM)
add_library(tk_ui STATIC ${TK_UI_SOURCES} ${TK_UI_RESOURCES} "${TK_TIMER_MENU_FORM}")
target_include_directories(tk_ui PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/tk_ui_forms")
set_target_properties(tk_ui PROPERTIES
  AUTOMOC ON AUTOUIC ON AUTORCC ON
  AUTOUIC_SEARCH_PATHS "${PROJECT_SOURCE_DIR}/resources")
target_include_directories(tk_ui PUBLIC "${PROJECT_SOURCE_DIR}")
target_link_libraries(tk_ui PUBLIC ${TK_ALL_LIBRARIES}
  Qt6::Widgets Qt6::PrintSupport Qt6::Network Qt6::Svg Qt6::DBus)
if(X11_FOUND AND X11_Xss_FOUND)
  target_link_libraries(tk_ui PRIVATE X11::X11 X11::Xss)
  target_compile_definitions(tk_ui PRIVATE TK_HAVE_XSS)
endif()
target_compile_definitions(tk_ui PUBLIC
  TK_VERSION="${PROJECT_VERSION}" QT_NO_KEYWORDS)

file(GLOB TK_APP_SOURCES CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/app/*.cpp")
if(TK_APP_SOURCES)
  add_executable(chronolet-plus ${TK_APP_SOURCES})
  target_link_libraries(chronolet-plus PRIVATE tk_ui tk_cli_client)
  set_target_properties(chronolet-plus PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")
endif()

# Renders every window to PNG under a display (make screenshots).
add_executable(tk_screenshots
  "${PROJECT_SOURCE_DIR}/tools/screenshots/tkScreenshots.cpp"
  "${PROJECT_SOURCE_DIR}/tools/screenshots/tkSupportScreenshots.cpp"
  "${PROJECT_SOURCE_DIR}/tools/screenshots/tkExtrasScreenshots.cpp")
target_link_libraries(tk_screenshots PRIVATE tk_ui)

# The application's own version file, which the update check compares with
# the one on the server: written by the build with the project's version and
# a build number, and compiled into the resources as ":/cltmac.xml".
set(TK_BUILD_NUMBER "" CACHE STRING
  "Build number of the version file; empty takes the number of commits")
set(TK_UPDATE_SERVER "https://www.tekamo.com" CACHE STRING
  "Server of the version feed (/updates/cltmac.xml) and of the downloads")
set(TK_VERSION_BUILD "${TK_BUILD_NUMBER}")
if(NOT TK_VERSION_BUILD)
  execute_process(COMMAND git rev-list --count HEAD
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    OUTPUT_VARIABLE TK_VERSION_BUILD OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE tk_git_result ERROR_QUIET)
  if(NOT tk_git_result EQUAL 0 OR NOT TK_VERSION_BUILD MATCHES "^[0-9]+$")
    set(TK_VERSION_BUILD 1)
  endif()
endif()
configure_file(resources/cltmac.xml.in "${CMAKE_BINARY_DIR}/generated/cltmac.xml" @ONLY)
configure_file(resources/tkversion.qrc.in "${CMAKE_BINARY_DIR}/generated/tkversion.qrc" COPYONLY)
target_sources(tk_ui PRIVATE "${CMAKE_BINARY_DIR}/generated/tkversion.qrc")
target_compile_definitions(tk_ui PRIVATE TK_UPDATE_SERVER="${TK_UPDATE_SERVER}")
