// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_XML_ELEMENT_H
#define QVX_XML_XML_ELEMENT_H

#include <cstddef>
#include <cstring>
#include <string_view>

#include "qvxcs/grow_string.h"
#include "qvxcs/status.h"
#include "qvxcs/types.h"

#include "base/heap.h"
#include "base/results.h"
#include "text/grow_string.h"
#include "xml/put_text.h"

namespace qvx {

// The texts of an element's opening tag.
struct Tag {
  const astring* name;
  const astring* attributes;  // null without any; an empty text still gets its blank
};

// An element to be written at the end of a buffer, its texts measured once.
struct Element {
  SSAStr* buffer;
  const astring* name;
  const astring* attributes;
  size_t nameLength;
  size_t attributesLength;
};

inline Element ElementOf(SSAStr* buffer, Tag tag) {
  const size_t attributesLength = tag.attributes == nullptr ? 0 : strlen(tag.attributes);
  return {buffer, tag.name, tag.attributes, strlen(tag.name), attributesLength};
}

inline u64 OpeningLength(const Element& element, u64 endLength) {
  const u64 blank = element.attributes == nullptr ? 0 : 1;
  return 1 + u64{element.nameLength} + blank + element.attributesLength + endLength;
}

inline u64 ClosingLength(const Element& element) { return u64{element.nameLength} + 3; }

// An element of this length is larger than any buffer, even an empty one.
inline bool IsBeyondAnyBuffer(u64 length) { return length + 1 > kMaxSize; }

// Makes room at the buffer's end, unless memory is short. The texts to be written may be the
// buffer's own: then the result is the block that they are in, to be freed when they are written.
astring* GrowForElement(SSAStr* buffer, const astring* name, const astring* attributes,
                        const void* value, u64 length);

// Each of the following writes the element at the end of its buffer. SM_STATUS_NO_MEMORY when it
// would not fit even an empty buffer; without memory to grow the buffer stays as it is.

// As one piece. `put` writes the value's `length` characters. All of it is inline, because most
// elements of an answer are written here.
template <typename Put>
[[gnu::always_inline]] inline u32 CatWhole(const Element& element, const void* value, u64 length,
                                           Put put) {
  const u64 whole = OpeningLength(element, 1) + length + ClosingLength(element);
  SSAStr* const buffer = element.buffer;
  HeapArray<astring> old;
  if (!SSAStrHasRoom(*buffer, whole)) {
    if (IsBeyondAnyBuffer(whole)) return SM_STATUS_NO_MEMORY;
    old.reset(GrowForElement(buffer, element.name, element.attributes, value, whole));
    if (!SSAStrHasRoom(*buffer, whole)) return SM_STATUS_SUCCESS;
  }
  astring* at = buffer->text + buffer->length;
  astring* const end = at + whole;
  astring* const closing = end - ClosingLength(element);
  *at++ = '<';
  PutText(element.name, element.nameLength, at, closing + 2);
  at += element.nameLength;
  if (element.attributes != nullptr) {
    *at++ = ' ';
    PutText(element.attributes, element.attributesLength, at);
    at += element.attributesLength;
  }
  *at++ = '>';
  put(at);
  memcpy(closing, "</", 2);
  memcpy(end - 1, ">", 2);
  buffer->length += static_cast<u32>(whole);
  return SM_STATUS_SUCCESS;
}

// Opening tag, value and closing tag, each a separate piece.
u32 CatPieces(const Element& element, const astring* text, size_t length);
// The same with the value in UTF-8; `text` may be null.
u32 CatUnits(const Element& element, const ustring* text);
// The opening tag with this end, or the closing tag, alone.
u32 CatTag(const Element& element, std::string_view end);
u32 CatClosingTag(const Element& element);

}  // namespace qvx

#endif
