// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_value.h"

#include <cstring>

#include "qvxcs/cli_value.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "base/unaligned.h"
#include "text/number_text.h"
#include "text/time_text.h"

namespace qvx {
namespace {

// "%.8f" of the largest double is longer; the text kept is at most this long.
constexpr u32 kDoubleCharacters = 31;

u32 PutTerminated(astring* out, const Decimal& number) {
  *PutDecimal(out, number) = '\0';
  return number.length;
}

u32 PutHexDigits(astring* out, u32 value) {
  constexpr char kDigits[] = "0123456789abcdef";
  u32 length = 1;
  for (u32 rest = value >> 4; rest != 0; rest >>= 4) {
    ++length;
  }
  out[length] = '\0';
  for (u32 at = length; at > 0; value >>= 4) {
    out[--at] = kDigits[value & 0xF];
  }
  return length;
}

u32 PutBooln(astring* out, const ValueType&, const void* value) {
  const bool isTrue = LoadValue<booln>(value) == 1;
  memcpy(out, isTrue ? "true" : "false", isTrue ? 5 : 6);
  return isTrue ? 4 : 5;
}

u32 PutDouble(astring* out, const ValueType&, const void* value) {
  // DoubleToASCII treats the length of the text already in the buffer as its room, NUL included.
  memset(out, ' ', kDoubleCharacters + 1);
  out[kDoubleCharacters + 1] = '\0';
  DoubleToASCII(out, LoadValue<d64>(value));
  return static_cast<u32>(strlen(out));
}

// Local time of a 32-bit count of seconds; the empty text when it cannot be broken down.
u32 PutTime(astring* out, const ValueType&, const void* value) {
  out[0] = '\0';
  if (TimeToAStr(out, LoadValue<s32>(value)) != 0) out[0] = '\0';
  return static_cast<u32>(strlen(out));
}

u32 TakeText(const astring* text, const ValueType&, void* out) {
  StoreValue(out, text);
  return SM_STATUS_SUCCESS;
}

u32 TakeBooln(const astring* text, const ValueType&, void* out) {
  u32 status = 0;
  StoreValue(out, ASCIIToBoolnV(text, &status));
  return status;
}

u32 TakeDouble(const astring* text, const ValueType&, void* out) {
  StoreValue(out, ASCIIToDouble(text));
  return SM_STATUS_SUCCESS;
}

// Deliberate: the narrow numbers are read as 32-bit ones and cut to their width, without a check of
// their range. Held by ValueConvert.NarrowNumbersAreCutToTheirWidth.
u64 ReadNumber(const astring* text, const ValueType& type, u32* status) {
  constexpr u32 kBase = QVX_BASE_DECIMAL;
  if (type.bytes <= 4) {
    return type.isSigned ? static_cast<u32>(ASCIIToSigned32VT(text, kBase, status))
                         : ASCIIToUnSigned32VT(text, kBase, status);
  }
  return type.isSigned ? static_cast<u64>(ASCIIToSigned64VT(text, kBase, status))
                       : ASCIIToUnSigned64VT(text, kBase, status);
}

u32 TakeNumber(const astring* text, const ValueType& type, void* out) {
  u32 status = 0;
  const u64 number = ReadNumber(text, type, &status);
  memcpy(out, &number, type.bytes);  // the low bytes come first
  return status;
}

// Deliberate: thousandths are divided toward zero and kept to the range of 32 bits, yet stored in
// 64. Held by ValueConvert.ThousandthsAreDividedTowardZero.
u32 TakeThousandths(const astring* text, const ValueType&, void* out) {
  u32 status = 0;
  const s64 whole = ASCIIToSigned64VT(text, QVX_BASE_DECIMAL, &status) / 1000;
  if (whole < INT32_MIN || whole > INT32_MAX) return SM_STATUS_INVALID_PARAMETER;
  StoreValue(out, whole);
  return status;
}

constexpr ValueType Only(ValueForm form) { return {form, nullptr, nullptr, 0, false}; }

constexpr ValueType Integer(ValueForm form, u8 bytes, bool isSigned) {
  return {form, PutDecimal, TakeNumber, bytes, isSigned};
}

}  // namespace

// Deliberate: the codes are numbered with gaps, and the gaps are refused; the codes are shared with
// the calling programs and never change. Held by XmlValue.GapsInTheNumberingHaveNoForm.
constinit const ValueTypes kValueTypes = [] {
  // A new type is one line here and its code in the public header.
  using Form = ValueForm;
  ValueTypes types = {};
  types[QVX_TYPE_ASTRING] = {Form::kText, nullptr, TakeText, 0, false};
  types[QVX_TYPE_USTRING] = Only(Form::kWideText);
  types[QVX_TYPE_BOOLN] = {Form::kWhole, PutBooln, TakeBooln, 0, false};
  types[QVX_TYPE_U8] = Integer(Form::kNumber, 1, false);
  types[QVX_TYPE_S8] = Integer(Form::kNumber, 1, true);
  types[QVX_TYPE_U16] = Integer(Form::kNumber, 2, false);
  types[QVX_TYPE_S16] = Integer(Form::kNumber, 2, true);
  types[QVX_TYPE_U32] = Integer(Form::kNumber, 4, false);
  types[QVX_TYPE_S32] = Integer(Form::kNumber, 4, true);
  types[QVX_TYPE_U64] = Integer(Form::kPieces, 8, false);
  types[QVX_TYPE_S64] = Integer(Form::kPieces, 8, true);
  types[QVX_TYPE_D64] = {Form::kPieces, PutDouble, TakeDouble, 0, false};
  types[QVX_TYPE_TIME] = {Form::kTime, PutTime, nullptr, 0, false};
  types[QVX_TYPE_SSASTR] = Only(Form::kTextRecord);
  types[QVX_TYPE_SSUSTR] = Only(Form::kWideTextRecord);
  types[QVX_TYPE_BEGIN] = Only(Form::kBeginTag);
  types[QVX_TYPE_END] = Only(Form::kEndTag);
  types[QVX_TYPE_TYPED_VALUE] = Only(Form::kTypedValue);
  types[QVX_TYPE_XML_ASTRING] = Only(Form::kEscapedText);
  types[QVX_TYPE_XML_USTRING] = Only(Form::kEscapedWideText);
  types[QVX_TYPE_THOUSANDTHS] = {Form::kNone, nullptr, TakeThousandths, 0, false};
  return types;
}();

u32 PutDecimal(astring* out, const ValueType& type, const void* value) {
  return PutTerminated(out, DecimalOf(type, value));
}

u32 PutDecimalNumber(astring* out, s64 number) { return PutTerminated(out, DecimalOf(number)); }

u32 PutHexadecimal(astring* out, const ValueType& type, const void* value) {
  // Deliberate: signed numbers are extended to 32 bits before they are printed, so an 8-bit -1 is
  // "0xffffffff"; 0 has no prefix. Held by XmlValue.HexadecimalExtendsTheSignTo32Bits.
  const u32 number = static_cast<u32>(LoadNumber(type, value));
  if (number == 0) return PutHexDigits(out, 0);
  memcpy(out, "0x", 2);
  return 2 + PutHexDigits(out + 2, number);
}

}  // namespace qvx
