/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_STRING_RESOURCE_H
#define QVXCS_STRING_RESOURCE_H

/**
 * @file
 * Localised message texts, found by language and identifier.
 *
 * A resource file is UTF-16 in little-endian order and begins with the byte order mark 0xFF 0xFE.
 * Lines end with carriage return and line feed and hold the key "%X:%X=", language and identifier
 * in upper-case hexadecimal, then the text. 0 is the neutral language, which 1033 and 437 mean too.
 * Lines are read in pieces of at most 1,024 units; a last line without a line end loses its last
 * unit.
 *
 * Sizes are bytes, two for each 16-bit unit. Nothing is locked; the file is open during the call
 * only.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Delivers the text of an identifier in a language, or in the neutral one.
 *
 * The first line that contains the key, wherever in the line, is taken; its text begins after the
 * last "=" of the line. When the language has none, the neutral language is tried.
 *
 * A file that cannot be used is answered with an English message in the text's place: "Invalid Path
 * File Name" for a NULL path, "String resource not found" when it cannot be opened, "Invalid string
 * resource found" without the byte order mark, "Failed to allocate memory".
 *
 * @param[in] stringId        the text's identifier
 * @param[in,out] languageId  the language, or NULL for the neutral one; set to 0 for 1033 and 437,
 *                            and where it has no such text and the neutral one is tried
 * @param[in] path            the file
 * @param[out] buffer         room for the text, or NULL
 * @param[in,out] size        bytes of room, or NULL; then the result. There is no size query:
 *                            give a buffer that is large enough for the longest text
 * @return the bytes delivered, the 0 unit counted; 0 when there is no such text, `buffer` or `size`
 *         is NULL, the text does not fit, or memory is exhausted. With both NULL the bytes that the
 *         text needs
 * @par Memory
 * Hands out none; at most `*size` bytes of `buffer` are written.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetUnicodeStringFromIDPathFile(qvx_u32 stringId, qvx_u32* languageId,
                                                     const qvx_astring* path, qvx_ustring* buffer,
                                                     qvx_u32* size);

QVX_END_DECLS

#endif
