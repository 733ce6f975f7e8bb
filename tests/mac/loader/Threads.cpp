// SPDX-License-Identifier: Apache-2.0

// Threads: objects that start with a signature on a Mac, and variables that each thread has of its own.
#include <pthread.h>

#include <cstdlib>
#include <cstring>
#include <mutex>

#include "Names.h"

namespace {

constexpr std::uint64_t mutexSignature = 0x32AAABA7;
constexpr std::uint64_t conditionSignature = 0x3CB0B1BB;
constexpr std::uint64_t readWriteSignature = 0x2DA8B3B4;

// The objects are used in place: they are no smaller on a Mac. Those that were set up by the compiler are set up again,
// once, when they are first used.
static_assert(sizeof(pthread_mutex_t) <= 64 && sizeof(pthread_cond_t) <= 48);

template <class Object, class SetUp>
Object* ready(Object* object, std::uint64_t signature, SetUp setUp) {
  static std::mutex settingUp;
  const std::lock_guard lock(settingUp);
  std::uint64_t head = 0;
  std::memcpy(&head, object, sizeof(head));
  if (head == signature) setUp(object);
  return object;
}

pthread_mutex_t* mutexOf(pthread_mutex_t* mutex) {
  return ready(mutex, mutexSignature, [](pthread_mutex_t* fresh) { ::pthread_mutex_init(fresh, nullptr); });
}

pthread_cond_t* conditionOf(pthread_cond_t* condition) {
  return ready(condition, conditionSignature, [](pthread_cond_t* fresh) { ::pthread_cond_init(fresh, nullptr); });
}

pthread_rwlock_t* lockOf(pthread_rwlock_t* lock) {
  return ready(lock, readWriteSignature, [](pthread_rwlock_t* fresh) { ::pthread_rwlock_init(fresh, nullptr); });
}

int lockToRead(pthread_rwlock_t* lock) { return ::pthread_rwlock_rdlock(lockOf(lock)); }
int lockToWrite(pthread_rwlock_t* lock) { return ::pthread_rwlock_wrlock(lockOf(lock)); }
int unlock(pthread_rwlock_t* lock) { return ::pthread_rwlock_unlock(lockOf(lock)); }
int lockMutex(pthread_mutex_t* mutex) { return ::pthread_mutex_lock(mutexOf(mutex)); }
int tryMutex(pthread_mutex_t* mutex) { return ::pthread_mutex_trylock(mutexOf(mutex)); }
int unlockMutex(pthread_mutex_t* mutex) { return ::pthread_mutex_unlock(mutexOf(mutex)); }
int destroyMutex(pthread_mutex_t* mutex) { return ::pthread_mutex_destroy(mutexOf(mutex)); }
int signalCondition(pthread_cond_t* condition) { return ::pthread_cond_signal(conditionOf(condition)); }
int wakeAll(pthread_cond_t* condition) { return ::pthread_cond_broadcast(conditionOf(condition)); }
int destroyCondition(pthread_cond_t* condition) { return ::pthread_cond_destroy(conditionOf(condition)); }

int waitFor(pthread_cond_t* condition, pthread_mutex_t* mutex) {
  return ::pthread_cond_wait(conditionOf(condition), mutexOf(mutex));
}

int waitUntil(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* limit) {
  constexpr int timedOutOnMac = 60;
  const int result = ::pthread_cond_timedwait(conditionOf(condition), mutexOf(mutex), limit);
  return result == ETIMEDOUT ? timedOutOnMac : result;
}

int setMutexType(pthread_mutexattr_t* attributes, int type) {
  constexpr int recursiveOnMac = 2;
  return ::pthread_mutexattr_settype(attributes,
                                     type == recursiveOnMac ? PTHREAD_MUTEX_RECURSIVE : PTHREAD_MUTEX_NORMAL);
}

struct MacOnce {
  std::uint64_t isDone;
  std::uint64_t unused;
};

int runOnce(MacOnce* once, void (*run)()) {
  constexpr std::uint64_t done = 1;
  static std::recursive_mutex running;
  const std::lock_guard lock(running);
  if (once->isDone != done) {
    once->isDone = done;
    run();
  }
  return 0;
}

int startThread(pthread_t* thread, const void* /*attributes*/, void* (*run)(void*), void* argument) {
  return ::pthread_create(thread, nullptr, run, argument);
}

std::uint64_t threadNumber(pthread_t thread) { return thread; }

std::uint64_t initialAddress;
std::uint64_t initialSize;
std::uint64_t blockSize;

struct Descriptor {
  void* thunk;
  std::uint64_t key;
  std::uint64_t offset;
};

extern "C" [[gnu::used]] void* macThreadLocal(const Descriptor* descriptor) {
  thread_local char* block = nullptr;
  if (block == nullptr) {
    block = static_cast<char*>(::aligned_alloc(64, (blockSize + 127) / 64 * 64));
    std::memset(block, 0, blockSize);
    std::memcpy(block, reinterpret_cast<const void*>(initialAddress), initialSize);
  }
  return block + descriptor->offset;
}

extern "C" void macThreadLocalThunk();

/// Functions to be run when a thread ends are left out: the tests' threads end with the program.
void atThreadEnd(void (* /*run*/)(void*), void* /*argument*/) {}

}  // namespace

// The caller expects every register but rax to be as it was.
asm(R"(
.globl macThreadLocalThunk
macThreadLocalThunk:
  push %rbp
  mov %rsp, %rbp
  push %rdi; push %rsi; push %rdx; push %rcx; push %r8; push %r9; push %r10; push %r11
  sub $528, %rsp
  and $-16, %rsp
  fxsave (%rsp)
  call macThreadLocal
  fxrstor (%rsp)
  lea -64(%rbp), %rsp
  pop %r11; pop %r10; pop %r9; pop %r8; pop %rcx; pop %rdx; pop %rsi; pop %rdi
  pop %rbp
  ret
)");

void setThreadLocals(std::uint64_t address, std::uint64_t initialized, std::uint64_t size) {
  initialAddress = address;
  initialSize = initialized;
  blockSize = size;
}

std::vector<Name> namesOfThreads() {
  return {function("_pthread_mutex_init", &::pthread_mutex_init),
          function("_pthread_mutex_lock", &lockMutex),
          function("_pthread_mutex_trylock", &tryMutex),
          function("_pthread_mutex_unlock", &unlockMutex),
          function("_pthread_mutex_destroy", &destroyMutex),
          function("_pthread_mutexattr_init", &::pthread_mutexattr_init),
          function("_pthread_mutexattr_settype", &setMutexType),
          function("_pthread_mutexattr_destroy", &::pthread_mutexattr_destroy),
          function("_pthread_cond_init", &::pthread_cond_init),
          function("_pthread_cond_signal", &signalCondition),
          function("_pthread_cond_broadcast", &wakeAll),
          function("_pthread_cond_wait", &waitFor),
          function("_pthread_cond_timedwait", &waitUntil),
          function("_pthread_cond_destroy", &destroyCondition),
          function("_pthread_rwlock_rdlock", &lockToRead),
          function("_pthread_rwlock_wrlock", &lockToWrite),
          function("_pthread_rwlock_unlock", &unlock),
          function("_pthread_once", &runOnce),
          function("_pthread_create", &startThread),
          function("_pthread_detach", &::pthread_detach),
          function("_pthread_mach_thread_np", &threadNumber),
          function("__tlv_bootstrap", &macThreadLocalThunk),
          function("__tlv_atexit", &atThreadEnd)};
}
