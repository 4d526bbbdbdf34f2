// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/uni_string.h"

#include "text/uni_string.h"

u32 PXTUniStrlen(const ustring* string) { return qvx::UniStrlen(string); }
void PXTUniStrcpy(ustring* destination, const ustring* source) {
  qvx::UniStrcpy(destination, source);
}
void PXTUniStrncpy(ustring* destination, const ustring* source, u32 count) {
  qvx::UniStrncpy(destination, source, count);
}
void PXTUniStrcat(ustring* destination, const ustring* source) {
  qvx::UniStrcat(destination, source);
}
void PXTUniStrncat(ustring* destination, const ustring* source, u32 count) {
  qvx::UniStrncat(destination, source, count);
}
s32 PXTUniStrcmp(const ustring* first, const ustring* second) {
  return qvx::UniStrcmp(first, second);
}
ustring* PXTUniStrchr(const ustring* string, ustring unit) { return qvx::UniStrchr(string, unit); }
ustring* PXTUniStrstr(const ustring* string, const ustring* pattern) {
  return qvx::UniStrstr(string, pattern);
}
u32 PXTUniStrspn(const ustring* string, const ustring* set) { return qvx::UniStrspn(string, set); }
u32 PXTUniStrcspn(const ustring* string, const ustring* set) {
  return qvx::UniStrcspn(string, set);
}
ustring* PXTUniStrtok(ustring* string, const ustring* delimiters) {
  return qvx::UniStrtok(string, delimiters);
}
ustring* PXTUniStrset(ustring* string, ustring unit) { return qvx::UniStrset(string, unit); }
void PXTUniStrnset(ustring* string, ustring unit, u32 count) {
  qvx::UniStrnset(string, unit, count);
}
ustring* PXTUniStrrev(ustring* string) { return qvx::UniStrrev(string); }
