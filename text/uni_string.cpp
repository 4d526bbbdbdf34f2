// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/uni_string.h"

#include <algorithm>
#include <cstring>

#include "base/results.h"
#include "text/unit_scan.h"

namespace qvx {
namespace {

// Where the last split stopped. One for the process: a second split begun anywhere ends the first.
ustring* nextToken = nullptr;

// Deliberate: the difference is unsigned and modulo 65536, so a smaller first text does not produce
// a negative result; only zero or not zero has a meaning. Held by UniString.StrcmpIsNeverNegative.
s32 UnsignedDifference(ustring first, ustring second) {
  return static_cast<ustring>(first - second);
}

s32 Folded(ustring unit) { return unit >= 'a' && unit <= 'z' ? unit - ('a' - 'A') : unit; }

bool IsInSet(ustring unit, const ustring* set) {
  for (; *set != 0; ++set) {
    if (*set == unit) return true;
  }
  return false;
}

// The end of the leading run of units that are in the set, or of units that are not.
const ustring* EndOfRun(const ustring* string, const ustring* set, bool inSet) {
  while (*string != 0 && IsInSet(*string, set) == inSet) {
    ++string;
  }
  return string;
}

// A text has room for more units than a result of 32 bits can hold.
u32 Capped(u64 count) { return static_cast<u32>(std::min(count, kMaxSize)); }

}  // namespace

u32 Uni_strlen(const ustring* string) { return Capped(UnitCount(string)); }

void Uni_strcpy(ustring* destination, const ustring* source) {
  memmove(destination, source, static_cast<size_t>(UnitCount(source) + 1) * sizeof(ustring));
}

void Uni_strncpy(ustring* destination, const ustring* source, u32 count) {
  // Deliberate: it writes no zeros after a shorter source and no terminator when the count runs
  // out. Held by UniString.StrncpyNeitherPadsNorTerminates.
  for (u32 at = 0; at < count; ++at) {
    destination[at] = source[at];
    if (source[at] == 0) return;
  }
}

void Uni_strcat(ustring* destination, const ustring* source) {
  Uni_strcpy(destination + UnitCount(destination), source);
}

void Uni_strncat(ustring* destination, const ustring* source, u32 count) {
  if (count == 0) return;
  ustring* end = destination + UnitCount(destination);
  u32 at = 0;
  for (; at < count && source[at] != 0; ++at) {
    end[at] = source[at];
  }
  end[at] = 0;
}

s32 Uni_strcmp(const ustring* first, const ustring* second) {
  const size_t equal = EqualUnits(first, second);
  return UnsignedDifference(first[equal], second[equal]);
}

s32 Uni_memcmp(const ustring* first, const ustring* second, u32 count) {
  for (u32 at = 0; at < count; ++at) {
    if (first[at] != second[at]) return UnsignedDifference(first[at], second[at]);
  }
  return 0;
}

s32 Uni_strncasecmp(const ustring* first, const ustring* second, s32 count) {
  for (s32 at = 0; at < count; ++at) {
    const s32 difference = Folded(first[at]) - Folded(second[at]);
    if (difference != 0 || first[at] == 0) return difference;
  }
  return 0;
}

ustring* Uni_strchr(const ustring* string, ustring unit) {
  const ustring* const found = FindUnitOrEnd(string, unit);
  return *found == unit ? const_cast<ustring*>(found) : nullptr;
}

ustring* Uni_strstr(const ustring* string, const ustring* pattern) {
  return const_cast<ustring*>(FindUnits(string, static_cast<size_t>(UnitCount(string)), pattern,
                                        static_cast<size_t>(UnitCount(pattern))));
}

u32 Uni_strspn(const ustring* string, const ustring* set) {
  return Capped(static_cast<u64>(EndOfRun(string, set, true) - string));
}

u32 Uni_strcspn(const ustring* string, const ustring* set) {
  return Capped(static_cast<u64>(EndOfRun(string, set, false) - string));
}

ustring* Uni_strpbrk(const ustring* string, const ustring* set) {
  const ustring* const end = EndOfRun(string, set, false);
  return *end == 0 ? nullptr : const_cast<ustring*>(end);
}

ustring* Uni_strtok(ustring* string, const ustring* delimiters) {
  if (string == nullptr) string = nextToken;
  if (string == nullptr) return nullptr;
  string = const_cast<ustring*>(EndOfRun(string, delimiters, true));
  if (*string == 0) {
    nextToken = nullptr;
    return nullptr;
  }
  ustring* end = Uni_strpbrk(string, delimiters);
  nextToken = end == nullptr ? nullptr : end + 1;
  if (end != nullptr) *end = 0;
  return string;
}

ustring* Uni_strset(ustring* string, ustring unit) {
  for (ustring* at = string; *at != 0; ++at) {
    *at = unit;
  }
  return string;
}

void Uni_strnset(ustring* string, ustring unit, u32 count) {
  // Deliberate: a count beyond the text's length overwrites the terminator and what follows it.
  // Held by UniString.StrnsetWritesBeyondTheTerminator.
  for (u32 at = 0; at < count; ++at) {
    string[at] = unit;
  }
}

// Swaps from both ends: needs no second buffer, so it cannot run out of memory.
ustring* Uni_strrev(ustring* string) {
  std::reverse(string, string + UnitCount(string));
  return string;
}

// The names that the exported calls forward to.
u32 UniStrlen(const ustring* string) { return Uni_strlen(string); }
void UniStrcpy(ustring* destination, const ustring* source) { Uni_strcpy(destination, source); }
void UniStrncpy(ustring* destination, const ustring* source, u32 count) {
  Uni_strncpy(destination, source, count);
}
void UniStrcat(ustring* destination, const ustring* source) { Uni_strcat(destination, source); }
void UniStrncat(ustring* destination, const ustring* source, u32 count) {
  Uni_strncat(destination, source, count);
}
s32 UniStrcmp(const ustring* first, const ustring* second) { return Uni_strcmp(first, second); }
ustring* UniStrchr(const ustring* string, ustring unit) { return Uni_strchr(string, unit); }
ustring* UniStrstr(const ustring* string, const ustring* pattern) {
  return Uni_strstr(string, pattern);
}
u32 UniStrspn(const ustring* string, const ustring* set) { return Uni_strspn(string, set); }
u32 UniStrcspn(const ustring* string, const ustring* set) { return Uni_strcspn(string, set); }
ustring* UniStrtok(ustring* string, const ustring* delimiters) {
  return Uni_strtok(string, delimiters);
}
ustring* UniStrset(ustring* string, ustring unit) { return Uni_strset(string, unit); }
void UniStrnset(ustring* string, ustring unit, u32 count) { Uni_strnset(string, unit, count); }
ustring* UniStrrev(ustring* string) { return Uni_strrev(string); }

}  // namespace qvx
