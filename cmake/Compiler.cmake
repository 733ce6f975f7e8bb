# SPDX-License-Identifier: Apache-2.0

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
                    -Wimplicit-fallthrough -Wnull-dereference)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees null dereferences and overlaps inside its own library when it inlines std::variant and std::string.
  add_compile_options(-Wno-null-dereference -Wno-restrict -Wno-maybe-uninitialized)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 17)
  # The C++ library of g++ 12 uses a deprecated function of its own for stable sorting.
  add_compile_options(-Wno-deprecated-declarations)
endif()

# The program runs with administrator rights: what the compiler can harden, it hardens.
add_compile_options(-fstack-protector-strong -fPIC)
if(NOT APPLE) # which has it so by itself
  add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie> -Wl,-z,relro,-z,now)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT INSTALLER_SANITIZERS)
  add_compile_definitions(_FORTIFY_SOURCE=2)
endif()

if(INSTALLER_SANITIZERS)
  add_compile_options(-fsanitize=${INSTALLER_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=${INSTALLER_SANITIZERS})
endif()
if(INSTALLER_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -g)
  add_link_options(-fsanitize=address,undefined)
endif()
