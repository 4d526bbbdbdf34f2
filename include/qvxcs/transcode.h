/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_TRANSCODE_H
#define QVXCS_TRANSCODE_H

/**
 * @file
 * Conversion between UTF-8, 16-bit units and 32-bit code points, and escaping for XML.
 *
 * "ASCII" and "local" text is UTF-8 at this interface, so the functions of those names are the
 * UTF-8 converters under second and third names.
 *
 * UTF-8 has its six-byte form: code points up to 0x7FFFFFFF. Encoders treat surrogate code points
 * like any other. Decoders only check that following bytes are not zero: overlong
 * forms and following bytes without the pattern 10xxxxxx are accepted.
 *
 * Units: sizes of 8-bit results count bytes. The size of a 16-bit result is read as a count of
 * units and written back as a count of bytes. What is written back counts the terminator. With a
 * NULL output only the size that the whole result needs is written (`PXTUnicodeToEscape`
 * alone differs).
 *
 * The converters, unlike the XML functions, store the terminator unchecked: give them room for one
 * element more than the size says.
 *
 * The converters and the XML escaper stop at the first fault and return its status. What was
 * written until then stays, without a terminator; the size stays as it was.
 *
 * Locks: none are taken. Threads: nothing keeps state, any thread may call.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Converts 16-bit text to UTF-8.
 *
 * Surrogates are not combined: each surrogate unit becomes the code point that
 * the text begins with. A text that begins with a pair has it twice, once for each half.
 *
 * @param[out] out      room for `*size` bytes and one more, or NULL to ask for the size
 * @param[in,out] size  bytes of room; then the bytes written or needed, NUL counted
 * @param[in] text      16-bit units up to a 0 unit
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `size` or `text` is NULL
 * @retval SM_STATUS_BAD_DATA when the text holds a surrogate and begins with an unpaired one
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the text has more than `*size` bytes without its NUL, or
 *         needs a size beyond 32 bits: `out` is left without its NUL, `*size` as it was
 * @par Memory
 * `out` stays the caller's. Text that fills `*size` exactly is a success and puts the NUL one byte
 * beyond.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_u32 PXTUCS2StrToUTF8Str(qvx_astring* out, qvx_u32* size, const qvx_ustring* text);

/**
 * `PXTUCS2StrToUTF8Str` under a second name.
 *
 * @param[out] out      room for `*size` bytes and one more, or NULL to ask for the size
 * @param[in,out] size  bytes of room; then the bytes written or needed, NUL counted
 * @param[in] text      16-bit units up to a 0 unit
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `size` or `text` is NULL
 * @retval SM_STATUS_BAD_DATA when the text holds a surrogate and begins with an unpaired one
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the text has more than `*size` bytes without its NUL, or
 *         needs a size beyond 32 bits: `out` is left without its NUL, `*size` as it was
 * @par Memory
 * `out` stays the caller's. Text that fills `*size` exactly is a success and puts the NUL one byte
 * beyond.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_u32 PXTUnicodeToASCII(qvx_astring* out, qvx_u32* size, const qvx_ustring* text);

/**
 * `PXTUCS2StrToUTF8Str` under a third name; the current locale does not matter.
 *
 * @param[out] out      room for `*size` bytes and one more, or NULL to ask for the size
 * @param[in,out] size  bytes of room; then the bytes written or needed, NUL counted
 * @param[in] text      16-bit units up to a 0 unit
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `size` or `text` is NULL
 * @retval SM_STATUS_BAD_DATA when the text holds a surrogate and begins with an unpaired one
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the text has more than `*size` bytes without its NUL, or
 *         needs a size beyond 32 bits: `out` is left without its NUL, `*size` as it was
 * @par Memory
 * `out` stays the caller's. Text that fills `*size` exactly is a success and puts the NUL one byte
 * beyond.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_u32 PXTUnicodeToLocal(qvx_astring* out, qvx_u32* size, const qvx_ustring* text);

/**
 * Converts 32-bit code points to UTF-8.
 *
 * @param[out] out      room for `*size` bytes and one more, or NULL to ask for the size
 * @param[in,out] size  bytes of room; then the bytes written or needed, NUL counted
 * @param[in] text      code points up to a 0
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `size` or `text` is NULL
 * @retval SM_STATUS_BAD_DATA when a code point is 0x80000000 or more
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the text has more than `*size` bytes without its NUL, or
 *         needs a size beyond 32 bits: `out` is left without its NUL, `*size` as it was
 * @par Memory
 * `out` stays the caller's. Text that fills `*size` exactly is a success and puts the NUL one byte
 * beyond.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_u32 PXTUCS4StrToUTF8Str(qvx_astring* out, qvx_u32* size, const qvx_u32* text);

/**
 * Converts UTF-8 to 16-bit text.
 *
 * A code point from 0x10000 becomes a pair whose high unit is formed without subtracting 0x10000:
 * 0x10000 is the pair 0xD840 0xDC00. The text ends at its zero byte only: the overlong form
 * 0xC0 0x80 is a unit 0 inside the result, counted like any other.
 *
 * @param[out] out      room for `*size` units and one more, or NULL to ask for the size
 * @param[in,out] size  units of room; then the bytes written or needed, terminator counted
 * @param[in] text      UTF-8 up to a NUL
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `size` or `text` is NULL
 * @retval SM_STATUS_BAD_DATA when a byte begins no character, the text ends inside one, or a code
 *         point is above 0x10FFFF
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the text has more than `*size` units without its
 *         terminator, or needs a size beyond 32 bits: `out` is left without it, `*size` as it was
 * @par Memory
 * `out` stays the caller's. Text that fills `*size` exactly is a success and puts the terminator
 * one unit beyond. A block of as many bytes as a size query returns is always enough.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_u32 PXTUTF8StrToUCS2Str(qvx_ustring* out, qvx_u32* size, const qvx_astring* text);

/**
 * `PXTUTF8StrToUCS2Str` under a second name.
 *
 * @param[out] out      room for `*size` units and one more, or NULL to ask for the size
 * @param[in,out] size  units of room; then the bytes written or needed, terminator counted
 * @param[in] text      UTF-8 up to a NUL
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `size` or `text` is NULL
 * @retval SM_STATUS_BAD_DATA when a byte begins no character, the text ends inside one, or a code
 *         point is above 0x10FFFF
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the text has more than `*size` units without its
 *         terminator, or needs a size beyond 32 bits: `out` is left without it, `*size` as it was
 * @par Memory
 * `out` stays the caller's. Text that fills `*size` exactly is a success and puts the terminator
 * one unit beyond. A block of as many bytes as a size query returns is always enough.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_u32 PXTASCIIToUnicode(qvx_ustring* out, qvx_u32* size, const qvx_astring* text);

/**
 * `PXTUTF8StrToUCS2Str` under a third name; the current locale does not matter.
 *
 * @param[out] out      room for `*size` units and one more, or NULL to ask for the size
 * @param[in,out] size  units of room; then the bytes written or needed, terminator counted
 * @param[in] text      UTF-8 up to a NUL
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `size` or `text` is NULL
 * @retval SM_STATUS_BAD_DATA when a byte begins no character, the text ends inside one, or a code
 *         point is above 0x10FFFF
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the text has more than `*size` units without its
 *         terminator, or needs a size beyond 32 bits: `out` is left without it, `*size` as it was
 * @par Memory
 * `out` stays the caller's. Text that fills `*size` exactly is a success and puts the terminator
 * one unit beyond. A block of as many bytes as a size query returns is always enough.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_u32 PXTLocalToUnicode(qvx_ustring* out, qvx_u32* size, const qvx_astring* text);

/**
 * Makes UTF-8 text safe for XML content and attributes.
 *
 * Double quote, ampersand, apostrophe, less-than and greater-than become `&quot;`, `&amp;`,
 * `&apos;`, `&lt;` and `&gt;`. Every other byte is copied as it is, malformed UTF-8 too.
 *
 * @param[out] out      room for `*size` bytes, or NULL to ask for the size
 * @param[in,out] size  bytes of room, NUL counted; then the bytes written or needed
 * @param[out] escaped  1 from the first character replaced, whether or not it fits, 0 without any;
 *                      as it was when `size` or `text` is NULL; may be NULL
 * @param[in] text      UTF-8 up to a NUL
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `size` or `text` is NULL
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the text and its NUL have more than `*size` bytes, or
 *         need a size beyond 32 bits: `out` holds the whole pieces that fit, without a NUL, and
 *         `*size` is as it was
 * @par Memory
 * `out` stays the caller's. Nothing beyond `*size` is written.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * Extensible Markup Language (XML) 1.0, section 4.6.
 */
