// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_GROW_STRING_H
#define QVX_TEXT_GROW_STRING_H

#include <string_view>

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

// A growable text that frees itself; empty without enough memory.
class GrowText {
 public:
  explicit GrowText(u32 capacity) { (void)SSAStrAlloc(&record_, capacity); }
  ~GrowText() { SSAStrFree(&record_); }
  GrowText(const GrowText&) = delete;
  GrowText& operator=(const GrowText&) = delete;

  explicit operator bool() const { return record_.text != nullptr; }
  // False when the text could not grow; it then stays as it was.
  [[nodiscard]] bool Cat(std::string_view added);
  [[nodiscard]] const astring* Text() const { return record_.text; }
  [[nodiscard]] u32 Length() const { return record_.length; }

 private:
  SSAStr record_ = {};
};

}  // namespace qvx

#endif
