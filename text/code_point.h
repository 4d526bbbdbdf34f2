// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_CODE_POINT_H
#define QVX_TEXT_CODE_POINT_H

#include <array>

#include "qvxcs/types.h"

namespace qvx {

// One code point to or from its encoded form. Each encoder reads the room from `*size` and stores
// the elements written there; with a null `out` it stores the elements needed. On failure `*size`
// is unchanged.

// UTF-8 in its six-byte form (RFC 2279): code points to 0x7FFFFFFF, surrogates like any other.
u32 UCS4CharToUTF8Chars(astring* out, u32* size, u32 codePoint);

// Reads no byte after a zero byte. After a failure `*codePoint` is 0 and `*length` is unchanged.
u32 UTF8CharsToUCS4Char(u32* codePoint, const astring* in, u32* length);

// `*size` counts 16-bit units.
u32 UCS4CharToUTF16Chars(ustring* out, u32* size, u32 codePoint);

// One unit, or a surrogate pair; how many were read is not reported.
u32 UTF16CharsToUCS4Char(u32* codePoint, const ustring* in);

// As UCS4CharToUTF8Chars, but a character of the XML table becomes its entity and sets `*escaped`
// (may be null). An entity is followed by a NUL that `*size` does not count: allow one byte more.
// An internal service without a caller in the library, held by its tests.
u32 UCS4CharToXMLUTF8Chars(astring* out, u32* size, booln* escaped, u32 codePoint);

// A character that XML text cannot hold as it is, and its replacement.
struct XmlEntity {
  char character;
  astring text[8];  // terminated
  u32 length;       // bytes before the NUL
};

// The table's characters.
inline constexpr char kXmlCharacters[] = "\"&'<>";

inline constexpr XmlEntity kXmlEntities[] = {
    {'"', "&quot;", 6}, {'&', "&amp;", 5}, {'\'', "&apos;", 6}, {'<', "&lt;", 4}, {'>', "&gt;", 4},
};

// For each ASCII character its place in the table plus 1; 0 for one that is not there.
inline constexpr auto kEntityPlaces = [] {
  std::array<u8, 128> places{};
  u8 place = 0;
  for (const XmlEntity& entity : kXmlEntities) {
    places[static_cast<u8>(entity.character)] = ++place;
  }
  return places;
}();

// Null for a character that needs no replacement.
inline const XmlEntity* FindXmlEntity(u32 codePoint) {
  const u32 place = codePoint < kEntityPlaces.size() ? kEntityPlaces[codePoint] : 0;
  return place == 0 ? nullptr : &kXmlEntities[place - 1];
}

}  // namespace qvx

#endif
