# One target per folder, with the sources of its subfolder for the system where it has one. A folder's headers are
# reachable only by the targets that name it, so an include that points against the order of the layers does not compile.
#
#   USES    what the folder's headers include: whoever uses the folder reaches it, too
#   INSIDE  what only its sources include: nobody else reaches it by this folder
#
# A module with exports hands on all of its objects, whether or not something refers to them.
#
#   zelk_module(<name> <folder> [EXPORTING] [USES <module>...] [INSIDE <module>...])
function(zelk_module name folder)
  cmake_parse_arguments(arg "EXPORTING" "" "USES;INSIDE" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/${folder}/*.cpp")
  file(GLOB system_sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/${folder}/${ZELK_SYSTEM}/*.cpp")
  list(APPEND sources ${system_sources})
  # Headers are included as "<module>/<header>.h". The link gives each module an include root that shows nothing else.
  set(root "${CMAKE_BINARY_DIR}/include-roots/${name}")
  file(MAKE_DIRECTORY "${root}")
  file(CREATE_LINK "${CMAKE_SOURCE_DIR}/${folder}" "${root}/${name}" SYMBOLIC)
  if(arg_EXPORTING)
    add_library(${name} OBJECT ${sources})
  else()
    add_library(${name} STATIC ${sources})
  endif()
  target_include_directories(${name} PUBLIC "${root}" PRIVATE "${CMAKE_SOURCE_DIR}/include")
  target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE ${arg_INSIDE} zelk_warnings)
endfunction()
