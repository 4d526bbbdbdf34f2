// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Lists of 1,000 entries, and a table of 100,000 identifiers.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "qvxcs/qvxcs.h"

namespace {

constexpr u32 kEntries = 1000;
constexpr u32 kIdentifiers = 100000;

// A block of the heap for each entry.
void Yardstick(benchmark::State& state) {
  std::vector<void*> blocks(kEntries);
  for (auto _ : state) {
    for (void*& block : blocks) {
      block = malloc(sizeof(PXTDLListEntry) + sizeof(u32));
      benchmark::DoNotOptimize(block);
    }
    for (void* block : blocks) {
      free(block);
    }
  }
}
BENCHMARK(Yardstick);

u32 Number(const PXTDLListEntry* entry) {
  u32 number = 0;
  memcpy(&number, entry->data, sizeof(number));
  return number;
}

s32 ByNumber(PXTDLListEntry* newEntry, PXTDLListEntry* listEntry) {
  const u32 a = Number(newEntry);
  const u32 b = Number(listEntry);
  return a < b ? -1 : a > b ? 1 : 0;
}

void Empty(PXTDLList* list) {
  while (PXTDLListEntry* entry = PXTDLListRemoveEntryAtHead(list)) {
    PXTDLListEntryFree(entry);
  }
  PXTDLListFree(list);
}

void FillAtTail(benchmark::State& state) {
  for (auto _ : state) {
    PXTDLList* list = PXTDLListAlloc();
    for (u32 number = 0; number < kEntries; ++number) {
      PXTDLListInsertEntryAtTail(list, PXTDLListEntryAlloc(sizeof(number)));
    }
    Empty(list);
  }
}
BENCHMARK(FillAtTail);

// Each entry finds its place among all before it.
void FillInOrder(benchmark::State& state) {
  for (auto _ : state) {
    PXTDLList* list = PXTDLListAlloc();
    for (u32 number = 0; number < kEntries; ++number) {
      PXTDLListEntry* entry = PXTDLListEntryAlloc(sizeof(number));
      memcpy(entry->data, &number, sizeof(number));
      PXTDLListInsertOrdered(list, entry, ByNumber);
    }
    Empty(list);
  }
}
BENCHMARK(FillInOrder);

class Table {
 public:
  Table() : bytes_(PXTHashTableBytesNeeded(kIdentifiers)) { PXTClearHashTable(Data(), Size()); }
  void* Data() { return bytes_.data(); }
  u32 Size() const { return static_cast<u32>(bytes_.size()); }

 private:
  std::vector<u8> bytes_;
};

void AcquireTheLast(benchmark::State& state) {
  Table table;
  for (u32 count = 1; count < kIdentifiers; ++count) {
    PXTAcquireHashID(table.Data(), table.Size());
  }
  for (auto _ : state) {
    const u32 id = PXTAcquireHashID(table.Data(), table.Size());
    PXTReleaseHashID(table.Data(), table.Size(), id);
  }
}
BENCHMARK(AcquireTheLast);

void FindTheHighest(benchmark::State& state) {
  Table table;
  PXTAcquireHashID(table.Data(), table.Size());
  for (auto _ : state) {
    benchmark::DoNotOptimize(PXTGetMaxInUseID(table.Data(), table.Size()));
  }
}
BENCHMARK(FindTheHighest);

}  // namespace
