// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/param_vector.h"

#include <cctype>
#include <cstring>

#include "text/unit_scan.h"

namespace qvx {
namespace {

// The first "=" of a well-formed entry, that is, one with a name before it; else null.
astring* FindEqualSign(const astring* entry) {
  if (entry == nullptr || *entry == '=') return nullptr;
  return const_cast<astring*>(strchr(entry, '='));
}

ustring* FindEqualSign(const ustring* entry) {
  if (entry == nullptr || *entry == '=') return nullptr;
  for (; *entry != 0; ++entry) {
    if (*entry == '=') return const_cast<ustring*>(entry);
  }
  return nullptr;
}

bool SameCharacter(astring first, astring second, bool ignoreCase) {
  if (!ignoreCase) return first == second;
  return tolower(static_cast<u8>(first)) == tolower(static_cast<u8>(second));
}

bool MatchesName(const astring* entry, const astring* name, bool ignoreCase) {
  const astring* equalSign = FindEqualSign(entry);
  if (equalSign == nullptr) return false;
  for (; entry != equalSign; ++entry, ++name) {
    if (!SameCharacter(*name, *entry, ignoreCase)) return false;  // also where the name ends
  }
  // Deliberate: a search name may include an "=" and a value, which are ignored. Held by
  // ParamVector.ASearchNameWithAValueMatchesOnItsNamePart.
  return *name == '\0' || *name == '=';
}

// Deliberate: twice the name's length is compared, because the look-up counts wide characters of 32
// bits where units have 16. The search name ends where the entry has its "=", so the two always
// differ there at the latest, whatever the case flag is. No 16-bit name is ever found, and nothing
// after a terminator is read. Held by ParamVector.A16BitNameIsNeverFound.
bool MatchesName(const ustring* entry, const ustring* name) {
  const ustring* equalSign = FindEqualSign(entry);
  if (equalSign == nullptr) return false;
  const u64 length = static_cast<u64>(equalSign - entry);
  if (length != UnitCount(name)) return false;
  for (u64 at = 0; at < 2 * length; ++at) {
    if (name[at] != entry[at]) return false;
  }
  return true;
}

}  // namespace

u32 GetAStrParamNameLen(const astring* entry) {
  const astring* equalSign = FindEqualSign(entry);
  return equalSign == nullptr ? 0 : static_cast<u32>(equalSign - entry);
}

u32 GetUStrParamNameLen(const ustring* entry) {
  const ustring* equalSign = FindEqualSign(entry);
  return equalSign == nullptr ? 0 : static_cast<u32>(equalSign - entry);
}

astring* GetAStrParamName(astring* entry) {
  astring* equalSign = FindEqualSign(entry);
  if (equalSign == nullptr) return nullptr;
  *equalSign = '\0';
  return entry;
}

ustring* GetUStrParamName(ustring* entry) {
  ustring* equalSign = FindEqualSign(entry);
  if (equalSign == nullptr) return nullptr;
  *equalSign = 0;
  return entry;
}

astring* GetAStrParamValue(astring* entry) {
  astring* equalSign = FindEqualSign(entry);
  return equalSign == nullptr ? nullptr : equalSign + 1;
}

ustring* GetUStrParamValue(ustring* entry) {
  ustring* equalSign = FindEqualSign(entry);
  return equalSign == nullptr ? nullptr : equalSign + 1;
}

u32 IsValidParam(const astring* entry) { return FindEqualSign(entry) != nullptr ? 1 : 0; }

u32 IsValidUParam(const ustring* entry) { return FindEqualSign(entry) != nullptr ? 1 : 0; }

s32 GetParamIndexByAStrName(s32 count, astring** entries, const astring* name, booln ignoreCase) {
  for (s32 index = 0; index < count; ++index) {
    if (MatchesName(entries[index], name, ignoreCase == 1)) return index;
  }
  return -1;
}

s32 GetParamIndexByUStrName(s32 count, ustring** entries, const ustring* name, booln) {
  for (s32 index = 0; index < count; ++index) {
    if (MatchesName(entries[index], name)) return index;
  }
  return -1;
}

astring* GetAStrParamValueByAStrName(s32 count, astring** entries, const astring* name,
                                     booln ignoreCase) {
  const s32 index = GetParamIndexByAStrName(count, entries, name, ignoreCase);
  return index == -1 ? nullptr : GetAStrParamValue(entries[index]);
}

ustring* GetUStrParamValueByUStrName(s32 count, ustring** entries, const ustring* name,
                                     booln ignoreCase) {
  const s32 index = GetParamIndexByUStrName(count, entries, name, ignoreCase);
  return index == -1 ? nullptr : GetUStrParamValue(entries[index]);
}

}  // namespace qvx
