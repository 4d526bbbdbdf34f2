// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/param_node.h"

#include <cstring>

#include "qvxcs/grow_string.h"
#include "qvxcs/status.h"

#include "base/results.h"
#include "cli/value_convert.h"
#include "text/grow_string.h"
#include "xml/xml_buffer.h"

namespace qvx {
namespace {

constexpr u32 kFirstCapacity = 256;
constexpr s32 kSigned32 = 7;

// A growable text that notices a failed append, which the record shows only by its length.
class AttributeText {
 public:
  AttributeText() { (void)SSAStrAlloc(&record_, kFirstCapacity); }
  ~AttributeText() { SSAStrFree(&record_); }
  AttributeText(const AttributeText&) = delete;
  AttributeText& operator=(const AttributeText&) = delete;

  explicit operator bool() const { return record_.text != nullptr; }
  bool whole() const { return record_.length == expected_; }
  const astring* text() const { return record_.text; }

  void Cat(const astring* piece) {
    expected_ += strlen(piece);
    (void)SSAStrCatAStr(&record_, piece);
  }

 private:
  SSAStr record_ = {};
  u64 expected_ = 0;
};

// Deliberate: a value whose text cannot be made is left out as if it had not been given. Held by
// ParamNode.ValueWithoutTextIsLeftOut.
void CatValue(AttributeText* attributes, const astring* opening, s32 type, const void* value) {
  if (value == nullptr) return;
  const HeapArray<astring> text(NVSuptXValToASCII(type, value));
  if (!text) return;
  attributes->Cat(opening);
  attributes->Cat(text.get());
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
  AttributeText attributes;
  if (!attributes) return SM_STATUS_NO_MEMORY;
  attributes.Cat("name=\"");
  attributes.Cat(name);
  CatValue(&attributes, "\" oldval=\"", type, oldValue);
  CatValue(&attributes, "\" newval=\"", type, newValue);
  CatValue(&attributes, "\" value=\"", type, value);
  attributes.Cat("\"");
  // Deliberate: the call succeeds whether or not the element could be appended; an element whose
  // attributes could not be grown completely is skipped. Held by
  // ParamNode.AppendWithoutMemorySucceedsAndWritesNothing.
  if (attributes.whole()) (void)PXMBufCatEmptyNode(buffer, "Parameter", attributes.text());
  return SM_STATUS_SUCCESS;
}

void NVSuptCatSMStatusNode(void* buffer, s32 status, const astring* message) {
  HeapArray<astring> attribute;
  if (message != nullptr) attribute = QuotedAttribute("mssg", message);
  (void)PXMBufCatNode(buffer, "SMStatus", attribute.get(), kSigned32, &status);
}

}  // namespace qvx
