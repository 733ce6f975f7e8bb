# SPDX-License-Identifier: Apache-2.0

# Builds for a Mac on another system, with the compiler that tools/make-mac-app installs below build/mac/compiler.
# MAC_ARCHITECTURE is arm64 or x86_64.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MAC_ARCHITECTURE)
string(REPLACE arm64 aarch64 processor ${MAC_ARCHITECTURE})

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${processor})
set(MAC_COMPILER ${CMAKE_CURRENT_LIST_DIR}/../../build/mac/compiler/bin)
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_COMPILER ${MAC_COMPILER}/c++)
  set(CMAKE_${language}_COMPILER_TARGET ${processor}-macos.11.0)
endforeach()
set(CMAKE_AR ${MAC_COMPILER}/ar)
set(CMAKE_RANLIB ${MAC_COMPILER}/ranlib)
set(CMAKE_INSTALL_NAME_TOOL ${MAC_COMPILER}/no-such-tool) # nothing here is installed
set(CMAKE_OSX_DEPLOYMENT_TARGET "")                       # the target's name says it

# The compiler adds checks of its own to what is not optimized, and builds its C++ library when it first links. What it
# writes for debuggers holds the paths of this machine.
set(MAC_DECLARATIONS ${CMAKE_CURRENT_LIST_DIR}/../../src/platform/macos/declarations) # for a development kit
set(CMAKE_CXX_FLAGS_INIT "-fno-sanitize=undefined -isystem ${MAC_DECLARATIONS}/include")
set(CMAKE_OBJCXX_FLAGS_INIT "${CMAKE_CXX_FLAGS_INIT}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-w -Wl,-S")

# What the system's development kit would supply.
set(EXPAT_INCLUDE_DIR ${MAC_DECLARATIONS}/include)
set(EXPAT_LIBRARY ${MAC_DECLARATIONS}/lib/libexpat.tbd)
set(CMAKE_FIND_ROOT_PATH ${MAC_DECLARATIONS})
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
