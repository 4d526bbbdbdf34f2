// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/param_node.h"

#include <cstring>

#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "base/results.h"
#include "cli/value_convert.h"
#include "text/grow_string.h"
#include "xml/xml_buffer.h"

namespace qvx {
namespace {

constexpr u32 kFirstCapacity = 256;

// Deliberate: a value whose text cannot be made is left out as if it had not been given. Held by
// ParamNode.ValueWithoutTextIsLeftOut.
bool CatValue(GrowText* attributes, const astring* opening, s32 type, const void* value) {
  if (value == nullptr) return true;
  const HeapArray<astring> text(NVSuptXValToASCII(type, value));
  return !text || (attributes->Cat(opening) && attributes->Cat(text.get()));
}

}  // namespace

HeapArray<astring> QuotedAttribute(const astring* name, const astring* text) {
  const size_t nameLength = strlen(name);
  const size_t textLength = strlen(text);
  const u64 room = u64{nameLength} + textLength + 4;  // ="" and the NUL
  HeapArray<astring> attribute = room > kMaxSize ? nullptr : AllocArray<astring>(room);
  if (!attribute) return attribute;
  astring* at = attribute.get();
  memcpy(at, name, nameLength);
  memcpy(at + nameLength, "=\"", 2);
  memcpy(at + nameLength + 2, text, textLength);
  memcpy(at + nameLength + 2 + textLength, "\"", 2);
  return attribute;
}

u32 NVSuptBufCatSetCmdParam(void* buffer, const astring* name, const void* oldValue,
                            const void* newValue, const void* value, s32 type) {
  if (buffer == nullptr || name == nullptr) return SM_STATUS_INVALID_PARAMETER;
  if (value == nullptr && (oldValue == nullptr || newValue == nullptr)) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  GrowText attributes(kFirstCapacity);
  if (!attributes) return SM_STATUS_NO_MEMORY;
  const bool whole = attributes.Cat("name=\"") && attributes.Cat(name) &&
                     CatValue(&attributes, "\" oldval=\"", type, oldValue) &&
                     CatValue(&attributes, "\" newval=\"", type, newValue) &&
                     CatValue(&attributes, "\" value=\"", type, value) && attributes.Cat("\"");
  // Deliberate: the call succeeds whether or not the element could be appended; an element whose
  // attributes could not be grown completely is skipped. Held by
  // ParamNode.AppendWithoutMemorySucceedsAndWritesNothing.
  if (whole) (void)PXMBufCatEmptyNode(buffer, "Parameter", attributes.Text());
  return SM_STATUS_SUCCESS;
}

void NVSuptCatSMStatusNode(void* buffer, s32 status, const astring* message) {
  HeapArray<astring> attribute;
  if (message != nullptr) attribute = QuotedAttribute("mssg", message);
  (void)PXMBufCatNode(buffer, "SMStatus", attribute.get(), QVX_TYPE_S32, &status);
}

}  // namespace qvx
