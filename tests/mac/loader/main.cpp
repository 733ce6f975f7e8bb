// SPDX-License-Identifier: Apache-2.0

// Runs a console program for a Mac, an x86_64 Mach-O file, on Linux:
//
//   mac-loader [-unwinder LIBRARY] PROGRAM [ARGUMENT…]
//
// For tests only. README.md says what stands for a Mac's libraries.
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string_view>

#include "Image.h"
#include "Names.h"

int main(int argc, char** argv) {
  try {
    std::optional<Image> unwinder;
    int first = 1;
    if (argc > 3 && std::string_view(argv[1]) == "-unwinder") {
      constexpr std::uint64_t wherePlaceIs = 0x300000000;
      unwinder.emplace(argv[2], wherePlaceIs);
      addNamesOfUnwinder(*unwinder);
      addImageForUnwinding(*unwinder);
      first = 3;
    }
    if (first >= argc) {
      std::cerr << "mac-loader [-unwinder LIBRARY] PROGRAM [ARGUMENT...]\n";
      return 64;
    }
    argc -= first;
    argv += first;
    Image program(argv[0], 0);
    addImageForUnwinding(program);
    setProgram(argv[0], argc, argv);
    const auto data = program.section("__thread_data");
    const auto zeros = program.section("__thread_bss");
    const std::uint64_t begin = data.size > 0 ? data.address : zeros.address;
    setThreadLocals(begin, data.size, zeros.size > 0 ? zeros.address + zeros.size - begin : data.size);
    if (unwinder) unwinder->bind(addressOfName);
    program.bind(addressOfName);
    if (unwinder) unwinder->initialize(argc, argv);
    program.initialize(argc, argv);
    std::atexit(&writeCalledNames);
    std::exit(reinterpret_cast<int (*)(int, char**)>(program.entry())(argc, argv));
  } catch (const LoadError& error) {
    std::cerr << "mac-loader: " << error.what() << '\n';
    return 88;
  }
}
