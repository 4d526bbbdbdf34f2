// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/ascii_util.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"

namespace qvx {
namespace {

s32 Folded(astring character) {
  const u8 byte = static_cast<u8>(character);
  return byte >= 'A' && byte <= 'Z' ? byte - 'A' + 'a' : byte;
}

// The character after the one that completes the match; null when `find` is never completed.
const astring* MatchEnd(const astring* text, const astring* find) {
  // Deliberate: characters between those of `find` do not reset the match, so that "bd" is found in
  // "bcd". Held by AsciiUtil.ReplacedSpanEndsAtTheCharacterThatCompletesTheMatch.
  for (; *text != '\0'; ++text) {
    if (*text == *find) ++find;
    if (*find == '\0') return text + 1;
  }
  return nullptr;
}

// Deliberate: without a match, the length of the text already in `out` is the number of characters
// copied from `text`; a shorter `text` is filled up with zeros, a longer one is cut. Held by
// AsciiUtil.WithoutAMatchTheStandingTextsLengthIsCopied.
void CopyOverStandingText(astring* out, u32 size, const astring* text) {
  const size_t room = strnlen(out, size);
  const size_t copied = strnlen(text, room);
  memmove(out, text, copied);
  memset(out + copied, 0, room - copied);
}

// Sends every character through `map`, one of the locale's case tables; returns how many there
// were.
u32 MapInPlace(astring* text, int (*map)(int)) {
  u32 count = 0;
  for (; *text != '\0'; ++text, ++count) {
    *text = static_cast<astring>(map(static_cast<u8>(*text)));
  }
  return count;
}

void RemoveDQuotes(astring* text) {
  astring* to = text;
  for (; *text != '\0'; ++text) {
    if (*text != '"') *to++ = *text;
  }
  *to = '\0';
}

}  // namespace

void AppendNode(const astring* first, const astring* second, astring** out) {
  if (first == nullptr || second == nullptr || out == nullptr) return;
  const size_t firstLength = strlen(first);
  const size_t secondLength = strlen(second);
  const u64 room = u64{firstLength} + secondLength + 1;
  HeapArray<astring> joined = room > kMaxSize ? nullptr : AllocArray<astring>(room);
  if (joined) {
    memcpy(joined.get(), first, firstLength);
    memcpy(joined.get() + firstLength, second, secondLength + 1);
  }
  *out = joined.release();
}

void RemoveDQuotesInStrArr(u32 count, astring** strings) {
  if (strings == nullptr) return;
  for (u32 i = 0; i < count; ++i) {
    if (strings[i] != nullptr) RemoveDQuotes(strings[i]);
  }
}

s32 AStrnicmp(const astring* first, const astring* second, u32 count) {
  if (first == nullptr || second == nullptr) return 0;
  for (u32 i = 0; i < count; ++i) {
    const s32 difference = Folded(first[i]) - Folded(second[i]);
    if (difference != 0 || first[i] == '\0') return difference;
  }
  return 0;
}

u32 ASCIIReplaceSubstr(const astring* text, const astring* find, const astring* replace, u32* size,
                       astring* out) {
  if (text == nullptr || find == nullptr || replace == nullptr || size == nullptr) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  const size_t textLength = strlen(text);
  const size_t findLength = strlen(find);
  const size_t replaceLength = strlen(replace);
  if (findLength == 0 || textLength < findLength) return SM_STATUS_INVALID_PARAMETER;
  const u64 needed = u64{textLength} + replaceLength + 1 - findLength;
  if (out == nullptr || needed > *size) {
    *size = static_cast<u32>(std::min(needed, kMaxSize));
    return SM_STATUS_SIZE_REQUIRED;
  }
  const astring* tail = MatchEnd(text, find);
  if (tail == nullptr) {
    CopyOverStandingText(out, *size, text);
    return kMinusOne;
  }
  const size_t before = static_cast<size_t>(tail - text) - findLength;
  memmove(out + before + replaceLength, tail, textLength - before - findLength + 1);
  memmove(out, text, before);
  memcpy(out + before, replace, replaceLength);
  return SM_STATUS_SUCCESS;
}

astring* strupr(astring* text) {
  if (text != nullptr) (void)MapInPlace(text, toupper);
  return text;
}

astring* strlwr(astring* text) {
  if (text != nullptr) (void)MapInPlace(text, tolower);
  return text;
}

u32 strToUpperCase(astring* text) { return text == nullptr ? 0 : MapInPlace(text, toupper); }

}  // namespace qvx
