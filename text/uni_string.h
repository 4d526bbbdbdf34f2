// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_UNI_STRING_H
#define QVX_TEXT_UNI_STRING_H

#include "qvxcs/types.h"

namespace qvx {

// The exported calls forward to these names; the library itself calls those below.
u32 UniStrlen(const ustring* string);
void UniStrcpy(ustring* destination, const ustring* source);
void UniStrncpy(ustring* destination, const ustring* source, u32 count);
void UniStrcat(ustring* destination, const ustring* source);
void UniStrncat(ustring* destination, const ustring* source, u32 count);
s32 UniStrcmp(const ustring* first, const ustring* second);
ustring* UniStrchr(const ustring* string, ustring unit);
ustring* UniStrstr(const ustring* string, const ustring* pattern);
u32 UniStrspn(const ustring* string, const ustring* set);
u32 UniStrcspn(const ustring* string, const ustring* set);
ustring* UniStrtok(ustring* string, const ustring* delimiters);
ustring* UniStrset(ustring* string, ustring unit);
void UniStrnset(ustring* string, ustring unit, u32 count);
ustring* UniStrrev(ustring* string);

u32 Uni_strlen(const ustring* string);
void Uni_strcpy(ustring* destination, const ustring* source);
void Uni_strncpy(ustring* destination, const ustring* source, u32 count);
void Uni_strcat(ustring* destination, const ustring* source);
void Uni_strncat(ustring* destination, const ustring* source, u32 count);
s32 Uni_strcmp(const ustring* first, const ustring* second);
ustring* Uni_strchr(const ustring* string, ustring unit);
ustring* Uni_strstr(const ustring* string, const ustring* pattern);
u32 Uni_strspn(const ustring* string, const ustring* set);
u32 Uni_strcspn(const ustring* string, const ustring* set);
ustring* Uni_strpbrk(const ustring* string, const ustring* set);
ustring* Uni_strtok(ustring* string, const ustring* delimiters);
ustring* Uni_strset(ustring* string, ustring unit);
void Uni_strnset(ustring* string, ustring unit, u32 count);
ustring* Uni_strrev(ustring* string);

// An internal service without a caller in the library, held by its tests.
s32 Uni_strncasecmp(const ustring* first, const ustring* second, s32 count);
s32 Uni_memcmp(const ustring* first, const ustring* second, u32 count);

}  // namespace qvx

#endif
