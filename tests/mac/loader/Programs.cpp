// SPDX-License-Identifier: Apache-2.0

// What a program can find out about itself, and libraries that it opens.
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "Image.h"
#include "Names.h"

namespace {

std::string programPath;
int argumentCount;
char** arguments;
std::vector<const Image*> images;

int executablePath(char* path, std::uint32_t* size) {
  const auto needed = static_cast<std::uint32_t>(programPath.size() + 1);
  if (*size < needed) {
    *size = needed;
    return -1;
  }
  std::memcpy(path, programPath.c_str(), needed);
  return 0;
}

int* argumentCountPlace() { return &argumentCount; }
char*** argumentsPlace() { return &arguments; }

struct UnwindSections {
  const void* header;
  const void* dwarf;
  std::uint64_t dwarfSize;
  const void* compact;
  std::uint64_t compactSize;
};

bool findUnwindSections(const void* address, UnwindSections* found) {
  const auto wanted = reinterpret_cast<std::uint64_t>(address);
  const auto holding = std::ranges::find_if(
      images, [&](const Image* image) { return wanted >= image->start() && wanted < image->end(); });
  if (holding == images.end()) return false;
  const auto dwarf = (*holding)->section("__eh_frame");
  const auto compact = (*holding)->section("__unwind_info");
  *found = {reinterpret_cast<const void*>((*holding)->start()), reinterpret_cast<const void*>(dwarf.address),
            dwarf.size, reinterpret_cast<const void*>(compact.address), compact.size};
  return true;
}

/// Every library is the same one, that has all names of the frameworks.
void* openLibrary(const char* /*path*/, int /*mode*/) { return &images; }

void* nameInLibrary(void* /*library*/, const char* name) {
  const auto names = namesOfFrameworks();
  const auto found =
      std::ranges::find_if(names, [&](const Name& known) { return std::strcmp(known.name + 1, name) == 0; });
  return found != names.end() ? reinterpret_cast<void*>(addressOfName(found->name)) : nullptr;
}

long systemValue(int which) {
  constexpr int pageSize = 29;
  constexpr int processors = 58;
  if (which == pageSize) return ::sysconf(_SC_PAGESIZE);
  return which == processors ? ::sysconf(_SC_NPROCESSORS_ONLN) : -1;
}

int nothingToDo() { return 0; }

[[noreturn]] void failOfStack() {
  std::fputs("mac-loader: a function has written past its variables\n", stderr);
  std::abort();
}

}  // namespace

void setProgram(const std::string& path, int argc, char** argv) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
  programPath = real != nullptr ? real.get() : path;
  argumentCount = argc;
  arguments = argv;
}

void addImageForUnwinding(const Image& image) { images.push_back(&image); }

std::vector<Name> namesOfPrograms() {
  return {function("__NSGetExecutablePath", &executablePath),
          function("__NSGetArgc", &argumentCountPlace),
          function("__NSGetArgv", &argumentsPlace),
          {"__NSGetEnviron", nullptr},
          function("__dyld_find_unwind_sections", &findUnwindSections),
          function("__dyld_register_func_for_remove_image", &nothingToDo),
          function("_dladdr", &nothingToDo),
          function("_dlopen", &openLibrary),
          function("_dlsym", &nameInLibrary),
          function("_sysconf", &systemValue),
          function("___stack_chk_fail", &failOfStack)};
}
