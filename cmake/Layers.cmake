# SPDX-License-Identifier: Apache-2.0

# One target a folder below src/. A layer may include its own headers and those of the layers that it names, and
# nothing else; the build stops at the first include that breaks this.
#
#   add_layer(hosts MAY_INCLUDE foundation platform settings SOURCES HostsModel.cpp …)
#
# SYSTEM_HEADERS lifts the limit to the C++ standard library, for the layers that talk to a system; HEADERS names single
# headers of libraries.
function(add_layer name)
  cmake_parse_arguments(LAYER "SYSTEM_HEADERS" "" "FOLDERS;MAY_INCLUDE;HEADERS;LINKS;SOURCES" ${ARGN})
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
  check_includes(${name} ${LAYER_SYSTEM_HEADERS} "${LAYER_FOLDERS}" "${LAYER_MAY_INCLUDE}" ${LAYER_HEADERS})
endfunction()

# A program for Contents/Helpers, with a folder of its own or among others.
#
#   add_helper(launch FOLDER platform/processes/launch SOURCES launch/launch.cpp)
function(add_helper name)
  cmake_parse_arguments(HELPER "" "FOLDER" "MAY_INCLUDE;LINKS;SOURCES" ${ARGN})
  add_executable(helper-${name} ${HELPER_SOURCES})
  target_include_directories(helper-${name} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(helper-${name} PRIVATE ${HELPER_LINKS})
  set_target_properties(helper-${name} PROPERTIES OUTPUT_NAME ${name}
                                                  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/helpers)
  check_includes(helper-${name} TRUE "${HELPER_FOLDER}" "${HELPER_MAY_INCLUDE}")
endfunction()

# Checks the sources and headers of the folders whenever one of them has changed, before the target is built.
function(check_includes target system_headers folders may_include)
  set(checked "")
  foreach(folder IN LISTS folders)
    file(GLOB files ${PROJECT_SOURCE_DIR}/src/${folder}/*.h ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp
         ${PROJECT_SOURCE_DIR}/src/${folder}/*.mm)
    list(APPEND checked ${files})
  endforeach()
  set_property(GLOBAL APPEND PROPERTY CHECKED_SOURCES ${checked})
  set(stamp ${PROJECT_BINARY_DIR}/layers/${target}.stamp)
  list(JOIN folders "," folders)
  list(JOIN may_include "," allowed)
  list(JOIN ARGN "," headers)
  add_custom_command(
    OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -DROOT=${PROJECT_SOURCE_DIR}/src -DFOLDERS=${folders} -DALLOWED=${allowed}
            -DSYSTEM_HEADERS=${system_headers} -DHEADERS=${headers} -DSTAMP=${stamp} -P ${PROJECT_SOURCE_DIR}/cmake/CheckLayer.cmake
    DEPENDS ${checked} ${PROJECT_SOURCE_DIR}/cmake/CheckLayer.cmake
    COMMENT "Checking the includes of ${target}"
    VERBATIM)
  add_custom_target(${target}-includes ALL DEPENDS ${stamp})
  add_dependencies(${target} ${target}-includes)
endfunction()

# Stops when a file below src/ belongs to no layer.
function(check_layers)
  get_property(checked GLOBAL PROPERTY CHECKED_SOURCES)
  file(GLOB_RECURSE sources ${PROJECT_SOURCE_DIR}/src/*.h ${PROJECT_SOURCE_DIR}/src/*.cpp
       ${PROJECT_SOURCE_DIR}/src/*.mm)
  list(REMOVE_ITEM sources ${checked})
  if(sources)
    list(JOIN sources "\n  " sources)
    message(FATAL_ERROR "These files belong to no layer:\n  ${sources}")
  endif()
endfunction()
