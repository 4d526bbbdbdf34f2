// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_buffer.h"

#include <algorithm>
#include <cstring>

#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "base/heap.h"
#include "base/results.h"
#include "base/unaligned.h"
#include "text/grow_string.h"
#include "text/transcode.h"
#include "text/xml_escape.h"
#include "xml/xml_value.h"

namespace qvx {
namespace {

constexpr u32 kSmallestCapacity = 64;
constexpr char kStylesheet[] =
    R"(<?xml-stylesheet type="text/xsl" version="1.0" encoding="UTF-8"?>)";

// The names and texts of one element with their lengths, each measured once.
struct Element {
  SSAStr* buffer;
  const astring* name;
  const astring* attributes;  // null without any; an empty text still gets its blank
  size_t nameLength;
  size_t attributesLength;
};

Element ElementOf(void* buffer, const astring* name, const astring* attributes) {
  return {static_cast<SSAStr*>(buffer), name, attributes, strlen(name),
          attributes == nullptr ? 0 : strlen(attributes)};
}

size_t OpeningLength(const Element& element, size_t endLength) {
  const size_t blank = element.attributes == nullptr ? 0 : 1;
  return 1 + element.nameLength + blank + element.attributesLength + endLength;
}

// "<name attributes" and the end given; the place after it.
astring* PutOpening(astring* to, const Element& element, const astring* end, size_t endLength) {
  *to++ = '<';
  to = PutText(to, element.name, element.nameLength);
  if (element.attributes != nullptr) {
    *to++ = ' ';
    to = PutText(to, element.attributes, element.attributesLength);
  }
  return PutText(to, end, endLength);
}

size_t ClosingLength(const Element& element) { return element.nameLength + 3; }

astring* PutClosing(astring* to, const Element& element) {
  *to++ = '<';
  *to++ = '/';
  to = PutText(to, element.name, element.nameLength);
  *to++ = '>';
  return to;
}

// The element is larger than any buffer, even an empty one.
bool IsBeyondAnyBuffer(const Element& element, u64 valueLength) {
  return OpeningLength(element, 1) + valueLength + ClosingLength(element) + 1 > kMaxSize;
}

// The end of a buffer, where an element is written in place, piece by piece. The element's texts
// may be the buffer's own: the block that they are in is kept until all of it is written.
class BufferEnd {
 public:
  explicit BufferEnd(SSAStr* buffer) : buffer_(buffer) {}

  // Lets `put` write a piece of this many characters.
  template <typename Put>
  void Cat(u64 length, Put put) {
    // Deliberate: a piece for which the buffer cannot grow is dropped, and the element call still
    // succeeds. Held by XmlBuffer.PieceThatDoesNotFitInMemoryIsDroppedSilently.
    astring* const place = SSAStrMakeRoom(buffer_, length, &old_);
    if (place == nullptr) return;
    put(place);
    place[length] = '\0';
    buffer_->length += static_cast<u32>(length);
  }
  void Cat(const astring* text, size_t length) {
    Cat(length, [&](astring* place) { (void)PutText(place, text, length); });
  }

