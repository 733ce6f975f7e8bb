// SPDX-License-Identifier: Apache-2.0

#pragma once

// What the program calls of a Mac's extended attributes, for building where the system's header is missing.

#include <sys/types.h>

#include <cstdint>

extern "C" {
ssize_t flistxattr(int file, char* names, size_t size, int options);
ssize_t fgetxattr(int file, const char* name, void* value, size_t size, std::uint32_t position, int options);
int fsetxattr(int file, const char* name, const void* value, size_t size, std::uint32_t position, int options);
int fremovexattr(int file, const char* name, int options);
}
