# SPDX-License-Identifier: Apache-2.0

cmake_policy(VERSION 3.25)
# Run as a script by add_layer(): fails when a file of one layer includes what the layer may not see. Left out of the
# standard library on purpose: files (they go through platform/FileSystem.h) and threads (the program has one).
set(standard
    algorithm any array bit bitset cctype cfloat charconv chrono climits cmath compare concepts cstddef cstdint cstdlib
    cstring deque exception functional initializer_list ios iosfwd iostream istream iterator limits list map memory
    new numeric optional ostream queue random ranges set span sstream stack stdexcept string string_view system_error
    tuple type_traits typeinfo unordered_map unordered_set utility variant vector)
string(REPLACE "," ";" headers "${HEADERS}")
list(APPEND standard ${headers})
string(REPLACE "," ";" allowed "${ALLOWED}")
string(REPLACE "," ";" folders "${FOLDERS}")
list(APPEND allowed ${folders})

set(files "")
foreach(folder IN LISTS folders)
  file(GLOB here ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp ${ROOT}/${folder}/*.mm)
  list(APPEND files ${here})
endforeach()
set(wrong "")
foreach(file IN LISTS files)
  file(STRINGS ${file} includes REGEX "^[ \t]*#[ \t]*(include|import)")
  file(RELATIVE_PATH shown ${ROOT}/.. ${file})
  foreach(line IN LISTS includes)
    if(line MATCHES "\"([^\"]+)\"")
      set(header ${CMAKE_MATCH_1})
      get_filename_component(of ${header} DIRECTORY)
      if(NOT of IN_LIST allowed OR header MATCHES "\\.\\.")
        string(APPEND wrong "${shown}: may not include \"${header}\"\n")
      endif()
    elseif(line MATCHES "<([^>]+)>")
      set(header ${CMAKE_MATCH_1})
      if(NOT SYSTEM_HEADERS AND NOT header IN_LIST standard)
        string(APPEND wrong "${shown}: may not include <${header}>, the layer has the C++ standard library only\n")
      endif()
    else()
      string(APPEND wrong "${shown}: an include that cannot be read: ${line}\n")
    endif()
  endforeach()
endforeach()
if(wrong)
  message(FATAL_ERROR "\n${wrong}")
endif()
file(WRITE ${STAMP} "")