 private:
  SSAStr* buffer_;
  HeapArray<astring> old_;
};

// The whole element as one piece.
u32 CatWhole(const Element& element, const astring* value, u64 valueLength) {
  if (IsBeyondAnyBuffer(element, valueLength)) return SM_STATUS_NO_MEMORY;
  const u64 length = OpeningLength(element, 1) + valueLength + ClosingLength(element);
  BufferEnd(element.buffer).Cat(length, [&](astring* place) {
    astring* at = PutOpening(place, element, ">", 1);
    if (valueLength > 0) at = PutText(at, value, static_cast<size_t>(valueLength));
    (void)PutClosing(at, element);
  });
  return SM_STATUS_SUCCESS;
}

u32 CatTag(const Element& element, const astring* end, size_t endLength) {
  if (IsBeyondAnyBuffer(element, 0)) return SM_STATUS_NO_MEMORY;
  BufferEnd(element.buffer).Cat(OpeningLength(element, endLength), [&](astring* place) {
    (void)PutOpening(place, element, end, endLength);
  });
  return SM_STATUS_SUCCESS;
}

u32 CatEndTag(const Element& element) {
  if (IsBeyondAnyBuffer(element, 0)) return SM_STATUS_NO_MEMORY;
  BufferEnd(element.buffer).Cat(ClosingLength(element), [&](astring* place) {
    (void)PutClosing(place, element);
  });
  return SM_STATUS_SUCCESS;
}

// Opening tag, value and closing tag, each a separate piece.
template <typename CatValue>
u32 CatPieces(const Element& element, CatValue catValue) {
  if (IsBeyondAnyBuffer(element, 0)) return SM_STATUS_NO_MEMORY;
  BufferEnd end(element.buffer);
  end.Cat(OpeningLength(element, 1),
          [&](astring* place) { (void)PutOpening(place, element, ">", 1); });
  catValue(&end);
  end.Cat(ClosingLength(element), [&](astring* place) { (void)PutClosing(place, element); });
  return SM_STATUS_SUCCESS;
}

u32 CatNumber(const Element& element, const ValueType& type, const void* value, s32 format) {
  astring text[kValueTextRoom];
  if (format == 0 || format == 10) return CatWhole(element, text, PutDecimal(text, type, value));
  if (format == 16) return CatWhole(element, text, PutHexadecimal(text, type, value));
  return SM_STATUS_INVALID_PARAMETER;
}

u32 CatBooln(const Element& element, const void* value) {
  astring text[kValueTextRoom];
  return CatWhole(element, text, PutBooln(text, value));
}

u32 CatLongNumber(const Element& element, const ValueType& type, const void* value) {
  astring text[kValueTextRoom];
  const u32 length = PutDecimal(text, type, value);
  return CatPieces(element, [&](BufferEnd* end) { end->Cat(text, length); });
}

u32 CatDouble(const Element& element, const void* value) {
  astring text[kValueTextRoom];
  const u32 length = PutDouble(text, value);
  return CatPieces(element, [&](BufferEnd* end) { end->Cat(text, length); });
}

u32 CatTime(const Element& element, const void* value) {
  astring text[kValueTextRoom] = "-1";
  u32 length = 2;
  // Deliberate: time 0 is written "-1" like the times before it; it means "no time". Held by
  // XmlBuffer.TimesBelowOneAreMinusOne.
  if (LoadValue<s32>(value) >= 1) length = PutTime(text, value);
  return CatPieces(element, [&](BufferEnd* end) { end->Cat(text, length); });
}

// Deliberate: a text that cannot be converted is left out between its tags, and the call succeeds.
// Held by XmlBuffer.WideTextThatCannotBeConvertedLeavesTheElementEmpty.
u32 CatWideText(const Element& element, const ustring* text) {
  u32 size = 1;
  if (text == nullptr || UCS2StrToUTF8Str(nullptr, &size, text) != SM_STATUS_SUCCESS) size = 1;
  return CatPieces(element, [&](BufferEnd* end) {
    // The converter puts its NUL one byte beyond the room that it is offered.
    u32 room = size - 1;
    if (room != 0) {
      end->Cat(room, [&](astring* place) { (void)UCS2StrToUTF8Str(place, &room, text); });
    }
  });
}

u32 CatTextRecord(const Element& element, const SSAStr& record) {
  const size_t length = record.text == nullptr ? 0 : strnlen(record.text, record.length);
  return CatWhole(element, record.text, length);
}

// Receives the escaped text; it is null where escaping or its memory failed.
u32 CatEscaped(const Element& element, astring* escaped) {
  const HeapArray<astring> text(escaped);
  if (!text) return SM_STATUS_NO_MEMORY;
  return CatWhole(element, text.get(), strlen(text.get()));
}

u32 CatTypedValue(const Element& element, const PXTTypedValue& inner) {
  if (ValueTypeOf(inner.type).form == ValueForm::kTypedValue) return SM_STATUS_INVALID_PARAMETER;
  return PXMBufCatNodeT(element.buffer, element.name, element.attributes, inner.type, inner.value,
                        inner.format);
}

}  // namespace

void* PXMAllocBuf(u32 initialSize, booln stylesheet) {
  HeapArray<SSAStr> buffer = AllocArray<SSAStr>(1);
  if (!buffer || SSAStrAlloc(buffer.get(), std::max(initialSize, kSmallestCapacity)) == nullptr) {
    return nullptr;
  }
  if (stylesheet == 1) (void)SSAStrCatAStr(buffer.get(), kStylesheet);
  return buffer.release();
}

astring* PXMFreeBuf(void* buffer, u16 mode) {
  if (buffer == nullptr) return nullptr;
  SSAStr* record = static_cast<SSAStr*>(buffer);
  astring* content = nullptr;
  if (mode == 1) {
    content = record->text;
    *record = SSAStr{};
  }
  SSAStrFree(record);
  FreeMem(record);
  return content;
}

void PXMFreeBufContent(astring* text) { FreeMem(text); }

u32 PXMBufCatBeginNode(void* buffer, const astring* name, const astring* attributes) {
  return PXMBufCatNode(buffer, name, attributes, 18, nullptr);
}

u32 PXMBufCatEndNode(void* buffer, const astring* name) {
  return PXMBufCatNode(buffer, name, nullptr, 19, nullptr);
}

u32 PXMBufCatEmptyNode(void* buffer, const astring* name, const astring* attributes) {
  if (buffer == nullptr || name == nullptr) return SM_STATUS_INVALID_PARAMETER;
  return CatTag(ElementOf(buffer, name, attributes), "/>", 2);
}

u32 PXMBufCatNode(void* buffer, const astring* name, const astring* attributes, s32 type,
                  const void* value) {
  return PXMBufCatNodeT(buffer, name, attributes, type, value, 0);
}

u32 PXMBufCatNodeT(void* buffer, const astring* name, const astring* attributes, s32 code,
                   const void* value, s32 format) {
  if (buffer == nullptr || name == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const ValueType& type = ValueTypeOf(code);
  const bool tagOnly = type.form == ValueForm::kBeginTag || type.form == ValueForm::kEndTag;
  if (value == nullptr && !tagOnly) return SM_STATUS_INVALID_PARAMETER;
  const Element element = ElementOf(buffer, name, attributes);
  const u32 passes = static_cast<u32>(std::max(format, 1));
  // Deliberate: only the two escaped forms are escaped; every other text is written unchanged,
  // including the caller's own markup. Held by XmlBuffer.TextIsWrittenAsItStands.
  switch (type.form) {
    case ValueForm::kText:
      return CatWhole(element, static_cast<const astring*>(value),
                      strlen(static_cast<const astring*>(value)));
    case ValueForm::kWideText:
      return CatWideText(element, static_cast<const ustring*>(value));
    case ValueForm::kBooln:
      return CatBooln(element, value);
    case ValueForm::kNumber:
      return CatNumber(element, type, value, format);
    case ValueForm::kLongNumber:
      return CatLongNumber(element, type, value);
    case ValueForm::kDouble:
      return CatDouble(element, value);
    case ValueForm::kTime:
      return CatTime(element, value);
    case ValueForm::kTextRecord:
      return CatTextRecord(element, LoadValue<SSAStr>(value));
    case ValueForm::kWideTextRecord:
      return CatWideText(element, LoadValue<SSUStr>(value).text);
    case ValueForm::kBeginTag:
      return CatTag(element, ">", 1);
    case ValueForm::kEndTag:
      return CatEndTag(element);
    case ValueForm::kTypedValue:
      return CatTypedValue(element, LoadValue<PXTTypedValue>(value));
    case ValueForm::kEscapedText:
      return CatEscaped(element,
                        SUPTIntfGetXMLUTF8StrFromAStr(static_cast<const astring*>(value), passes));
    case ValueForm::kEscapedWideText:
      return CatEscaped(element,
                        SUPTIntfGetXMLUTF8StrFromUStr(static_cast<const ustring*>(value), passes));
    case ValueForm::kNone:
      break;
  }
  return SM_STATUS_INVALID_PARAMETER;
}

}  // namespace qvx
