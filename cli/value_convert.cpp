// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/value_convert.h"

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "base/unaligned.h"
#include "cli/value_text.h"
#include "text/number_text.h"
#include "text/param_vector.h"
#include "text/xml_escape.h"
#include "xml/xml_value.h"

namespace qvx {
namespace {

constexpr s32 kThousandths = 99;

// Deliberate: the narrow numbers are read as 32-bit ones and cut to their width, without a check of
// their range. Held by ValueConvert.NarrowNumbersAreCutToTheirWidth.
template <typename T>
u32 StoreUnsigned(const astring* text, void* out) {
  u32 status = 0;
  StoreValue(out, static_cast<T>(ASCIIToUnSigned32VT(text, 10, &status)));
  return status;
}

template <typename T>
u32 StoreSigned(const astring* text, void* out) {
  u32 status = 0;
  StoreValue(out, static_cast<T>(ASCIIToSigned32VT(text, 10, &status)));
  return status;
}

u32 StoreBooln(const astring* text, void* out) {
  u32 status = 0;
  StoreValue(out, ASCIIToBoolnV(text, &status));
  return status;
}

u32 StoreUnsigned64(const astring* text, void* out) {
  u32 status = 0;
  StoreValue(out, ASCIIToUnSigned64VT(text, 10, &status));
  return status;
}

u32 StoreSigned64(const astring* text, void* out) {
  u32 status = 0;
  StoreValue(out, ASCIIToSigned64VT(text, 10, &status));
  return status;
}

// Deliberate: thousandths are divided toward zero and kept to the range of 32 bits, yet stored in
// 64. Held by ValueConvert.ThousandthsAreDividedTowardZero.
u32 StoreThousandths(const astring* text, void* out) {
  u32 status = 0;
  const s64 whole = ASCIIToSigned64VT(text, 10, &status) / 1000;
  if (whole < INT32_MIN || whole > INT32_MAX) return SM_STATUS_INVALID_PARAMETER;
  StoreValue(out, whole);
  return status;
}

using PutText = u32 (*)(astring*, const void*);

astring* NewText(PutText put, const void* value) {
  astring text[kValueTextRoom];
  (void)put(text, value);
  return CopyText(text).release();
}

astring* NewDecimal(const ValueType& type, const void* value) {
  astring text[kValueTextRoom];
  (void)PutDecimal(text, type, value);
  return CopyText(text).release();
}

}  // namespace

u32 NVSuptASCIIToXVal(const astring* text, s32 type, void* out) {
  if (out == nullptr) return SM_STATUS_INVALID_PARAMETER;
  if (text == nullptr) return kMinusOne;
  switch (type) {
    case 1:
      StoreValue(out, text);
      return SM_STATUS_SUCCESS;
    case 4:
      return StoreBooln(text, out);
    case 5:
      return StoreUnsigned<u32>(text, out);
    case 7:
      return StoreSigned<s32>(text, out);
    case 9:
      return StoreUnsigned64(text, out);
    case 11:
      return StoreSigned64(text, out);
    case 13:
      StoreValue(out, ASCIIToDouble(text));
      return SM_STATUS_SUCCESS;
    case 20:
      return StoreUnsigned<u8>(text, out);
    case 21:
      return StoreSigned<s8>(text, out);
    case 22:
      return StoreUnsigned<u16>(text, out);
    case 23:
      return StoreSigned<s16>(text, out);
    case kThousandths:
      return StoreThousandths(text, out);
    default:
      return SM_STATUS_BAD_ARGUMENT;
  }
}

u32 NVSuptNVPValToXVal(s32 count, astring** vector, const astring* name, s32 type, void* out) {
  if (vector == nullptr || name == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const astring* text = GetAStrParamValueByAStrName(count, vector, name, 0);
  if (text == nullptr) return SM_STATUS_INVALID_PARAMETER;
  return NVSuptASCIIToXVal(text, type, out);
}

astring* NVSuptXValToASCII(s32 code, const void* value) {
  if (value == nullptr) return nullptr;
  const ValueType& type = ValueTypeOf(code);
  switch (type.form) {
    case ValueForm::kText:
      return CopyText(static_cast<const astring*>(value)).release();
    case ValueForm::kWideText:
      return NVSuptUstrToAstr(static_cast<const ustring*>(value), nullptr);
    case ValueForm::kBooln:
      return NewText(PutBooln, value);
    case ValueForm::kNumber:
    case ValueForm::kLongNumber:
      return NewDecimal(type, value);
    case ValueForm::kDouble:
      return NewText(PutDouble, value);
    case ValueForm::kTime:
      // Deliberate: times of 0 and before are local times here like any others; only the XML buffer
      // writes them as "-1". Held by ValueConvert.TimeZeroIsATime.
      return NewText(PutTime, value);
    case ValueForm::kEscapedText:
      return SUPTIntfGetXMLUTF8StrFromAStr(static_cast<const astring*>(value), 0);
    case ValueForm::kEscapedWideText:
      return SUPTIntfGetXMLUTF8StrFromUStr(static_cast<const ustring*>(value), 0);
    default:
      return nullptr;  // the records and the tags have no text
  }
}

}  // namespace qvx
