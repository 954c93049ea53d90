# Include views: each target sees, under its include path, only the folders it may include, so an
# include that runs up a floor (or across to another front end) fails to compile. A view is a
# folder of symbolic links in the build tree; without symbolic links configure stops rather than
# build unguarded.

# velto_include_view(<out-var> <name> <entries...>): entries are paths relative to the source
# root ("VeltoKit/core", "VeltoMKV/state"); each appears at the same place inside the view.
function(velto_include_view out name)
  set(view "${CMAKE_BINARY_DIR}/include-views/${name}")
  file(REMOVE_RECURSE "${view}")
  foreach(entry IN LISTS ARGN)
    get_filename_component(parent "${view}/${entry}" DIRECTORY)
    file(MAKE_DIRECTORY "${parent}")
    file(CREATE_LINK "${CMAKE_SOURCE_DIR}/${entry}" "${view}/${entry}" SYMBOLIC RESULT linked)
    if(NOT linked EQUAL 0)
      message(FATAL_ERROR "No puedo crear enlaces simbólicos en ${CMAKE_BINARY_DIR} (${linked}); "
                          "el build los necesita para que cada carpeta vea solo lo que puede "
                          "incluir. En Windows, activá el modo de desarrollador.")
    endif()
  endforeach()
  set(${out} "${view}" PARENT_SCOPE)
endfunction()

# A quoted include through ".." is resolved beside the including file, past any view; the build
# refuses it before compiling anything of ours.
set(VELTO_INCLUDE_CHECK "${CMAKE_CURRENT_LIST_DIR}/CheckIncludes.cmake")
add_custom_target(velto_include_check
  COMMAND "${CMAKE_COMMAND}" -DVELTO_SOURCE_DIR=${CMAKE_SOURCE_DIR} -P "${VELTO_INCLUDE_CHECK}"
  COMMENT "Checking that no include reaches past its floor"
  VERBATIM)
