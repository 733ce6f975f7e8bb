// SPDX-License-Identifier: Apache-2.0

// What the program calls of CoreFoundation, for a build without the system's development kit.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFURL* CFURLRef;
typedef struct __CFError* CFErrorRef;
typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef signed int SInt32;
typedef unsigned int UInt32;
typedef SInt32 OSStatus;
typedef long CFIndex;
typedef unsigned long CFOptionFlags;
typedef UInt32 CFStringEncoding;
typedef CFIndex CFPropertyListFormat;

enum { kCFStringEncodingUTF8 = 0x08000100 };
enum { kCFPropertyListBinaryFormat_v1_0 = 200 };
enum { kCFPropertyListImmutable = 0 };

void CFRelease(CFTypeRef object);

CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean hasByteOrderMark);
Boolean CFStringGetCString(CFStringRef text, char* bytes, CFIndex size, CFStringEncoding encoding);
CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
CFArrayRef CFLocaleCopyPreferredLanguages(void);
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CFIndex CFDataGetLength(CFDataRef data);
const UInt8* CFDataGetBytePtr(CFDataRef data);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path, CFIndex length,
                                                 Boolean isFolder);

CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator, CFPropertyListRef list, CFPropertyListFormat format,
                                   CFOptionFlags options, CFErrorRef* error);
CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data, CFOptionFlags options,
                                               CFPropertyListFormat* format, CFErrorRef* error);

extern const CFStringRef kCFPreferencesAnyHost;
extern const CFStringRef kCFPreferencesCurrentUser;
CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application);
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef application);
Boolean CFPreferencesSynchronize(CFStringRef application, CFStringRef user, CFStringRef host);

#ifdef __cplusplus
}
#endif
