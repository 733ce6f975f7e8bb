// SPDX-License-Identifier: Apache-2.0

#include "Names.h"

#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <utility>

#include "Image.h"

namespace {

/// Functions that mean the same in both C libraries, down to the layout of what is passed.
constexpr const char* same[] = {
    "___cxa_atexit", "__exit", "_abort", "_access", "_aligned_alloc", "_atoi", "_bcmp", "_btowc", "_calloc", "_ceil",
    "_ceilf", "_chdir", "_chmod", "_close", "_closedir", "_closelog", "_dirfd", "_dup", "_dup2", "_execv", "_exit",
    "_exp", "_fchdir", "_fchmod", "_fchown", "_fclose", "_fdopen", "_feof", "_ferror", "_fflush", "_fgets", "_fileno",
    "_flock", "_floor", "_fopen", "_fork", "_fprintf", "_fputc", "_fputs", "_fputwc", "_fread", "_free", "_freopen",
    "_fseek", "_fseeko", "_fsync", "_ftell", "_ftello", "_ftruncate", "_fwrite", "_getc", "_getcwd", "_getegid",
    "_getentropy", "_getenv", "_geteuid", "_getgid", "_getgrgid", "_getgrnam", "_getpgrp", "_getpid", "_getppid",
    "_getuid", "_getwc", "_isatty", "_kill", "_lchown", "_link", "_llround", "_localeconv", "_localtime_r", "_log",
    "_malloc", "_mbstowcs", "_memchr", "_memcmp", "_memcpy", "_memmem", "_memmove", "_memset", "_mkdir", "_mkdtemp",
    "_mkfifo", "_mkstemp", "_nanosleep", "_nextafter", "_openlog", "_pipe", "_poll", "_posix_memalign", "_pow",
    "_pread", "_printf", "_pthread_getspecific", "_pthread_join", "_pthread_key_create", "_pthread_key_delete",
    "_pthread_self", "_pthread_setspecific", "_putchar", "_puts", "_pwrite", "_qsort", "_read", "_readlink",
    "_readlinkat", "_realloc", "_remove", "_rename", "_renameat", "_rmdir", "_setbuf", "_setenv", "_setlocale",
    "_setvbuf", "_signal", "_snprintf", "_sprintf", "_sscanf", "_strcasecmp", "_strchr", "_strcmp", "_strcpy",
    "_strdup", "_strlen", "_strncmp", "_strncpy", "_strnlen", "_strrchr", "_strspn", "_strstr", "_strtod", "_strtof",
    "_strtok", "_strtol", "_strtold", "_strtoll", "_strtoul", "_strtoull", "_swprintf", "_symlink", "_sync", "_syslog",
    "_time", "_truncate", "_umask", "_ungetc", "_ungetwc", "_unlink", "_unsetenv", "_usleep", "_vfprintf", "_vprintf",
    "_vsnprintf", "_wait", "_waitpid", "_wcscmp", "_wcslen", "_wcsstr", "_wcstod", "_wcstof", "_wcstol", "_wcstold",
    "_wcstoll", "_wcstoul", "_wcstoull", "_wmemchr", "_wmemcmp", "_write",
    // Of the reader of XML, which both systems have.
    "_XML_ErrorString", "_XML_GetCurrentLineNumber", "_XML_GetErrorCode", "_XML_Parse", "_XML_ParserCreate",
    "_XML_ParserFree", "_XML_SetCharacterDataHandler", "_XML_SetElementHandler", "_XML_SetEntityDeclHandler",
    "_XML_SetUserData", "_XML_StopParser",
    // With a locale, which comes last and is left out: there is only the plain one.
    "_btowc_l", "_iswalpha_l", "_iswblank_l", "_iswcntrl_l", "_iswdigit_l", "_iswlower_l", "_iswprint_l", "_iswpunct_l",
    "_iswspace_l", "_iswupper_l", "_iswxdigit_l", "_mbrlen_l", "_mbrtowc_l", "_mbsnrtowcs_l", "_mbsrtowcs_l",
    "_mbtowc_l", "_strcoll_l", "_strftime_l", "_strtod_l", "_strtof_l", "_strtol_l", "_strtold_l", "_strtoll_l",
    "_strtoul_l", "_strtoull_l", "_strxfrm_l", "_towlower_l", "_towupper_l", "_wcrtomb_l", "_wcscoll_l",
    "_wcsnrtombs_l", "_wcsxfrm_l", "_wctob_l"};

[[noreturn]] void endForName(const char* name) {
  static_cast<void>(std::fprintf(stderr, "mac-loader: %s was called and is not emulated\n", name));
  ::_exit(86);
}

/// Room for code that is made at run time.
unsigned char* makeCode(std::size_t length) {
  constexpr std::size_t mostBytes = std::size_t{1} << 18U;
  static auto* next = static_cast<unsigned char*>(
      ::mmap(nullptr, mostBytes, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  return std::exchange(next, next + length);
}

/// Code that calls endForName() with this name.
std::uint64_t functionThatEnds(const std::string& name) {
  unsigned char* const code = makeCode(22);
  const char* const kept = ::strdup(name.c_str());
  void (*const target)(const char*) = &endForName;
  std::memcpy(code, "\x48\xbf", 2);  // mov rdi, kept
  std::memcpy(code + 2, &kept, 8);
  std::memcpy(code + 10, "\x48\xb8", 2);  // mov rax, target
  std::memcpy(code + 12, &target, 8);
  std::memcpy(code + 20, "\xff\xe0", 2);  // jmp rax
  return reinterpret_cast<std::uint64_t>(code);
}

std::map<std::string, std::uint64_t>& calls() {
  static std::map<std::string, std::uint64_t> counts;
  return counts;
}

/// Code that counts the call and goes on to the function.
std::uint64_t functionThatCounts(const std::string& name, std::uint64_t function) {
  unsigned char* const code = makeCode(29);
  const std::uint64_t* const count = &calls()[name];
  std::memcpy(code, "\x50\x48\xb8", 3);  // push rax; mov rax, count
  std::memcpy(code + 3, &count, 8);
  std::memcpy(code + 11, "\x48\xff\x00\x58", 4);          // inc qword [rax]; pop rax
  std::memcpy(code + 15, "\xff\x25\x00\x00\x00\x00", 6);  // jmp [the next eight bytes]
  std::memcpy(code + 21, &function, 8);
  return reinterpret_cast<std::uint64_t>(code);
}

std::map<std::string, std::uint64_t> makeNames() {
  std::map<std::string, std::uint64_t> names;
  for (const std::string name : same) {
    const std::string plain = name.substr(1, name.ends_with("_l") ? name.size() - 3 : std::string::npos);
    if (const void* const found = ::dlsym(RTLD_DEFAULT, plain.c_str())) {
      names[name] = functionThatCounts(name, reinterpret_cast<std::uint64_t>(found));
    }
  }
  for (const auto& subject :
       {namesOfCopying(), namesOfErrors(), namesOfFileRecords(), namesOfFiles(), namesOfFrameworks(), namesOfPrograms(),
        namesOfProcesses(), namesOfText(), namesOfThreads()}) {
    for (const Name& name : subject) {
      const auto address = reinterpret_cast<std::uint64_t>(name.address);
      names[name.name] = name.isFunction ? functionThatCounts(name.name, address) : address;
    }
  }
  return names;
}

std::map<std::string, std::uint64_t>& names() {
  static std::map<std::string, std::uint64_t> all = makeNames();
  return all;
}

}  // namespace

std::uint64_t addressOfName(const std::string& name) {
  // The linker's notes of which system a name is for.
  const std::string plain = name.substr(0, name.find('$', 1));
  for (const std::string& known : {name, plain}) {
    if (known.starts_with("_OBJC_")) break;
    const auto found = names().find(known);
    if (found != names().end()) return found->second;
  }
  return functionThatEnds(name);
}

void writeCalledNames() {
  const char* const path = std::getenv("MAC_CALLED");
  if (path == nullptr) return;
  std::ofstream file(path, std::ios::app);
  for (const auto& [name, count] : calls()) {
    if (count > 0) file << name << '\n';
  }
}

void addNamesOfUnwinder(const Image& image) {
  for (const auto& [name, address] : image.exports()) {
    if (name.starts_with("__Unwind_")) names()[name] = address;
  }
}
