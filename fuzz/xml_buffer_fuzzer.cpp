// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: a line for each element: its type code, name, attributes and text, with "|" between them.
// Texts of 16 bits are made from the text's bytes.
#include <cstring>
#include <string>
#include <vector>

#include "qvxcs/cli_value.h"
#include "qvxcs/memory.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "fuzz/fuzz_support.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::fuzz::Text;

std::string Field(std::string* line) {
  const size_t end = line->find('|');
  const std::string field = line->substr(0, end);
  line->erase(0, end == std::string::npos ? end : end + 1);
  return field.c_str();
}

// The value of a type: text, units, or at least eight bytes.
class Value {
 public:
  Value(s32 type, const std::string& text)
      : type_(type), text_(text), units_(text.size() + 1), number_(8) {
    for (size_t at = 0; at < text.size(); ++at) {
      units_[at] = static_cast<u8>(text[at]);
    }
    units_[text.size()] = 0;
    memset(number_.data(), 0, number_.size());
    memcpy(number_.data(), text.data(), std::min(text.size(), number_.size()));
  }

  const void* data() {
    if (type_ == QVX_TYPE_ASTRING || type_ == QVX_TYPE_XML_ASTRING) return text_.data();
    if (type_ == QVX_TYPE_USTRING || type_ == QVX_TYPE_XML_USTRING) return units_.data();
    return number_.data();
  }

 private:
  s32 type_;
  Text text_;
  Block<ustring> units_;
  Block<u8> number_;
};

bool IsRecord(s32 type) {
  return type == QVX_TYPE_SSASTR || type == QVX_TYPE_SSUSTR || type == QVX_TYPE_TYPED_VALUE;
}

// A refused element changes nothing; an escaped value adds no markup.
void CheckElement(std::string line, std::string* expected, void* buffer) {
  const s32 type = static_cast<s32>(strtol(Field(&line).c_str(), nullptr, 10));
  const std::string name = Field(&line);
  const std::string attributes = Field(&line);
  if (IsRecord(type)) return;
  Text nameText(name);
  Text attributeText(attributes);
  Value value(type, line.c_str());
  const u32 status =
      PXTXBufCatNode(buffer, nameText.data(), attributeText.data(), type, value.data());
  if (status != SM_STATUS_SUCCESS) return;
  if (type == QVX_TYPE_BEGIN) *expected += "<" + name + " " + attributes + ">";
  if (type == QVX_TYPE_END) *expected += "</" + name + ">";
  if (type == QVX_TYPE_BEGIN || type == QVX_TYPE_END) return;
  *expected += "<" + name + " " + attributes + ">\1</" + name + ">";
}

// Every piece of the expected text up to a value is in the content, in its order; the markup of
// values that are written unescaped is the caller's.
void CheckContent(const std::string& content, const std::string& expected) {
  size_t from = 0;
  size_t at = 0;
  while (at < expected.size()) {
    const size_t end = std::min(expected.find('\1', at), expected.size());
    const std::string piece = expected.substr(at, end - at);
    const size_t found = content.find(piece, from);
    Require(found != std::string::npos, "every accepted element is in the content, in its order");
    from = found + piece.size();
    at = end + 1;
  }
}

// From text to value and back.
void CheckValue(const std::string& text) {
  Text given(text);
  for (const s32 type : {4, 5, 7, 9, 11, 13, 20, 21, 22, 23, 99}) {
    Block<u8> value(8);
    if (PXTNVSASCIIToXVal(given.data(), type, value.data()) != SM_STATUS_SUCCESS) continue;
    astring* const written = PXTNVSXValToASCII(type == 99 ? 11 : type, value.data());
    Require(written == nullptr || strlen(written) <= 31,
            "a value's text has at most 31 characters");
    PXTFreeMem(written);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  void* const buffer = PXTXAllocBuf(64, 0);
  std::string expected;
  while (!input.AtEnd()) {
    const std::string line = input.Line();
    CheckElement(line, &expected, buffer);
    CheckValue(line.c_str());
  }
  astring* const content = PXTXFreeBufGetContent(buffer);
  Require(content != nullptr, "there is a content");
  CheckContent(content, expected);
  PXTXFreeBufContent(content);
  return 0;
}
