# One target a folder below src/. A layer may include its own headers and those of the layers that it names, and
# nothing else; the build stops at the first include that breaks this.
#
#   add_layer(hosts MAY_INCLUDE foundation platform settings SOURCES HostsModel.cpp …)
#
# SYSTEM_HEADERS lifts the limit to the C++ standard library, for the layers that talk to a system.
function(add_layer name)
  cmake_parse_arguments(LAYER "SYSTEM_HEADERS" "" "FOLDERS;MAY_INCLUDE;LINKS;SOURCES" ${ARGN})
  if(NOT LAYER_FOLDERS)
    set(LAYER_FOLDERS ${name})
  endif()
  if(LAYER_SOURCES)
    add_library(${name} STATIC ${LAYER_SOURCES})
    set(scope PUBLIC)
  else()
    add_library(${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${name} ${scope} ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} ${scope} ${LAYER_LINKS})

  set(checked "")
  foreach(folder IN LISTS LAYER_FOLDERS)
    file(GLOB files ${PROJECT_SOURCE_DIR}/src/${folder}/*.h ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp)
    list(APPEND checked ${files})
  endforeach()
  set(stamp ${PROJECT_BINARY_DIR}/layers/${name}.stamp)
  list(JOIN LAYER_FOLDERS "," folders)
  list(JOIN LAYER_MAY_INCLUDE "," allowed)
  add_custom_command(
    OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -DROOT=${PROJECT_SOURCE_DIR}/src -DFOLDERS=${folders} -DALLOWED=${allowed}
            -DSYSTEM_HEADERS=${LAYER_SYSTEM_HEADERS} -DSTAMP=${stamp} -P ${PROJECT_SOURCE_DIR}/cmake/CheckLayer.cmake
    DEPENDS ${checked} ${PROJECT_SOURCE_DIR}/cmake/CheckLayer.cmake
    COMMENT "Checking the includes of ${name}"
    VERBATIM)
  add_custom_target(${name}-includes DEPENDS ${stamp})
  add_dependencies(${name} ${name}-includes)
endfunction()
