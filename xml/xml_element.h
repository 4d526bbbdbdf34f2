// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_XML_ELEMENT_H
#define QVX_XML_XML_ELEMENT_H

#include <cstddef>
#include <string_view>

#include "qvxcs/grow_string.h"
#include "qvxcs/types.h"

#include "xml/xml_value.h"

namespace qvx {

// The names and texts of one element with their lengths, each measured once.
struct Element {
  SSAStr* buffer;
  const astring* name;
  const astring* attributes;  // null without any; an empty text still gets its blank
  size_t nameLength;
  size_t attributesLength;
};

Element ElementOf(void* buffer, const astring* name, const astring* attributes);

// Each writes the element at the end of its buffer. SM_STATUS_NO_MEMORY when it would not fit even
// an empty buffer; without memory to grow the buffer stays as it is.

// As one piece, the value unchanged or as decimal digits.
u32 CatWhole(const Element& element, const astring* text, size_t length);
u32 CatDecimal(const Element& element, const Decimal& number);
// Opening tag, value and closing tag, each a separate piece.
u32 CatPieces(const Element& element, const astring* text, size_t length);
// The same with the value in UTF-8; `text` may be null.
u32 CatUnits(const Element& element, const ustring* text);
// The opening tag with this end, or the closing tag, alone.
u32 CatTag(const Element& element, std::string_view end);
u32 CatClosingTag(const Element& element);

}  // namespace qvx

#endif
