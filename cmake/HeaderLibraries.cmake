# SPDX-License-Identifier: Apache-2.0

# Libraries that are nothing but headers, in a folder of their own: the headers beside them may be of another system than
# the one that is built for.
set(header_libraries ${CMAKE_BINARY_DIR}/header-libraries)
file(MAKE_DIRECTORY ${header_libraries})
foreach(header CLI/CLI.hpp nlohmann/json.hpp)
  get_filename_component(library ${header} DIRECTORY)
  find_path(${library}_FOLDER ${header} REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  file(CREATE_LINK ${${library}_FOLDER}/${library} ${header_libraries}/${library} SYMBOLIC)
endforeach()
add_library(header-libraries INTERFACE)
target_include_directories(header-libraries SYSTEM INTERFACE ${header_libraries})
