// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/code_point.h"

#include <array>
#include <cstring>

#include "qvxcs/status.h"

namespace qvx {
namespace {

constexpr u32 kLastUtf8 = 0x7FFFFFFF;
constexpr u32 kLastUtf16 = 0x10FFFF;
constexpr u32 kFirstPair = 0x10000;

// One length of UTF-8: the last code point that it holds, and the lead byte's fixed bits.
struct Utf8Form {
  u32 last;
  u32 lead;
  u32 leadMask;
};
// At [n - 1] the form of n bytes.
constexpr Utf8Form kUtf8Forms[] = {
    {0x7F, 0x00, 0x80},     {0x7FF, 0xC0, 0xE0},     {0xFFFF, 0xE0, 0xF0},
    {0x1FFFFF, 0xF0, 0xF8}, {0x3FFFFFF, 0xF8, 0xFC}, {kLastUtf8, 0xFC, 0xFE},
};
constexpr u32 kLongestUtf8 = 6;

u32 Utf8Length(u32 codePoint) {
  if (codePoint <= kUtf8Forms[1].last) return codePoint <= kUtf8Forms[0].last ? 1 : 2;
  u32 length = 3;
  while (codePoint > kUtf8Forms[length - 1].last) {
    ++length;
  }
  return length;
}

// 0 for a byte that begins no character: a continuation byte, 0xFE or 0xFF.
constexpr std::array<u8, 256> LengthsByLead() {
  std::array<u8, 256> lengths{};
  for (u32 lead = 0; lead < lengths.size(); ++lead) {
    for (u8 length = kLongestUtf8; length > 0; --length) {
      const Utf8Form& form = kUtf8Forms[length - 1];
      if ((lead & form.leadMask) == form.lead) lengths[lead] = length;
    }
  }
  return lengths;
}
constexpr std::array<u8, 256> kLengthByLead = LengthsByLead();

bool IsHighSurrogate(ustring unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(ustring unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

}  // namespace

u32 UCS4CharToUTF8Chars(astring* out, u32* size, u32 codePoint) {
  if (size == nullptr) return SM_STATUS_INVALID_PARAMETER;
  if (codePoint > kLastUtf8) return SM_STATUS_BAD_DATA;
  const u32 length = Utf8Length(codePoint);
  if (out != nullptr) {
    if (*size < length) return SM_STATUS_BUFFER_TOO_SMALL;
    for (u32 at = length - 1; at > 0; --at) {
      out[at] = static_cast<astring>(0x80 | (codePoint & 0x3F));
      codePoint >>= 6;
    }
    out[0] = static_cast<astring>(kUtf8Forms[length - 1].lead | codePoint);
  }
  *size = length;
  return SM_STATUS_SUCCESS;
}

u32 UTF8CharsToUCS4Char(u32* codePoint, const astring* in, u32* length) {
  if (codePoint == nullptr || in == nullptr || length == nullptr) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  *codePoint = 0;
  const u32 lead = static_cast<u8>(in[0]);
  const u32 count = kLengthByLead[lead];
  if (count == 0) return SM_STATUS_BAD_DATA;
  u32 value = lead & ~kUtf8Forms[count - 1].leadMask;
  // Deliberate: a following byte is only checked not to be zero; its upper two bits, overlong
  // forms, surrogates and the last code point are not checked.
  // Held by CodePoint.FollowingBytesAndOverlongFormsAreNotChecked.
  for (u32 at = 1; at < count; ++at) {
    const u32 byte = static_cast<u8>(in[at]);
    if (byte == 0) return SM_STATUS_BAD_DATA;
    value = (value << 6) | (byte & 0x3F);
  }
  *codePoint = value;
  *length = count;
  return SM_STATUS_SUCCESS;
}

u32 UCS4CharToUTF16Chars(ustring* out, u32* size, u32 codePoint) {
  if (size == nullptr) return SM_STATUS_INVALID_PARAMETER;
  if (codePoint > kLastUtf16) return SM_STATUS_BAD_DATA;
  const u32 length = codePoint < kFirstPair ? 1 : 2;
  if (out != nullptr) {
    if (*size < length) return SM_STATUS_BUFFER_TOO_SMALL;
    if (length == 1) {
      out[0] = static_cast<ustring>(codePoint);
    } else {
      // Deliberate: 0x10000 is not subtracted first, so 0x10000 begins with 0xD840, and the pair
      // does not decode to the code point it came from.
      // Held by CodePoint.APairIsFormedWithoutSubtracting.
      out[0] = static_cast<ustring>(0xD800 | ((codePoint & 0xFFC00) >> 10));
      out[1] = static_cast<ustring>(0xDC00 | (codePoint & 0x3FF));
    }
  }
  *size = length;
  return SM_STATUS_SUCCESS;
}

u32 UTF16CharsToUCS4Char(u32* codePoint, const ustring* in) {
  if (codePoint == nullptr || in == nullptr) return SM_STATUS_INVALID_PARAMETER;
  *codePoint = in[0];
  if (IsLowSurrogate(in[0])) return SM_STATUS_BAD_DATA;
  if (!IsHighSurrogate(in[0])) return SM_STATUS_SUCCESS;
  if (!IsLowSurrogate(in[1])) return SM_STATUS_BAD_DATA;
  const u32 high = in[0] & 0x3FFu;
  const u32 low = in[1] & 0x3FFu;
  *codePoint = ((high << 10) | low) + kFirstPair;
  return SM_STATUS_SUCCESS;
}

u32 UCS4CharToXMLUTF8Chars(astring* out, u32* size, booln* escaped, u32 codePoint) {
  if (size == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const XmlEntity* entity = FindXmlEntity(codePoint);
  if (entity == nullptr) {
    if (escaped != nullptr) *escaped = 0;
    return UCS4CharToUTF8Chars(out, size, codePoint);
  }
  if (out != nullptr) {
    if (*size < entity->length) return SM_STATUS_BUFFER_TOO_SMALL;
    // Deliberate: the entity's NUL is stored too, one byte beyond what the size was checked for.
    // Held by CodePoint.AnEntityCarriesANulBeyondTheSize.
    memcpy(out, entity->text, entity->length + 1);
  }
  *size = entity->length;
  if (escaped != nullptr) *escaped = 1;
  return SM_STATUS_SUCCESS;
}

}  // namespace qvx
