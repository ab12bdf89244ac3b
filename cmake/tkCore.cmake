# tk_core_library(<folder> [<folder it depends on>...])
#
# Builds every .cpp of a source folder into the static library tk_<folder>.
# A folder with no sources yet becomes an interface library, so that the
# dependency graph is complete from the start and new files join the build at
# the next configure (CONFIGURE_DEPENDS re-globs on every build).
function(tk_core_library folder)
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*.cpp")
  set(target tk_${folder})
  if(sources)
    add_library(${target} STATIC ${sources})
    target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}")
    set(scope PUBLIC)
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE "${PROJECT_SOURCE_DIR}")
    set(scope INTERFACE)
  endif()
  foreach(dependency IN LISTS ARGN)
    target_link_libraries(${target} ${scope} tk_${dependency})
  endforeach()
endfunction()

# All core libraries plus the POSIX layer: what tests, benchmarks and fuzz
# targets link against.
set(TK_ALL_LIBRARIES tk_core tk_platform)
