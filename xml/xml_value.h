// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_XML_VALUE_H
#define QVX_XML_XML_VALUE_H

#include "qvxcs/types.h"

namespace qvx {

// How the value behind a type code is read.
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
