// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_XML_VALUE_H
#define QVX_XML_XML_VALUE_H

#include <cstddef>
#include <cstring>

#include "qvxcs/types.h"

#include "base/unaligned.h"

namespace qvx {

// How the XML buffer writes the value of a type code.
enum class ValueForm : u8 {
  kNone,  // not at all: a gap in the numbering, a code outside it, or a type only read from text
  kText,
  kWideText,
  kWhole,   // its element in one piece
  kNumber,  // the same, in the base that the caller asks for
  kPieces,  // tags and value one after another
  kTime,    // the same, and "-1" below 1
  kTextRecord,
  kWideTextRecord,
  kBeginTag,
  kEndTag,
  kTypedValue,
  kEscapedText,
  kEscapedWideText,
};

// All that the library knows of a type code; the table is in xml_value.cpp.
struct ValueType {
  // Writes the value's terminated text into kValueTextRoom bytes and returns its length.
  using Put = u32 (*)(astring* out, const ValueType& type, const void* value);
  // Reads the value from a text, by a status of its conversion.
  using Take = u32 (*)(const astring* text, const ValueType& type, void* out);

  ValueForm form;
  Put put;    // null: the value is a text, or has none
  Take take;  // null: not read from text
  u8 bytes;   // width of an integer in memory
  bool isSigned;
};

const ValueType& ValueTypeOf(s32 code);

// Copies `length` bytes, `Part` wide at each end: both copies overlap where there are fewer than
// two parts. There is at least one part, and everything is read before anything is written.
template <typename Part>
[[gnu::always_inline]] inline void PutBothEnds(astring* to, const astring* text, size_t length) {
  const Part first = LoadValue<Part>(text);
  const Part last = LoadValue<Part>(text + length - sizeof(Part));
  StoreValue(to, first);
  StoreValue(to + length - sizeof(Part), last);
}

struct SixteenBytes {
  u64 halves[2];
};

// Copies a text and returns the place after it. Names and values are short: two copies that may
// overlap replace a call.
[[gnu::always_inline]] inline astring* PutText(astring* to, const astring* text, size_t length) {
  if (length > 2 * sizeof(SixteenBytes)) {
    memcpy(to, text, length);
  } else if (length >= sizeof(SixteenBytes)) {
    PutBothEnds<SixteenBytes>(to, text, length);
  } else if (length >= sizeof(u64)) {
    PutBothEnds<u64>(to, text, length);
  } else if (length >= sizeof(u32)) {
    PutBothEnds<u32>(to, text, length);
  } else if (length >= sizeof(u16)) {
    PutBothEnds<u16>(to, text, length);
  } else if (length == 1) {
    *to = *text;
  }
  return to + length;
}

// A number whose decimal text is `length` characters long, its sign counted.
struct Decimal {
  u64 magnitude;
  u32 length;
  bool isNegative;
};
Decimal DecimalOf(const ValueType& type, const void* value);
// Writes the text without a terminator and returns the place after it.
astring* PutDecimal(astring* to, const Decimal& number);

// Room for the text of any number, boolean or time, its NUL included.
constexpr u32 kValueTextRoom = 64;

// Each writes as ValueType::Put does.
u32 PutDecimal(astring* out, const ValueType& type, const void* value);
u32 PutDecimalNumber(astring* out, s64 number);
// The low 32 bits of a sign-extended number, as "%#x" prints them.
u32 PutHexadecimal(astring* out, const ValueType& type, const void* value);

}  // namespace qvx

#endif