QVX_EXPORT qvx_u32 PXTUTF8StrToXMLUTF8Str(qvx_astring* out, qvx_u32* size, qvx_booln* escaped,
                                          const qvx_astring* text);

/**
 * Writes 16-bit text in printable characters with backslash escapes.
 *
 * Tab, line feed, carriage return and backslash become `\t`, `\n`, `\r` and `\\`. Units from 0x20
 * to 0x7F stay as they are, double quotes and 0x7F too. Every other unit becomes `\u` and four
 * lower-case hexadecimal digits, each half of a surrogate pair by itself.
 *
 * A size query differs from the other functions': pass a size of 0 and expect
 * SM_STATUS_BUFFER_TOO_SMALL.
 *
 * @param[out] out      room for `*size` bytes, or NULL to write nothing
 * @param[in,out] size  bytes of room, NUL counted; then the bytes needed, fitting or not; NULL when
 *                      `out` is known to be large enough
 * @param[in] text      16-bit units up to a 0 unit
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when `text` is NULL
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the result and its NUL have more than `*size` bytes, with
 *         an output or without: nothing is written to `out`, and `*size` is the size needed
 * @retval 0xFFFFFFFF without memory for the result: `out` and `*size` are as they were
 * @par Memory
 * `out` stays the caller's. Nothing beyond `*size` is written; without a `size` nothing is checked.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTUnicodeToEscape(qvx_astring* out, qvx_u32* size, const qvx_ustring* text);

/**
 * Escapes a text for XML, several times if asked.
 *
 * Each further pass escapes the ampersands that the pass before has written: with two passes `&`
 * becomes `&amp;amp;`. A pass that has nothing to replace is the last.
 *
 * @param[in] text    UTF-8 up to a NUL
 * @param[in] passes  how often to escape; 0 counts as 1
 * @return the escaped text, or NULL when `text` is NULL or there is no memory for the result
 * @par Memory
 * The result is the caller's; free it with `PXTFreeMem`. `text` is not changed.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * Extensible Markup Language (XML) 1.0, section 4.6.
 */
QVX_EXPORT qvx_astring* PXTGetXMLUTF8StrFromAStr(const qvx_astring* text, qvx_u32 passes);

/**
 * Converts 16-bit text to UTF-8 as `PXTUCS2StrToUTF8Str` does and escapes it for XML, as
 * `PXTGetXMLUTF8StrFromAStr` does.
 *
 * @param[in] text    16-bit units up to a 0 unit
 * @param[in] passes  how often to escape; 0 counts as 1
 * @return the escaped text, or NULL when `text` is NULL or cannot be converted, or there is no
 *         memory for the result
 * @par Memory
 * The result is the caller's; free it with `PXTFreeMem`. `text` is not changed.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279. Extensible Markup Language (XML) 1.0, section 4.6.
 */
QVX_EXPORT qvx_astring* PXTGetXMLUTF8StrFromUStr(const qvx_ustring* text, qvx_u32 passes);

/**
 * Returns the identifier of the language that messages are in.
 *
 * It is the same on every machine; neither the environment variable LANG nor the current locale
 * changes it.
 *
 * @return 1033, English of the United States
 * @par Memory
 * None is involved.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetLocalLanguageID(void);

QVX_END_DECLS

#endif
