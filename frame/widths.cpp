// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The layout of every record that callers hand over: fields in order, naturally aligned.
#include <cstddef>

#include "qvxcs/cli_value.h"
#include "qvxcs/grow_string.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/library.h"
#include "qvxcs/list.h"
#include "qvxcs/thread.h"
#include "qvxcs/xml_buffer.h"

namespace {

constexpr size_t kPointer = sizeof(void*);

static_assert(sizeof(astring) == 1 && sizeof(ustring) == 2 && sizeof(booln) == 2);
static_assert(sizeof(u32) == 4 && sizeof(s32) == 4 && sizeof(u64) == 8 && sizeof(d64) == 8);

static_assert(offsetof(SSAStr, text) == 0 && offsetof(SSAStr, capacity) == kPointer);
static_assert(offsetof(SSAStr, length) == kPointer + 4 && sizeof(SSAStr) == kPointer + 8);
static_assert(offsetof(SSUStr, text) == 0 && offsetof(SSUStr, capacity) == kPointer);
static_assert(offsetof(SSUStr, length) == kPointer + 4 && sizeof(SSUStr) == kPointer + 8);

static_assert(offsetof(PXTTypedValue, type) == 0 && offsetof(PXTTypedValue, format) == 4);
static_assert(offsetof(PXTTypedValue, value) == 8 && sizeof(PXTTypedValue) == kPointer + 8);

static_assert(offsetof(PXTDLList, lock) == 0 && offsetof(PXTDLList, head) == kPointer);
static_assert(offsetof(PXTDLList, tail) == 2 * kPointer);
static_assert(offsetof(PXTDLList, count) == 3 * kPointer && sizeof(PXTDLList) == 4 * kPointer);
static_assert(offsetof(PXTSLList, lock) == 0 && offsetof(PXTSLList, head) == kPointer);
static_assert(offsetof(PXTSLList, tail) == 2 * kPointer);
static_assert(offsetof(PXTSLList, count) == 3 * kPointer && sizeof(PXTSLList) == 4 * kPointer);

static_assert(offsetof(PXTDLListEntry, next) == 0 &&
              offsetof(PXTDLListEntry, previous) == kPointer);
static_assert(offsetof(PXTDLListEntry, data) == 2 * kPointer);
static_assert(sizeof(PXTDLListEntry) == 3 * kPointer);
static_assert(offsetof(PXTSLListEntry, next) == 0 && offsetof(PXTSLListEntry, data) == kPointer);
static_assert(sizeof(PXTSLListEntry) == 2 * kPointer);

static_assert(offsetof(PXTKeyValue, key) == 0 && offsetof(PXTKeyValue, value) == kPointer);
static_assert(sizeof(PXTKeyValue) == 2 * kPointer);

static_assert(offsetof(PXTThread, entry) == 0 && offsetof(PXTThread, argument) == kPointer);
static_assert(offsetof(PXTThread, thread) == 2 * kPointer && sizeof(PXTThread) == 3 * kPointer);

static_assert(offsetof(PXTLibrary, path) == 0 && offsetof(PXTLibrary, handle) == kPointer);
static_assert(sizeof(PXTLibrary) == 2 * kPointer);

static_assert(offsetof(PXTCommand, name) == 0 && offsetof(PXTCommand, function) == kPointer);
static_assert(sizeof(PXTCommand) == 2 * kPointer);

}  // namespace
