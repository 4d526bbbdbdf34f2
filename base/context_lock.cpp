// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "base/context_lock.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <new>

#include "base/local_mutex.h"

// A handle is a slot's number plus 1, so that it stays 32 bits wide where a pointer is wider.
// Slots are in chunks that are never moved or freed: a handle is found without a lock while other
// threads make new ones.
namespace qvx {
namespace {

constexpr u32 kFirstChunkBits = 6;
constexpr u32 kChunkCount = 32 - kFirstChunkBits;

struct Slot {
  std::atomic<LocalMutex> mutex;
  u32 nextFree;  // a handle; guarded by tableMutex
};

std::array<std::atomic<Slot*>, kChunkCount> chunks;
pthread_mutex_t tableMutex = PTHREAD_MUTEX_INITIALIZER;
u32 slotsUsed = 0;   // guarded by tableMutex
u32 slotsInUse = 0;  // guarded by tableMutex
u32 firstFree = 0;   // guarded by tableMutex

class TableHold {
 public:
  TableHold() { (void)pthread_mutex_lock(&tableMutex); }
  ~TableHold() { (void)pthread_mutex_unlock(&tableMutex); }
  TableHold(const TableHold&) = delete;
  TableHold& operator=(const TableHold&) = delete;
};

// Chunk n holds 64 << n slots, so slot s + 64 has its chunk in its highest bit.
u32 ChunkOf(u32 slot) {
  return 31 - static_cast<u32>(__builtin_clz(slot + (1U << kFirstChunkBits))) - kFirstChunkBits;
}

u32 FirstSlotOf(u32 chunk) { return (1U << (chunk + kFirstChunkBits)) - (1U << kFirstChunkBits); }

// Above it, a slot's number plus 64 would not fit 32 bits. Handle 0 has no chunk either: its slot
// is the highest number.
bool HasChunk(u32 slot) { return slot < UINT32_MAX - (1U << kFirstChunkBits); }

Slot* FindSlot(u32 handle) {
  const u32 slot = handle - 1;
  if (!HasChunk(slot)) return nullptr;
  const u32 chunk = ChunkOf(slot);
  Slot* const first = chunks.at(chunk).load(std::memory_order_acquire);
  return first == nullptr ? nullptr : first + (slot - FirstSlotOf(chunk));
}

LocalMutex FindMutex(u32 handle) {
  const Slot* const slot = FindSlot(handle);
  return slot == nullptr ? nullptr : slot->mutex.load(std::memory_order_acquire);
}

// From here to the end of the namespace: under tableMutex.
u32 NewSlot() {
  const u32 slot = slotsUsed;
  if (!HasChunk(slot)) return 0;
  const u32 chunk = ChunkOf(slot);
  if (chunks.at(chunk).load(std::memory_order_relaxed) == nullptr) {
    const size_t count = size_t{1} << (chunk + kFirstChunkBits);
    auto* const made = static_cast<Slot*>(calloc(count, sizeof(Slot)));
    if (made == nullptr) return 0;
    for (size_t at = 0; at < count; ++at) {
      new (made + at) Slot{};
    }
    chunks.at(chunk).store(made, std::memory_order_release);
  }
  slotsUsed = slot + 1;
  return slot + 1;
}

u32 TakeSlot() {
  if (firstFree == 0) return NewSlot();
  const u32 handle = firstFree;
  firstFree = FindSlot(handle)->nextFree;
  return handle;
}

// The slot's handle, 0 without enough memory.
u32 Keep(LocalMutex mutex) {
  const u32 handle = TakeSlot();
  if (handle == 0) return 0;
  FindSlot(handle)->mutex.store(mutex, std::memory_order_release);
  ++slotsInUse;
  return handle;
}

// What the slot kept; null when it was free.
LocalMutex Drop(u32 handle) {
  Slot* const slot = FindSlot(handle);
  LocalMutex mutex = slot->mutex.exchange(nullptr, std::memory_order_acq_rel);
  if (mutex == nullptr) return nullptr;
  slot->nextFree = firstFree;
  firstFree = handle;
  --slotsInUse;
  return mutex;
}

}  // namespace

u32 AllocContextLock() {
  LocalMutex mutex = CreateLocalMutex();
  if (mutex == nullptr) return 0;
  u32 handle = 0;
  {
    const TableHold hold;
    handle = Keep(mutex);
  }
  if (handle == 0) DestroyLocalMutex(mutex);
  return handle;
}

void FreeContextLock(u32 handle) {
  if (FindSlot(handle) == nullptr) return;
  LocalMutex mutex = nullptr;
  {
    const TableHold hold;
    mutex = Drop(handle);
  }
  DestroyLocalMutex(mutex);
}

void LockContext(u32 handle) {
  LocalMutex mutex = FindMutex(handle);
  if (mutex != nullptr) (void)pthread_mutex_lock(mutex);
}

void UnLockContext(u32 handle) {
  LocalMutex mutex = FindMutex(handle);
  if (mutex != nullptr) (void)pthread_mutex_unlock(mutex);
}

void HoldContextLocksForFork() { (void)pthread_mutex_lock(&tableMutex); }

void EndContextLocksHold() { (void)pthread_mutex_unlock(&tableMutex); }

// The slots belong to the loaded image: a host that often loads and unloads it gets them back.
// While a handle is in use they stay, because a thread may still hold its lock; at the end of a
// process threads may also be making locks. A busy table is left as it is, not waited for.
void ReleaseContextLockSlots() {
  if (pthread_mutex_trylock(&tableMutex) != 0) return;
  if (slotsInUse == 0) {
    for (std::atomic<Slot*>& chunk : chunks) {
      free(chunk.exchange(nullptr, std::memory_order_acq_rel));
    }
    slotsUsed = 0;
    firstFree = 0;
  }
  EndContextLocksHold();
}

}  // namespace qvx
