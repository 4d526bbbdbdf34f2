// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/grow_string.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "base/heap.h"
#include "base/results.h"
#include "text/transcode.h"
#include "text/unit_scan.h"

namespace qvx {
namespace {

// Up to this capacity a record doubles; above it, it grows by a quarter.
constexpr u32 kLastDoubledCapacity = 0xFFFFF;

u32 GrownCapacity(u32 capacity, u32 needed) {
  const u64 grown = capacity > kLastDoubledCapacity ? u64{capacity} * 125 / 100 : u64{capacity} * 2;
  return static_cast<u32>(std::min<u64>(std::max<u64>(needed, grown), kMaxSize));
}

// Both forms differ only in the width of a unit: sizes are bytes, lengths are units. An odd
// capacity of the 16-bit form is rounded up, so that the terminator of a capacity of 1 has room.
template <typename Unit>
HeapArray<Unit> AllocText(u32 capacity) {
  return AllocArray<Unit>((u64{capacity} + sizeof(Unit) - 1) / sizeof(Unit));
}

// The C library moves the pages of a large block; a new block would be filled again.
template <typename Unit>
Unit* ReAllocText(Unit* text, u32 capacity) {
  const u64 bytes = (u64{capacity} + sizeof(Unit) - 1) / sizeof(Unit) * sizeof(Unit);
  return static_cast<Unit*>(realloc(text, static_cast<size_t>(bytes)));
}

// The offset in bytes of a text within the record's block, for a text that is appended to its own
// record; `capacity` or more for any other text.
u64 OffsetWithin(const void* text, u32 capacity, const void* added) {
  const auto begin = reinterpret_cast<uintptr_t>(text);
  const auto at = reinterpret_cast<uintptr_t>(added);
  return at < begin ? capacity : at - begin;
}

template <typename Unit, typename Record>
Unit* Start(Record* record, u32 capacity) {
  if (record == nullptr || capacity == 0) return nullptr;
  HeapArray<Unit> text = AllocText<Unit>(capacity);
  if (!text) return nullptr;
  text[0] = 0;
  record->text = text.release();
  record->capacity = capacity;
  record->length = 0;
  return record->text;
}

template <typename Record>
void Release(Record* record) {
  if (record == nullptr) return;
  FreeMem(record->text);
  *record = Record{};
}

// False when the record cannot grow; it then keeps its text.
template <typename Unit, typename Record>
bool Append(Record* record, const Unit* added, u64 count) {
  const u64 needed = (u64{record->length} + count + 1) * sizeof(Unit);
  if (needed > kMaxSize) return false;
  if (needed > record->capacity) {
    const u32 capacity = GrownCapacity(record->capacity, static_cast<u32>(needed));
    const u64 within = OffsetWithin(record->text, record->capacity, added);
    Unit* const grown = ReAllocText(record->text, capacity);
    if (grown == nullptr) return false;
    if (within < record->capacity) {
      added = reinterpret_cast<const Unit*>(reinterpret_cast<const u8*>(grown) + within);
    }
    record->text = grown;
    record->capacity = capacity;
  }
  memcpy(record->text + record->length, added, static_cast<size_t>(count) * sizeof(Unit));
  record->length += static_cast<u32>(count);
  record->text[record->length] = 0;
  return true;
}

// Deliberate: a record that cannot grow keeps its text, and the call returns that text as after a
// success; only the unchanged length shows it. Held by GrowString.FailedGrowthLeavesTheOldText.
template <typename Unit, typename Record>
Unit* AppendAndReturn(Record* record, const Unit* added, u64 count) {
  (void)Append(record, added, count);
  return record->text;
}

// The block that the text is in goes to `old`, unless another is kept there.
astring* CopyToNewBlock(const SSAStr& record, u32 capacity, HeapArray<astring>* old) {
  HeapArray<astring> grown = AllocText<astring>(capacity);
  if (!grown) return nullptr;
  memcpy(grown.get(), record.text, size_t{record.length} + 1);
  HeapArray<astring> left(record.text);
  if (!*old) *old = std::move(left);
  return grown.release();
}

}  // namespace

astring* SSAStrAlloc(SSAStr* record, u32 capacity) { return Start<astring>(record, capacity); }

ustring* SSUStrAlloc(SSUStr* record, u32 capacity) { return Start<ustring>(record, capacity); }

void SSAStrFree(SSAStr* record) { Release(record); }

void SSUStrFree(SSUStr* record) { Release(record); }

astring* SSAStrMakeRoom(SSAStr* record, u64 count, HeapArray<astring>* old) {
  if (record->text == nullptr) return nullptr;
  const u64 needed = u64{record->length} + count + 1;
  if (needed > kMaxSize) return nullptr;
  if (needed > record->capacity) {
    const u32 capacity = GrownCapacity(record->capacity, static_cast<u32>(needed));
    astring* const grown = old == nullptr ? ReAllocText(record->text, capacity)
                                          : CopyToNewBlock(*record, capacity, old);
    if (grown == nullptr) return nullptr;
    record->text = grown;
    record->capacity = capacity;
  }
  return record->text + record->length;
}

astring* SSAStrCatAStr(SSAStr* record, const astring* text) {
  if (record == nullptr || record->text == nullptr) return nullptr;
  if (text == nullptr) return record->text;
  return AppendAndReturn(record, text, strlen(text));
}

ustring* SSUStrCatUStr(SSUStr* record, const ustring* text) {
  if (record == nullptr || record->text == nullptr) return nullptr;
  if (text == nullptr) return record->text;
  return AppendAndReturn(record, text, UnitCount(text));
}

astring* SSAStrCatUStr(SSAStr* record, const ustring* text) {
  if (record == nullptr || record->text == nullptr) return nullptr;
  u32 size = 0;
  if (text == nullptr || UCS2StrToUTF8Str(nullptr, &size, text) != 0) return record->text;
  const HeapArray<astring> bytes = AllocArray<astring>(size);
  if (!bytes) return nullptr;
  --size;  // the converter stores its terminator one byte past the room it is offered
  if (UCS2StrToUTF8Str(bytes.get(), &size, text) != 0) return record->text;
  return SSAStrCatAStr(record, bytes.get());
}

ustring* SSUStrCatAStr(SSUStr* record, const astring* text) {
  if (record == nullptr || record->text == nullptr) return nullptr;
  if (text == nullptr) return record->text;
  const u64 length = strlen(text);  // a character never has more units than bytes
  if (length * sizeof(ustring) + sizeof(ustring) > kMaxSize) return nullptr;
  const HeapArray<ustring> units = AllocArray<ustring>(length + 1);
  if (!units) return nullptr;
  u32 size = static_cast<u32>(length);  // in units; the terminator's unit is held back
  if (UTF8StrToUCS2Str(units.get(), &size, text) != 0) return record->text;
  return SSUStrCatUStr(record, units.get());
}

bool GrowText::Cat(std::string_view added) {
  return record_.text != nullptr && Append(&record_, added.data(), added.size());
}

}  // namespace qvx
