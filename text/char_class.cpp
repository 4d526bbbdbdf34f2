// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/char_class.h"

#include <cstring>

#include "qvxcs/status.h"

namespace qvx {
namespace {

// ASCII ranges, not the locale's tables: what counts as a number must not depend on the host.
bool IsDigit(astring character) { return character >= '0' && character <= '9'; }

bool IsOctalDigit(astring character) { return character >= '0' && character <= '7'; }

bool IsLetter(astring character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool IsLetterOrDigit(astring character) { return IsLetter(character) || IsDigit(character); }

bool IsLowerHexDigit(astring character) {
  return IsDigit(character) || (character >= 'a' && character <= 'f');
}

bool IsUpperHexDigit(astring character) {
  return IsDigit(character) || (character >= 'A' && character <= 'F');
}

bool IsNullOrEmpty(const astring* text) { return text == nullptr || *text == '\0'; }

// An empty text passes: where none is allowed, it has been refused before.
u32 EachIs(const astring* text, bool (*accepted)(astring character)) {
  for (; *text != '\0'; ++text) {
    if (!accepted(*text)) return SM_STATUS_INVALID_PARAMETER;
  }
  return SM_STATUS_SUCCESS;
}

}  // namespace

u32 IsASCIIIntNum(const astring* text, u32 allowSign) {
  if (IsNullOrEmpty(text)) return SM_STATUS_INVALID_PARAMETER;
  // Deliberate: a sign with nothing after it passes, so that a number may be checked while it is
  // being typed. Held by CharClass.ALoneSignIsAnIntegerWhereSignsAreAllowed.
  if (allowSign != 0 && (*text == '+' || *text == '-')) ++text;
  return EachIs(text, IsDigit);
}

u32 IsASCIIHexNum(const astring* text, u32 lowerCase) {
  if (IsNullOrEmpty(text)) return SM_STATUS_INVALID_PARAMETER;
  // Deliberate: the prefix is "0x" with a small x only, and may be the whole text. Held by
  // CharClass.TheHexPrefixAloneIsANumber.
  if (text[0] == '0' && text[1] == 'x') text += 2;
  // Deliberate: letters of one case only; a text that mixes them fails both ways. Held by
  // CharClass.HexDigitsOfMixedCaseFailBothWays.
  return EachIs(text, lowerCase != 0 ? IsLowerHexDigit : IsUpperHexDigit);
}

u32 IsASCIIOctalNum(const astring* text) {
  if (IsNullOrEmpty(text)) return SM_STATUS_INVALID_PARAMETER;
  return EachIs(text, IsOctalDigit);
}

u32 IsASCIIAlpha(const astring* text) {
  if (IsNullOrEmpty(text)) return SM_STATUS_INVALID_PARAMETER;
  return EachIs(text, IsLetter);
}

u32 IsASCIIAlphaNumeric(const astring* text) {
  if (IsNullOrEmpty(text)) return SM_STATUS_INVALID_PARAMETER;
  return EachIs(text, IsLetterOrDigit);
}

u32 IsASCIIAlphaNumericPlus(const astring* text, const astring* extra) {
  if (extra == nullptr) return IsASCIIAlphaNumeric(text);
  if (IsNullOrEmpty(text)) return SM_STATUS_INVALID_PARAMETER;
  for (; *text != '\0'; ++text) {
    if (!IsLetterOrDigit(*text) && strchr(extra, *text) == nullptr) {
      return SM_STATUS_INVALID_PARAMETER;
    }
  }
  return SM_STATUS_SUCCESS;
}

}  // namespace qvx
