# SPDX-License-Identifier: Apache-2.0

# Run as a script: lays out the bundle anew beside the old one and lets it take its place.
cmake_policy(VERSION 3.25)
set(fresh ${BUNDLE}.new)
file(REMOVE_RECURSE ${fresh})

file(COPY ${RESOURCES}/Info.plist DESTINATION ${fresh}/Contents)
file(GLOB interface ${RESOURCES}/*.ui ${RESOURCES}/*.tiff ${RESOURCES}/*.icns ${RESOURCES}/*.png)
file(COPY ${interface} DESTINATION ${fresh}/Contents/Resources)
file(COPY ${RESOURCES}/files DESTINATION ${fresh}/Contents/Resources)
file(GLOB tables ${RESOURCES}/*.lproj)
file(COPY ${tables} DESTINATION ${fresh}/Contents/Resources)
file(COPY ${RESOURCES}/SharedSupport DESTINATION ${fresh}/Contents)
string(REPLACE "|" ";" programs "${PROGRAMS}")
file(COPY ${programs} DESTINATION ${fresh}/Contents/MacOS)
string(REPLACE "|" ";" modules "${MODULES}")
if(modules)
  file(COPY ${modules} DESTINATION ${fresh}/Contents/PlugIns)
endif()
string(REPLACE "|" ";" helpers "${HELPERS}")
file(COPY ${helpers} DESTINATION ${fresh}/Contents/Helpers)

foreach(application IN LISTS APPLICATIONS)
  get_filename_component(name ${application} NAME_WLE)
  configure_file(${STAND_IN} "${fresh}/Contents/${application}/Contents/MacOS/${name}" COPYONLY)
endforeach()

execute_process(COMMAND ${PYTHON} ${MAKE_PAYLOAD} ${fresh}/Contents COMMAND_ERROR_IS_FATAL ANY)

file(REMOVE_RECURSE ${BUNDLE})
file(RENAME ${fresh} ${BUNDLE})
