// SPDX-License-Identifier: Apache-2.0

// What the program calls of CoreServices, for a build without the system's development kit.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

OSStatus LSRegisterURL(CFURLRef url, Boolean update);

#ifdef __cplusplus
}
#endif
