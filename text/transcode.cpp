// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/transcode.h"

#include "qvxcs/status.h"

#include "text/code_point.h"

namespace qvx {
namespace {

constexpr u8 kFirstBeyondASCII = 0x80;

bool IsSurrogate(ustring unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

// The result so far. `used` has 64 bits because a size query may pass what 32 bits hold.
template <typename Element>
struct Output {
  Element* to;
  u32 size;
  u64 used;

  [[nodiscard]] Element* At() const { return to == nullptr ? nullptr : to + used; }
  [[nodiscard]] u32 Room() const {
    return to == nullptr || used > size ? 0 : size - static_cast<u32>(used);
  }
};

// Stores an element that is a character by itself; false without room for it.
template <typename Element>
bool AppendPlain(Output<Element>* output, Element element) {
  if (output->to != nullptr) {
    if (output->used >= output->size) return false;
    output->to[output->used] = element;
  }
  ++output->used;
  return true;
}

u32 AppendUtf8(Output<astring>* output, u32 codePoint) {
  if (codePoint < kFirstBeyondASCII) {  // most of what there is
    return AppendPlain(output, static_cast<astring>(codePoint)) ? SM_STATUS_SUCCESS
                                                                : SM_STATUS_BUFFER_TOO_SMALL;
  }
  u32 length = output->Room();
  if (const u32 status = UCS4CharToUTF8Chars(output->At(), &length, codePoint)) return status;
  output->used += length;
  return SM_STATUS_SUCCESS;
}

// Ends the text unchecked and gives its size in bytes. No room that a size can name holds a text
// beyond 32 bits, so that one is too large for any buffer.
template <typename Element>
u32 Finish(const Output<Element>& output, u32* size) {
  const u64 bytes = (output.used + 1) * sizeof(Element);
  if (bytes > UINT32_MAX) return SM_STATUS_BUFFER_TOO_SMALL;
  // Deliberate: not checked against the size, so a text that fills it exactly is a success with its
  // terminator one element past it. Held by Transcode.AFullBufferPutsTheTerminatorPastIt.
  if (output.to != nullptr) output.to[output.used] = 0;
  *size = static_cast<u32>(bytes);
  return SM_STATUS_SUCCESS;
}

}  // namespace

u32 UCS2StrToUTF8Str(astring* out, u32* size, const ustring* text) {
  if (size == nullptr || text == nullptr) return SM_STATUS_INVALID_PARAMETER;
  Output<astring> output{out, *size, 0};
  for (const ustring* at = text; *at != 0; ++at) {
    u32 codePoint = *at;
    if (IsSurrogate(*at)) {
      // Deliberate: decoded at `text`, not at `at`: every surrogate becomes the code point that the
      // text begins with. Held by Transcode.SurrogatesRepeatTheCodePointTheTextBeginsWith.
      if (const u32 status = UTF16CharsToUCS4Char(&codePoint, text)) return status;
    }
    if (const u32 status = AppendUtf8(&output, codePoint)) return status;
  }
  return Finish(output, size);
}

u32 UCS4StrToUTF8Str(astring* out, u32* size, const u32* text) {
  if (size == nullptr || text == nullptr) return SM_STATUS_INVALID_PARAMETER;
  Output<astring> output{out, *size, 0};
  for (; *text != 0; ++text) {
    if (const u32 status = AppendUtf8(&output, *text)) return status;
  }
  return Finish(output, size);
}

u32 UTF8StrToUCS2Str(ustring* out, u32* size, const astring* text) {
  if (size == nullptr || text == nullptr) return SM_STATUS_INVALID_PARAMETER;
  // Deliberate: the size is read as a count of units and written back as a count of bytes.
  // Held by Transcode.Ucs2SizesAreReadInUnitsAndWrittenInBytes.
  Output<ustring> output{out, *size, 0};
  while (*text != '\0') {
    if (const auto byte = static_cast<u8>(*text); byte < kFirstBeyondASCII) {
      if (!AppendPlain<ustring>(&output, byte)) return SM_STATUS_BUFFER_TOO_SMALL;
      ++text;
      continue;
    }
    u32 codePoint = 0;
    u32 consumed = 0;
    if (const u32 status = UTF8CharsToUCS4Char(&codePoint, text, &consumed)) return status;
    u32 units = output.Room();
    if (const u32 status = UCS4CharToUTF16Chars(output.At(), &units, codePoint)) return status;
    text += consumed;
    output.used += units;
  }
  return Finish(output, size);
}

}  // namespace qvx
