// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "support/alloc_fault.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

#include "support/passing_time.h"

namespace {

std::atomic<u32> countdown{0};
std::atomic<bool> fired{false};
std::atomic<bool> countSleeps{false};
std::atomic<u32> sleeps{0};
std::atomic<u64> slept{0};
std::atomic<size_t> lastSize{0};

bool MustFail() {
  if (countdown.load() == 0 || countdown.fetch_sub(1) != 1) return false;
  fired = true;
  errno = ENOMEM;
  return true;
}

}  // namespace

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
int __real_usleep(useconds_t time);

void* __wrap_malloc(size_t size) {
  lastSize = size;
  return MustFail() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(size_t count, size_t size) {
  lastSize = count * size;
  return MustFail() ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* block, size_t size) {
  lastSize = size;
  return MustFail() ? nullptr : __real_realloc(block, size);
}

int __wrap_usleep(useconds_t time) {
  if (qvx::test::ActsOnSleep(time)) return 0;
  if (!countSleeps) return __real_usleep(time);
  ++sleeps;
  slept += time;
  return 0;
}
}

void* operator new(size_t size) {
  void* const block = MustFail() ? nullptr : __real_malloc(size == 0 ? 1 : size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return MustFail() ? nullptr : __real_malloc(size == 0 ? 1 : size);
}

void* operator new[](size_t size) { return operator new(size); }
void operator delete(void* block) noexcept { free(block); }
void operator delete[](void* block) noexcept { free(block); }
void operator delete(void* block, size_t) noexcept { free(block); }
void operator delete[](void* block, size_t) noexcept { free(block); }

namespace qvx::test {

size_t LastAllocationSize() { return lastSize; }

FailNthAllocation::FailNthAllocation(u32 nth) {
  if (nth != 0) {
    fired = false;
  }
  countdown = nth;
}

FailNthAllocation::~FailNthAllocation() { countdown = 0; }

bool FailNthAllocation::Fired() { return fired; }

CountSleeps::CountSleeps() {
  sleeps = 0;
  slept = 0;
  countSleeps = true;
}

CountSleeps::~CountSleeps() { countSleeps = false; }

u32 CountSleeps::Count() { return sleeps; }

u64 CountSleeps::Microseconds() { return slept; }

}  // namespace qvx::test
