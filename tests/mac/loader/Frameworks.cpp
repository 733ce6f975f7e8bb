// SPDX-License-Identifier: Apache-2.0

// The few functions of CoreFoundation, CoreServices and Security that the installer calls. What they keep is in memory.
// A process that has not released all objects at its end ends with 87.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
#include <string>

#include "Names.h"

extern char** environ;

namespace {

/// A text, data, a property list as its bytes, or an address.
struct Object {
  std::string bytes;
};

int objects = 0;

Object* make(std::string bytes) {
  static const int registered = std::atexit([] {
    if (objects == 0) return;
    static_cast<void>(std::fprintf(stderr, "mac-loader: %d objects were not released\n", objects));
    std::fflush(nullptr);
    ::_exit(87);
  });
  static_cast<void>(registered);
  ++objects;
  return new Object{std::move(bytes)};
}

void release(Object* object) {
  --objects;
  delete object;
}

Object* makeText(void* /*allocator*/, const char* bytes, long length, std::uint32_t /*encoding*/, bool /*hasMark*/) {
  return make({bytes, static_cast<std::size_t>(length)});
}
Object* makeData(void* /*allocator*/, const char* bytes, long length) {
  return make({bytes, static_cast<std::size_t>(length)});
}
long lengthOfData(const Object* data) { return static_cast<long>(data->bytes.size()); }
const char* bytesOfData(const Object* data) { return data->bytes.data(); }
Object* makeFileUrl(void* /*allocator*/, const char* path, long length, bool /*isFolder*/) {
  return make({path, static_cast<std::size_t>(length)});
}

/// MAC_LANGUAGES in the environment: the preferred languages with commas between them.
Object* copyLanguages() {
  const char* const value = std::getenv("MAC_LANGUAGES");
  return make(value != nullptr ? value : "en");
}
long countOfArray(const Object* array) { return 1 + std::ranges::count(array->bytes, ','); }
/// Belongs to the array, of which there is one.
const Object* itemOfArray(const Object* array, long index) {
  static Object item;
  std::istringstream texts(array->bytes);
  for (long i = 0; i <= index; ++i) std::getline(texts, item.bytes, ',');
  return &item;
}
bool bytesOfText(const Object* text, char* bytes, long size, std::uint32_t /*encoding*/) {
  if (std::ssize(text->bytes) >= size) return false;
  std::memcpy(bytes, text->bytes.c_str(), text->bytes.size() + 1);
  return true;
}

/// A property list stays as it was written.
Object* dataOfList(void* /*allocator*/, const Object* list, long /*format*/, unsigned long /*options*/,
                   Object** /*error*/) {
  return make(list->bytes);
}
Object* listOfData(void* /*allocator*/, const Object* data, unsigned long /*options*/, long* /*format*/,
                   Object** /*error*/) {
  return make(data->bytes);
}

using Domain = std::map<std::string, std::string>;
std::map<std::string, Domain> domains;

Object* copyPreference(const Object* key, const Object* application) {
  const Domain& domain = domains[application->bytes];
  const auto found = domain.find(key->bytes);
  return found != domain.end() ? make(found->second) : nullptr;
}
void setPreference(const Object* key, const Object* value, const Object* application) {
  Domain& domain = domains[application->bytes];
  domain.erase(key->bytes);
  if (value != nullptr) domain[key->bytes] = value->bytes;
}
bool synchronizePreferences(const Object* application, const Object* /*user*/, const Object* /*host*/) {
  return application->bytes != "com.corvane.cannot-be-written";
}

std::int32_t registerUrl(const Object* url, bool /*update*/) {
  static_cast<void>(std::fprintf(stderr, "mac-loader: %s was registered\n", url->bytes.c_str()));
  return 0;
}

// Rights: MAC_RIGHTS in the environment says what the user answers. When they are granted, sudo makes a user root, who
// must be allowed to do that without a password.

std::string answer() {
  const char* const value = std::getenv("MAC_RIGHTS");
  return value != nullptr ? value : "granted";
}

std::int32_t createAuthorization(const void* /*rights*/, const void* /*environment*/, std::uint32_t /*flags*/,
                                 Object** authorization) {
  *authorization = make("authorization");
  return 0;
}
std::int32_t copyRights(const Object* /*authorization*/, const void* /*rights*/, const void* /*environment*/,
                        std::uint32_t /*flags*/, void** /*authorized*/) {
  constexpr std::int32_t denied = -60005;
  return answer() == "none" ? denied : 0;
}
std::int32_t freeAuthorization(Object* authorization, std::uint32_t /*flags*/) {
  release(authorization);
  return 0;
}
std::int32_t execute(const Object* /*authorization*/, const char* tool, std::uint32_t /*options*/,
                     char* const* arguments, std::FILE** stream) {
  constexpr std::int32_t denied = -60005;
  constexpr std::int32_t cancelled = -60006;
  static_cast<void>(std::fputs("mac-loader: the user was asked\n", stderr));
  if (answer() == "denied") return denied;
  if (answer() == "cancelled") return cancelled;
  int ends[2];
  if (::pipe(ends) != 0) return -60031;
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(ends[1], STDOUT_FILENO);
    std::vector<std::string> texts = commandHere(tool, arguments);
    if (::geteuid() != 0) texts.insert(texts.begin(), {"/usr/bin/sudo", "-n", "--"});
    std::vector<char*> all;
    for (std::string& text : texts) all.push_back(text.data());
    all.push_back(nullptr);
    ::execv(all.front(), all.data());
    ::_exit(127);
  }
  ::close(ends[1]);
  *stream = ::fdopen(ends[0], "r");
  return 0;
}

}  // namespace

std::vector<Name> namesOfFrameworks() {
  static Object currentUser{"current user"};
  static Object anyHost{"any host"};
  static Object* const user = &currentUser;
  static Object* const host = &anyHost;
  std::vector<Name> names = {function("_CFRelease", &release),
                             function("_CFStringCreateWithBytes", &makeText),
                             function("_CFStringGetCString", &bytesOfText),
                             function("_CFLocaleCopyPreferredLanguages", &copyLanguages),
                             function("_CFArrayGetCount", &countOfArray),
                             function("_CFArrayGetValueAtIndex", &itemOfArray),
                             function("_CFDataCreate", &makeData),
                             function("_CFDataGetLength", &lengthOfData),
                             function("_CFDataGetBytePtr", &bytesOfData),
                             function("_CFURLCreateFromFileSystemRepresentation", &makeFileUrl),
                             function("_CFPropertyListCreateData", &dataOfList),
                             function("_CFPropertyListCreateWithData", &listOfData),
                             function("_CFPreferencesCopyAppValue", &copyPreference),
                             function("_CFPreferencesSetAppValue", &setPreference),
                             function("_CFPreferencesSynchronize", &synchronizePreferences),
                             {"_kCFPreferencesCurrentUser", &user},
                             {"_kCFPreferencesAnyHost", &host},
                             function("_LSRegisterURL", &registerUrl),
                             function("_AuthorizationCreate", &createAuthorization),
                             function("_AuthorizationCopyRights", &copyRights),
                             function("_AuthorizationFree", &freeAuthorization)};
  if (answer() != "missing") names.push_back(function("_AuthorizationExecuteWithPrivileges", &execute));
  return names;
}
