// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class Image;

/// A name of a Mac's libraries and what stands for it here.
struct Name {
  const char* name;
  const void* address;
  bool isFunction = false;
};

template <class Function>
Name function(const char* name, Function* address) {
  return {name, reinterpret_cast<const void*>(address), true};
}

// What differs between the two systems, by subject. The names have the underscore that a C compiler puts there.
std::vector<Name> namesOfCopying();
std::vector<Name> namesOfErrors();
std::vector<Name> namesOfFileRecords();
std::vector<Name> namesOfFiles();
std::vector<Name> namesOfFrameworks();
std::vector<Name> namesOfPrograms();
std::vector<Name> namesOfProcesses();
std::vector<Name> namesOfText();
std::vector<Name> namesOfThreads();

/// Address of what the name means: one of the above, a function of an image, or one that is the same in this system's C
/// library. Any other name gets a function that ends the process and says which name it was.
std::uint64_t addressOfName(const std::string& name);

/// Writes the names of the functions that were called to the file that MAC_CALLED in the environment names.
void writeCalledNames();

/// Lets the functions of an unwinder be found.
void addNamesOfUnwinder(const Image& image);

/// Lets an unwinder find the image's tables.
void addImageForUnwinding(const Image& image);

/// The program and its arguments, for who asks.
void setProgram(const std::string& path, int argc, char** argv);

/// Where in the image the initial values of thread-local variables lie.
void setThreadLocals(std::uint64_t address, std::uint64_t initialized, std::uint64_t size);

/// AT_FDCWD of this system for a Mac's, any other folder as it is.
int folderFromMac(int folder);

/// The flags of this system's calls that take an open folder and a name.
int atFlagsFromMac(int flags);

/// Gives a new item the group of its folder, as every new item has it on a Mac, if this process may.
void giveGroupOfFolder(int folder, const char* name);

/// The open() flags of this system.
int openFlagsFromMac(int flags);

/// The command of this system that does what a Mac's tool does with these arguments, which end with a null.
std::vector<std::string> commandHere(std::string_view tool, char* const* arguments);
