// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_XML_VALUE_H
#define QVX_XML_XML_VALUE_H

#include <cstddef>
#include <cstring>

#include "qvxcs/types.h"

#include "base/unaligned.h"

namespace qvx {

// How the value of a type code is read.
enum class ValueForm : u8 {
  kNone,  // a gap in the numbering, or a code outside it
  kText,
  kWideText,
  kBooln,
  kNumber,
  kLongNumber,
  kDouble,
  kTime,
  kTextRecord,
  kWideTextRecord,
  kBeginTag,
  kEndTag,
  kTypedValue,
  kEscapedText,
  kEscapedWideText,
};

struct ValueType {
  ValueForm form;
  u8 bytes;  // width of a number in memory; 0 for the other forms
  bool isSigned;
};

constexpr u32 kValueTypeCount = 28;

const ValueType& ValueTypeOf(s32 code);

// Copies a text and returns the place after it. Names and numbers are short: two copies that may
// overlap replace a call.
inline astring* PutText(astring* to, const astring* text, size_t length) {
  if (length > 16) {
    memcpy(to, text, length);
  } else if (length >= 8) {
    const u64 last = LoadValue<u64>(text + length - 8);
    StoreValue(to, LoadValue<u64>(text));
    StoreValue(to + length - 8, last);
  } else if (length >= 4) {
    const u32 last = LoadValue<u32>(text + length - 4);
    StoreValue(to, LoadValue<u32>(text));
    StoreValue(to + length - 4, last);
  } else {
    for (size_t at = 0; at < length; ++at) {
      to[at] = text[at];
    }
  }
  return to + length;
}

// Room for the text of any number, boolean or time, its NUL included.
constexpr u32 kValueTextRoom = 64;

// Each writes a terminated text into kValueTextRoom bytes and returns its length.
u32 PutBooln(astring* out, const void* value);
u32 PutDecimal(astring* out, const ValueType& type, const void* value);
u32 PutDecimalNumber(astring* out, s64 number);
// The low 32 bits of a sign-extended number, as "%#x" prints them.
u32 PutHexadecimal(astring* out, const ValueType& type, const void* value);
u32 PutDouble(astring* out, const void* value);
// Local time of a 32-bit count of seconds; the empty text when it cannot be broken down.
u32 PutTime(astring* out, const void* value);

}  // namespace qvx

#endif
