// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The layout of every record that callers hand over: fields in order, naturally aligned. Offsets
// are multiples of a pointer's size, because each 32-bit field before a pointer is padded to one;
// widths and signs are checked as well, so that a wider field cannot hide in that padding.
#include <cstddef>
#include <ctime>
#include <type_traits>

#include "qvxcs/cli_value.h"
#include "qvxcs/grow_string.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/library.h"
#include "qvxcs/list.h"
#include "qvxcs/thread.h"
#include "qvxcs/xml_buffer.h"

namespace {

constexpr size_t kPointer = sizeof(void*);

template <typename Field, typename Type>
constexpr bool kIs = std::is_same_v<Field, Type>;

static_assert(kPointer == 8 || kPointer == 4);
static_assert(sizeof(astring) == 1 && sizeof(u8) == 1 && sizeof(s8) == 1);
static_assert(sizeof(ustring) == 2 && sizeof(booln) == 2 && sizeof(u16) == 2 && sizeof(s16) == 2);
static_assert(sizeof(u32) == 4 && sizeof(s32) == 4);
static_assert(sizeof(u64) == 8 && sizeof(s64) == 8 && sizeof(d64) == 8);
static_assert(std::is_unsigned_v<ustring>);
static_assert(std::is_unsigned_v<booln>);
static_assert(std::is_unsigned_v<u8>);
static_assert(std::is_unsigned_v<u16>);
static_assert(std::is_unsigned_v<u32>);
static_assert(std::is_unsigned_v<u64>);
static_assert(std::is_signed_v<s8>);
static_assert(std::is_signed_v<s16>);
static_assert(std::is_signed_v<s32>);
static_assert(std::is_signed_v<s64>);
static_assert(std::is_floating_point_v<d64>);
// The platform's own types are passed as the platform defines them.
static_assert(sizeof(time_t) == kPointer && sizeof(pthread_t) == kPointer);

static_assert(kIs<decltype(SSAStr::text), astring*>);
static_assert(kIs<decltype(SSAStr::capacity), u32>);
static_assert(kIs<decltype(SSAStr::length), u32>);
static_assert(offsetof(SSAStr, text) == 0 && offsetof(SSAStr, capacity) == kPointer);
static_assert(offsetof(SSAStr, length) == kPointer + 4 && sizeof(SSAStr) == kPointer + 8);

static_assert(kIs<decltype(SSUStr::text), ustring*>);
static_assert(kIs<decltype(SSUStr::capacity), u32>);
static_assert(kIs<decltype(SSUStr::length), u32>);
static_assert(offsetof(SSUStr, text) == 0 && offsetof(SSUStr, capacity) == kPointer);
static_assert(offsetof(SSUStr, length) == kPointer + 4 && sizeof(SSUStr) == kPointer + 8);

static_assert(kIs<decltype(PXTTypedValue::type), s32>);
static_assert(kIs<decltype(PXTTypedValue::format), s32>);
static_assert(std::is_pointer_v<decltype(PXTTypedValue::value)>);
static_assert(offsetof(PXTTypedValue, type) == 0 && offsetof(PXTTypedValue, format) == 4);
static_assert(offsetof(PXTTypedValue, value) == 8 && sizeof(PXTTypedValue) == kPointer + 8);

static_assert(kIs<decltype(PXTDLList::lock), u32>);
static_assert(kIs<decltype(PXTDLList::count), u32>);
static_assert(kIs<decltype(PXTDLList::head), PXTDLListEntry*>);
static_assert(kIs<decltype(PXTDLList::tail), PXTDLListEntry*>);
static_assert(offsetof(PXTDLList, lock) == 0 && offsetof(PXTDLList, head) == kPointer);
static_assert(offsetof(PXTDLList, tail) == 2 * kPointer);
static_assert(offsetof(PXTDLList, count) == 3 * kPointer && sizeof(PXTDLList) == 4 * kPointer);

static_assert(kIs<decltype(PXTSLList::lock), u32>);
static_assert(kIs<decltype(PXTSLList::count), u32>);
static_assert(kIs<decltype(PXTSLList::head), PXTSLListEntry*>);
static_assert(kIs<decltype(PXTSLList::tail), PXTSLListEntry*>);
static_assert(offsetof(PXTSLList, lock) == 0 && offsetof(PXTSLList, head) == kPointer);
static_assert(offsetof(PXTSLList, tail) == 2 * kPointer);
static_assert(offsetof(PXTSLList, count) == 3 * kPointer && sizeof(PXTSLList) == 4 * kPointer);

static_assert(kIs<decltype(PXTDLListEntry::next), PXTDLListEntry*>);
static_assert(kIs<decltype(PXTDLListEntry::previous), PXTDLListEntry*>);
static_assert(std::is_pointer_v<decltype(PXTDLListEntry::data)>);
static_assert(offsetof(PXTDLListEntry, next) == 0 &&
              offsetof(PXTDLListEntry, previous) == kPointer);
static_assert(offsetof(PXTDLListEntry, data) == 2 * kPointer);
static_assert(sizeof(PXTDLListEntry) == 3 * kPointer);

static_assert(kIs<decltype(PXTSLListEntry::next), PXTSLListEntry*>);
static_assert(std::is_pointer_v<decltype(PXTSLListEntry::data)>);
static_assert(offsetof(PXTSLListEntry, next) == 0 && offsetof(PXTSLListEntry, data) == kPointer);
static_assert(sizeof(PXTSLListEntry) == 2 * kPointer);

static_assert(kIs<decltype(PXTKeyValue::key), astring*>);
static_assert(kIs<decltype(PXTKeyValue::value), astring*>);
static_assert(offsetof(PXTKeyValue, key) == 0 && offsetof(PXTKeyValue, value) == kPointer);
static_assert(sizeof(PXTKeyValue) == 2 * kPointer);

static_assert(kIs<decltype(PXTThread::entry), u32 (*)(u32)>);
static_assert(kIs<decltype(PXTThread::argument), u32>);
static_assert(kIs<decltype(PXTThread::thread), pthread_t>);
static_assert(offsetof(PXTThread, entry) == 0 && offsetof(PXTThread, argument) == kPointer);
static_assert(offsetof(PXTThread, thread) == 2 * kPointer && sizeof(PXTThread) == 3 * kPointer);

static_assert(kIs<decltype(PXTLibrary::path), astring*>);
static_assert(std::is_pointer_v<decltype(PXTLibrary::handle)>);
static_assert(offsetof(PXTLibrary, path) == 0 && offsetof(PXTLibrary, handle) == kPointer);
static_assert(sizeof(PXTLibrary) == 2 * kPointer);

static_assert(kIs<decltype(PXTCommand::name), astring*>);
static_assert(kIs<decltype(PXTCommand::function), astring* (*)(s32, astring**)>);
static_assert(offsetof(PXTCommand, name) == 0 && offsetof(PXTCommand, function) == kPointer);
static_assert(sizeof(PXTCommand) == 2 * kPointer);

}  // namespace
