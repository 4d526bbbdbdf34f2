// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_value.h"

#include <cstring>

#include "base/unaligned.h"
#include "text/number_text.h"
#include "text/time_text.h"

namespace qvx {
namespace {

// Deliberate: the codes are numbered with gaps, and the gaps are refused; the codes are shared with
// the programs that call and never change. Held by XmlValue.GapsInTheNumberingHaveNoForm.
constexpr ValueType kValueTypes[kValueTypeCount] = {
    {ValueForm::kNone, 0, false},             // 0
    {ValueForm::kText, 0, false},             // 1
    {ValueForm::kWideText, 0, false},         // 2
    {ValueForm::kNone, 0, false},             // 3
    {ValueForm::kBooln, 0, false},            // 4
    {ValueForm::kNumber, 4, false},           // 5
    {ValueForm::kNone, 0, false},             // 6
    {ValueForm::kNumber, 4, true},            // 7
    {ValueForm::kNone, 0, false},             // 8
    {ValueForm::kLongNumber, 8, false},       // 9
    {ValueForm::kNone, 0, false},             // 10
    {ValueForm::kLongNumber, 8, true},        // 11
    {ValueForm::kNone, 0, false},             // 12
    {ValueForm::kDouble, 0, false},           // 13
    {ValueForm::kNone, 0, false},             // 14
    {ValueForm::kTime, 0, false},             // 15
    {ValueForm::kTextRecord, 0, false},       // 16
    {ValueForm::kWideTextRecord, 0, false},   // 17
    {ValueForm::kBeginTag, 0, false},         // 18
    {ValueForm::kEndTag, 0, false},           // 19
    {ValueForm::kNumber, 1, false},           // 20
    {ValueForm::kNumber, 1, true},            // 21
    {ValueForm::kNumber, 2, false},           // 22
    {ValueForm::kNumber, 2, true},            // 23
    {ValueForm::kNone, 0, false},             // 24
    {ValueForm::kTypedValue, 0, false},       // 25
    {ValueForm::kEscapedText, 0, false},      // 26
    {ValueForm::kEscapedWideText, 0, false},  // 27
};

// "%.8f" of the largest double is longer; the text kept is at most this long.
constexpr u32 kDoubleCharacters = 31;

// A number's bits, sign- or zero-extended to 64.
u64 LoadNumber(const ValueType& type, const void* value) {
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

u32 PutDigits(astring* out, u64 value, u32 radix) {
  constexpr char kDigits[] = "0123456789abcdef";
  u32 length = 1;
  for (u64 rest = value / radix; rest != 0; rest /= radix) {
    ++length;
  }
  out[length] = '\0';
  for (u32 at = length; at > 0; value /= radix) {
    out[--at] = kDigits[value % radix];
  }
  return length;
}

}  // namespace

const ValueType& ValueTypeOf(s32 code) {
  return kValueTypes[code >= 0 && static_cast<u32>(code) < kValueTypeCount ? code : 0];
}

u32 PutBooln(astring* out, const void* value) {
  const bool isTrue = LoadValue<booln>(value) == 1;
  memcpy(out, isTrue ? "true" : "false", isTrue ? 5 : 6);
  return isTrue ? 4 : 5;
}

u32 PutDecimal(astring* out, const ValueType& type, const void* value) {
  const u64 number = LoadNumber(type, value);
  return type.isSigned ? PutDecimalNumber(out, static_cast<s64>(number))
                       : PutDigits(out, number, 10);
}

u32 PutDecimalNumber(astring* out, s64 number) {
  const u64 magnitude = static_cast<u64>(number);
  if (number >= 0) return PutDigits(out, magnitude, 10);
  out[0] = '-';
  return 1 + PutDigits(out + 1, 0 - magnitude, 10);
}

u32 PutHexadecimal(astring* out, const ValueType& type, const void* value) {
  // Deliberate: signed numbers are extended to 32 bits before they are printed, so an 8-bit -1 is
  // "0xffffffff"; 0 has no prefix. Held by XmlValue.HexadecimalExtendsTheSignTo32Bits.
  const u32 number = static_cast<u32>(LoadNumber(type, value));
  if (number == 0) return PutDigits(out, 0, 16);
  memcpy(out, "0x", 2);
  return 2 + PutDigits(out + 2, number, 16);
}

u32 PutDouble(astring* out, const void* value) {
  // DoubleToASCII takes the length of the standing text for its room, NUL included.
  memset(out, ' ', kDoubleCharacters + 1);
  out[kDoubleCharacters + 1] = '\0';
  DoubleToASCII(out, LoadValue<d64>(value));
  return static_cast<u32>(strlen(out));
}

u32 PutTime(astring* out, const void* value) {
  out[0] = '\0';
  if (TimeToAStr(out, LoadValue<s32>(value)) != 0) out[0] = '\0';
  return static_cast<u32>(strlen(out));
}

}  // namespace qvx
