// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "foundation/NotificationCenter.h"
#include "platform/Authorization.h"
#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/Folders.h"
#include "platform/Identifiers.h"
#include "platform/Interruptions.h"
#include "platform/LaunchServices.h"
#include "platform/Log.h"
#include "platform/MetadataQuery.h"
#include "platform/Preferences.h"
#include "platform/Processor.h"
#include "platform/RunLoop.h"
#include "platform/Tasks.h"
#include "platform/Toolkit.h"
#include "platform/User.h"
#include "platform/Workspace.h"

/// Posted when the program is about to end in the usual way.
inline constexpr std::string_view applicationWillTerminateNotification = "NSApplicationWillTerminateNotification";

/// Everything that the program asks of the system. main() builds one for the machine and hands it down; a test builds
/// its own.
struct Platform {
  FileSystem& files;
  Bundles& bundles;
  Folders& folders;
  Preferences& preferences;
  Authorizations& authorizations;
  Tasks& tasks;
  RunLoop& runLoop;
  NotificationCenter& notifications;
  LaunchServices& launchServices;
  MetadataQueries& metadataQueries;
  Workspace& workspace;
  Toolkit& toolkit;
  Processor& processor;
  Identifiers& identifiers;
  Log& log;
  User& user;
  Clock& clock;
  Interruptions& interruptions;
};
