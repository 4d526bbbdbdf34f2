// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/value_convert.h"

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "cli/value_text.h"
#include "text/param_vector.h"
#include "text/xml_escape.h"
#include "xml/xml_value.h"

namespace qvx {
u32 NVSuptASCIIToXVal(const astring* text, s32 code, void* out) {
  if (out == nullptr) return SM_STATUS_INVALID_PARAMETER;
  if (text == nullptr) return kMinusOne;
  const ValueType& type = ValueTypeOf(code);
  return type.take == nullptr ? SM_STATUS_BAD_ARGUMENT : type.take(text, type, out);
}

u32 NVSuptNVPValToXVal(s32 count, astring** vector, const astring* name, s32 code, void* out) {
  if (vector == nullptr || name == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const astring* text = GetAStrParamValueByAStrName(count, vector, name, 0);
  if (text == nullptr) return SM_STATUS_INVALID_PARAMETER;
  return NVSuptASCIIToXVal(text, code, out);
}

astring* NVSuptXValToASCII(s32 code, const void* value) {
  if (value == nullptr) return nullptr;
  const ValueType& type = ValueTypeOf(code);
  // Deliberate: times of 0 and before are local times here like any others; only the XML buffer
  // writes them as "-1". Held by ValueConvert.TimeZeroIsATime.
  if (type.put != nullptr) {
    astring text[kValueTextRoom];
    (void)type.put(text, type, value);
    return CopyText(text).release();
  }
  switch (type.form) {
    case ValueForm::kText:
      return CopyText(static_cast<const astring*>(value)).release();
    case ValueForm::kWideText:
      return NVSuptUstrToAstr(static_cast<const ustring*>(value), nullptr);
    case ValueForm::kEscapedText:
      return SUPTIntfGetXMLUTF8StrFromAStr(static_cast<const astring*>(value), 0);
    case ValueForm::kEscapedWideText:
      return SUPTIntfGetXMLUTF8StrFromUStr(static_cast<const ustring*>(value), 0);
    default:
      return nullptr;  // the records and the tags have no text
  }
}

}  // namespace qvx
