# The command-line tool `chronolet`: the core and the POSIX layer, no Qt at all. Its client
# of the running application's socket also serves the application's own second start.
add_library(tk_cli_client STATIC "${PROJECT_SOURCE_DIR}/cli/tkCommandClient.cpp")
target_include_directories(tk_cli_client PUBLIC "${PROJECT_SOURCE_DIR}")
target_link_libraries(tk_cli_client PUBLIC tk_shell tk_platform)

add_executable(chronolet "${PROJECT_SOURCE_DIR}/cli/main.cpp")
target_link_libraries(chronolet PRIVATE tk_cli_client ${TK_ALL_LIBRARIES})
target_compile_definitions(chronolet PRIVATE TK_VERSION="${PROJECT_VERSION}")
set_target_properties(chronolet PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")
