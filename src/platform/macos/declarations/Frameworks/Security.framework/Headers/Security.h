// SPDX-License-Identifier: Apache-2.0

// What the program calls of Security, for a build without the system's development kit.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const struct AuthorizationOpaqueRef* AuthorizationRef;
typedef UInt32 AuthorizationFlags;
typedef struct {
  const char* name;
  size_t valueLength;
  void* value;
  UInt32 flags;
} AuthorizationItem;
typedef struct {
  UInt32 count;
  AuthorizationItem* items;
} AuthorizationItemSet;
typedef AuthorizationItemSet AuthorizationRights;
typedef AuthorizationItemSet AuthorizationEnvironment;

enum { errAuthorizationSuccess = 0 };
enum { kAuthorizationFlagDefaults = 0, kAuthorizationFlagDestroyRights = 8 };

OSStatus AuthorizationCreate(const AuthorizationRights* rights, const AuthorizationEnvironment* environment,
                             AuthorizationFlags flags, AuthorizationRef* authorization);
OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights* rights,
                                 const AuthorizationEnvironment* environment, AuthorizationFlags flags,
                                 AuthorizationRights** authorizedRights);
OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags);

#ifdef __cplusplus
}
#endif
