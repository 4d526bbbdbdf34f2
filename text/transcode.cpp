// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/transcode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "qvxcs/status.h"

#include "text/code_point.h"
#include "text/unit_scan.h"
#include "text/wide_transcode.h"

namespace qvx {
namespace {

constexpr u8 kFirstBeyondASCII = 0x80;
constexpr u32 kFirstOfThreeBytes = 0x800;
constexpr u32 kFirstOfFourBytes = 0x10000;
// A text is measured and converted piece by piece: one that faults early is not read to its end,
// and a piece is still in the processor's cache when it is converted.
constexpr size_t kPieceLength = 4096;
constexpr ptrdiff_t kPlainSteps = 8;
// A short text of ASCII alone is measured and converted at once.
constexpr size_t kShortText = 64;

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
  // What a run may write, or count.
  [[nodiscard]] size_t RunRoom() const { return to == nullptr ? SIZE_MAX : Room(); }
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

// A byte of UTF-8 that is not the first of its character, with the lowest bits.
astring Following(u32 bits) { return static_cast<astring>(0x80 | (bits & 0x3F)); }

[[gnu::always_inline]] inline u32 AppendUtf8(Output<astring>* output, u32 codePoint) {
  if (codePoint < kFirstBeyondASCII) {  // most characters
    return AppendPlain(output, static_cast<astring>(codePoint)) ? SM_STATUS_SUCCESS
                                                                : SM_STATUS_BUFFER_TOO_SMALL;
  }
  u32 length = output->Room();
  if (codePoint >= kFirstOfFourBytes) {
    if (const u32 status = UCS4CharToUTF8Chars(output->At(), &length, codePoint)) return status;
    output->used += length;
    return SM_STATUS_SUCCESS;
  }
  // Nearly all others. UCS4CharToUTF8Chars does the same.
  const u32 needed = codePoint < kFirstOfThreeBytes ? 2 : 3;
  if (astring* at = output->At(); at != nullptr) {
    if (length < needed) return SM_STATUS_BUFFER_TOO_SMALL;
    if (needed == 2) {
      *at++ = static_cast<astring>(0xC0 | codePoint >> 6);
    } else {
      *at++ = static_cast<astring>(0xE0 | codePoint >> 12);
      *at++ = Following(codePoint >> 6);
    }
    *at = Following(codePoint);
  }
  output->used += needed;
  return SM_STATUS_SUCCESS;
}

// One unit of `text`.
[[gnu::always_inline]] inline u32 AppendUnit(Output<astring>* output, ustring unit,
                                             const ustring* text) {
  u32 codePoint = unit;
  if (IsSurrogate(unit)) {
    // Deliberate: a surrogate is decoded at `text`, not at its own place, so every surrogate
    // becomes the code point that the text begins with. Held by
    // Transcode.SurrogatesRepeatTheCodePointTheTextBeginsWith.
    if (const u32 status = UTF16CharsToUCS4Char(&codePoint, text)) return status;
  }
  return AppendUtf8(output, codePoint);
}

struct Character {
  u32 codePoint;
  u32 bytes;
};

// The character of two or three bytes that `text` begins with, as UTF8CharsToUCS4Char reads it. No
// bytes for another one, and for one that the text ends within.
Character ReadShort(const astring* text) {
  const u32 lead = static_cast<u8>(text[0]);
  const u32 second = static_cast<u8>(text[1]);
  if (lead < 0xC0 || lead > 0xEF || second == 0) return {0, 0};
  const u32 low = second & 0x3F;
  if (lead < 0xE0) return {(lead & 0x1F) << 6 | low, 2};
  const u32 third = static_cast<u8>(text[2]);
  return {(lead & 0xF) << 12 | low << 6 | (third & 0x3F), third == 0 ? 0U : 3U};
}

// The character at `*text`, which is moved past it.
[[gnu::always_inline]] inline u32 AppendCharacter(Output<ustring>* output, const astring** text) {
  if (const auto byte = static_cast<u8>(**text); byte < kFirstBeyondASCII) {
    if (!AppendPlain<ustring>(output, byte)) return SM_STATUS_BUFFER_TOO_SMALL;
    ++*text;
    return SM_STATUS_SUCCESS;
  }
  if (const Character character = ReadShort(*text); character.bytes != 0) {
    if (!AppendPlain(output, static_cast<ustring>(character.codePoint))) {
      return SM_STATUS_BUFFER_TOO_SMALL;
    }
    *text += character.bytes;
    return SM_STATUS_SUCCESS;
  }
  u32 codePoint = 0;
  u32 consumed = 0;
  if (const u32 status = UTF8CharsToUCS4Char(&codePoint, *text, &consumed)) return status;
  u32 units = output->Room();
  if (const u32 status = UCS4CharToUTF16Chars(output->At(), &units, codePoint)) return status;
  *text += consumed;
  output->used += units;
  return SM_STATUS_SUCCESS;
}

// How far to go character by character before the next run is tried.
template <typename Element>
const Element* PlainEnd(const Element* at, const Element* end) {
  return end - at < kPlainSteps ? end : at + kPlainSteps;
}

// Ends the text unchecked and stores its size in bytes. A text whose size exceeds 32 bits is too
// large for any buffer that a size can describe.
template <typename Element>
u32 Finish(const Output<Element>& output, u32* size) {
  const u64 bytes = (output.used + 1) * sizeof(Element);
  if (bytes > UINT32_MAX) return SM_STATUS_BUFFER_TOO_SMALL;
  // Deliberate: the terminator is not checked against the size, so a text that fills it exactly is
  // a success with its terminator one element past it. Held by
  // Transcode.AFullBufferPutsTheTerminatorPastIt.
  if (output.to != nullptr) output.to[output.used] = 0;
  *size = static_cast<u32>(bytes);
  return SM_STATUS_SUCCESS;
}

// Converts the ASCII characters of a text's start, as far as there is room for them, and returns
// how many there were. Most texts end with them.
template <typename To, typename From>
size_t Start(size_t convert(To*, const From*, size_t), To* out, u32 size, const From* text) {
  if (static_cast<std::make_unsigned_t<From>>(*text) >= kFirstBeyondASCII) return 0;
  return convert(out, text, out == nullptr ? kShortText : std::min<size_t>(kShortText, size));
}

// The conversions of a text whose first `done` characters, ASCII, are converted.
u32 NarrowRest(astring* out, u32* size, const ustring* text, size_t done) {
  Output<astring> output{out, *size, done};
  const ustring* at = text + done;
  size_t length = 0;
  do {
    length = UnitCountWithin(at, kPieceLength);
    const ustring* const end = at + length;
    while (at < end) {
      const Run run = NarrowRun(output.At(), output.RunRoom(), at, static_cast<size_t>(end - at));
      at += run.read;
      output.used += run.written;
      for (const ustring* const stop = PlainEnd(at, end); at < stop; ++at) {
        if (const u32 status = AppendUnit(&output, *at, text)) return status;
      }
    }
  } while (length == kPieceLength);
  return Finish(output, size);
}

u32 WidenRest(ustring* out, u32* size, const astring* text, size_t done) {
  Output<ustring> output{out, *size, done};
  const astring* at = text + done;
  size_t length = 0;
  do {
    length = strnlen(at, kPieceLength);
    const astring* const end = at + length;
    while (at < end) {
      const Run run = WidenRun(output.At(), output.RunRoom(), at, static_cast<size_t>(end - at));
      at += run.read;
      output.used += run.written;
      // The last character may end beyond the piece; a text that ends within it is seen there.
      for (const astring* const stop = PlainEnd(at, end); at < stop;) {
        if (const u32 status = AppendCharacter(&output, &at)) return status;
      }
    }
  } while (length == kPieceLength);
  return Finish(output, size);
}

}  // namespace

u32 UCS2StrToUTF8Str(astring* out, u32* size, const ustring* text) {
  if (size == nullptr || text == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const size_t done = Start(NarrowStart, out, *size, text);
  if (text[done] != 0) return NarrowRest(out, size, text, done);
  return Finish(Output<astring>{out, *size, done}, size);
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
  const size_t done = Start(WidenStart, out, *size, text);
  if (text[done] != 0) return WidenRest(out, size, text, done);
  return Finish(Output<ustring>{out, *size, done}, size);
}

}  // namespace qvx
