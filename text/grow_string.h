// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_GROW_STRING_H
#define QVX_TEXT_GROW_STRING_H

#include "qvxcs/grow_string.h"
#include "qvxcs/types.h"

#include "base/heap.h"

namespace qvx {

astring* SSAStrAlloc(SSAStr* record, u32 capacity);
ustring* SSUStrAlloc(SSUStr* record, u32 capacity);
void SSAStrFree(SSAStr* record);
void SSUStrFree(SSUStr* record);
astring* SSAStrCatAStr(SSAStr* record, const astring* text);
ustring* SSUStrCatUStr(SSUStr* record, const ustring* text);
astring* SSAStrCatUStr(SSAStr* record, const ustring* text);
ustring* SSUStrCatAStr(SSUStr* record, const astring* text);

// SSAStrCatAStr for a text whose length is known; `text` need not be terminated.
astring* SSAStrCatChars(SSAStr* record, const astring* text, u64 count);

// Makes room for `count` characters and their NUL after the record's text, by the growth rule.
// Returns the place for them, null when the record cannot grow. The caller that fills it sets the
// length and the NUL. When the text moves, its block stays in `old`, unless another is kept there;
// with a null `old` it is freed.
astring* SSAStrMakeRoom(SSAStr* record, u64 count, HeapArray<astring>* old);

// Whether SSAStrMakeRoom has nothing to do.
inline bool SSAStrHasRoom(const SSAStr& record, u64 count) {
  return record.text != nullptr && count < record.capacity &&
         record.length + count < record.capacity;
}

}  // namespace qvx

#endif
