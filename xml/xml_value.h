// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_XML_VALUE_H
#define QVX_XML_XML_VALUE_H

#include <array>

#include "qvxcs/cli_value.h"
#include "qvxcs/types.h"
#include "qvxcs/xml_buffer.h"

#include "base/unaligned.h"
#include "xml/decimal.h"

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

using ValueTypes = std::array<ValueType, QVX_TYPE_THOUSANDTHS + 1>;
extern const ValueTypes kValueTypes;

inline const ValueType& ValueTypeOf(s32 code) {
  const auto at = static_cast<u32>(code);
  return kValueTypes[at < kValueTypes.size() ? at : 0];
}

// A number's bits, sign- or zero-extended to 64.
inline u64 LoadNumber(const ValueType& type, const void* value) {
  switch (type.bytes) {
    case 1:
      return type.isSigned ? static_cast<u64>(s64{LoadValue<s8>(value)}) : LoadValue<u8>(value);
    case 2:
      return type.isSigned ? static_cast<u64>(s64{LoadValue<s16>(value)}) : LoadValue<u16>(value);
    case 4:
      return type.isSigned ? static_cast<u64>(s64{LoadValue<s32>(value)}) : LoadValue<u32>(value);
    default:
      return LoadValue<u64>(value);
  }
}

[[gnu::always_inline]] inline Decimal DecimalOf(const ValueType& type, const void* value) {
  const u64 number = LoadNumber(type, value);
  return type.isSigned ? DecimalOf(static_cast<s64>(number)) : DecimalOf(number, false);
}

// Room for the text of any number, boolean or time, its NUL included.
constexpr u32 kValueTextRoom = 64;

// Each writes as ValueType::Put does.
u32 PutDecimal(astring* out, const ValueType& type, const void* value);
u32 PutDecimalNumber(astring* out, s64 number);
// The low 32 bits of a sign-extended number, as "%#x" prints them.
u32 PutHexadecimal(astring* out, const ValueType& type, const void* value);

}  // namespace qvx

#endif
