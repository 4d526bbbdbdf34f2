/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_NUMBER_TEXT_H
#define QVXCS_NUMBER_TEXT_H

/**
 * @file
 * Numbers, booleans and times as text, and back.
 *
 * Three groups: tests of what a text consists of, 8-bit conversions (`ASCII...`) and 16-bit
 * conversions (`Uni...`, which go through the encoding of the current locale). Plain conversions
 * cannot report a failure: a text without a number is 0. The `VT` conversions take a base and store
 * a status.
 *
 * Texts are read as `scanf` reads them: leading white space, one sign, digits up to the
 * first character that is not a digit. The 32-bit conversions scan wide and keep the low 32 bits,
 * so 4294967297 is 1; this is no fault. For a number beyond 64 bits they may return any value, also
 * without a fault. Digits and letters are those of ASCII, whatever the locale;
 * only the decimal point of doubles is the locale's.
 *
 * 8-bit outputs carry no size: the caller provides the room that each function states. Sizes of
 * 16-bit outputs are described at each function. A NULL text converts to 0, a NULL status or output
 * is not stored. Nothing takes a lock or allocates memory that outlives the call, and all functions
 * may be called from several threads at once unless they say otherwise.
 */

#include <time.h>

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Tests whether a text is a decimal integer.
 *
 * @param[in] text       the text
 * @param[in] allowSign  non-zero allows one "+" or "-" in front, the sign alone too
 * @retval SM_STATUS_SUCCESS every character except the sign is a digit
 * @retval SM_STATUS_INVALID_PARAMETER otherwise, and when `text` is NULL or empty
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTIsASCIIIntNum(const qvx_astring* text, qvx_u32 allowSign);

/**
 * Tests whether a text consists of hexadecimal digits of one case, with or without "0x" in front.
 *
 * The prefix has a small x and may be the whole text. A text that mixes small and capital letters
 * passes neither way.
 *
 * @param[in] text       the text
 * @param[in] lowerCase  non-zero accepts a-f, 0 accepts A-F
 * @retval SM_STATUS_SUCCESS every character after the prefix is such a digit
 * @retval SM_STATUS_INVALID_PARAMETER otherwise, and when `text` is NULL or empty
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTIsASCIIHexNum(const qvx_astring* text, qvx_u32 lowerCase);

/**
 * Tests whether a text consists of the digits 0-7.
 *
 * @param[in] text  the text
 * @retval SM_STATUS_SUCCESS every character is such a digit
 * @retval SM_STATUS_INVALID_PARAMETER otherwise, and when `text` is NULL or empty
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTIsASCIIOctalNum(const qvx_astring* text);

/**
 * Tests whether a text consists of the letters a-z and A-Z.
 *
 * @param[in] text  the text
 * @retval SM_STATUS_SUCCESS every character is a letter
 * @retval SM_STATUS_INVALID_PARAMETER otherwise, and when `text` is NULL or empty
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTIsASCIIAlpha(const qvx_astring* text);

/**
 * Tests whether a text consists of the letters a-z and A-Z and the digits 0-9.
 *
 * @param[in] text  the text
 * @retval SM_STATUS_SUCCESS every character is a letter or a digit
 * @retval SM_STATUS_INVALID_PARAMETER otherwise, and when `text` is NULL or empty
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTIsASCIIAlphaNumeric(const qvx_astring* text);

/**
 * Tests whether a text consists of letters, digits and the characters of a given set.
 *
 * @param[in] text   the text
 * @param[in] extra  the characters accepted besides; NULL and empty accept none
 * @retval SM_STATUS_SUCCESS every character is accepted
 * @retval SM_STATUS_INVALID_PARAMETER otherwise, and when `text` is NULL or empty
 * @par Memory
 * Reads the texts only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTIsASCIIAlphaNumericPlus(const qvx_astring* text, const qvx_astring* extra);

/**
 * Converts decimal text to a signed 32-bit number.
 *
 * @param[in] text  the text
 * @return the low 32 bits of the number; 0 when there is none
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTASCIIToSigned32(const qvx_astring* text);

/**
 * Converts decimal text to an unsigned 32-bit number. A negative text wraps: -1 is 4294967295.
 *
 * @param[in] text  the text
 * @return the low 32 bits of the number; 0 when there is none
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTASCIIToUnSigned32(const qvx_astring* text);

/**
 * Converts decimal text to a signed 64-bit number.
 *
 * @param[in] text  the text
 * @return the number modulo 2 to the 64th; 0 when there is none
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s64 PXTASCIIToSigned64(const qvx_astring* text);

/**
 * Converts decimal text to an unsigned 64-bit number.
 *
 * Unlike the 32-bit conversion it knows "+" as the only sign.
 *
 * @param[in] text  the text
 * @return the number modulo 2 to the 64th; 0 when there is none, and for a text with "-"
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u64 PXTASCIIToUnSigned64(const qvx_astring* text);

/**
 * Converts text to a double, as `strtod` does.
 *
 * @param[in] text  the text, with the decimal point of the current locale
 * @return the number; 0 when there is none
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 * @par Standards
 * ISO C `strtod`.
 */
QVX_EXPORT qvx_d64 PXTASCIIToDouble(const qvx_astring* text);

/**
 * Converts text to a boolean.
 *
 * @param[in] text  the text
 * @return 1 for "true" in any case, else 0
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_booln PXTASCIIToBooln(const qvx_astring* text);

/**
 * Converts text to a boolean and says whether it was one.
 *
 * @param[in] text     the text
 * @param[out] status  `SM_STATUS_SUCCESS` for "true" and "false" in any case, else
 *                     `SM_STATUS_INVALID_PARAMETER`; NULL is allowed
 * @return 1 for "true" in any case, else 0
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_booln PXTASCIIToBoolnV(const qvx_astring* text, qvx_u32* status);

/**
 * Converts text in a given base to an unsigned 32-bit number.
 *
 * Base 10 accepts digits after an optional sign ("-1" is valid and wraps). Base 8 accepts octal
 * digits. Base 16 accepts hexadecimal digits of one case, but the text itself decides how they are
 * read: with "0x" as hexadecimal, else with a leading 0 as octal, else as decimal, each up to the
 * first digit that does not belong. 0x1F is 31, 10 is 10, and ff is no number.
 *
 * @param[in] text     the text, without white space
 * @param[in] base     QVX_BASE_OCTAL, QVX_BASE_DECIMAL or QVX_BASE_HEXADECIMAL
 * @param[out] status  `SM_STATUS_SUCCESS`; `SM_STATUS_INVALID_PARAMETER` when the text is NULL,
 *                     empty, no number of the base or a sign alone, or the base another; NULL is
 *                     allowed
 * @return the low 32 bits of the number; 0 for a text that is none, 0xFFFFFFFF for another base
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTASCIIToUnSigned32VT(const qvx_astring* text, qvx_u32 base, qvx_u32* status);

/**
 * Converts text in a given base to a signed 32-bit number.
 *
 * Base 10 accepts digits after an optional sign. Base 8 accepts octal digits. Base 16 accepts
 * hexadecimal digits of one case, but the text itself decides how they are read: with "0x" as
 * hexadecimal, else with a leading 0 as octal, else as decimal, each up to the first digit that
 * does not belong.
 *
 * @param[in] text     the text, without white space
 * @param[in] base     QVX_BASE_OCTAL, QVX_BASE_DECIMAL or QVX_BASE_HEXADECIMAL
 * @param[out] status  `SM_STATUS_SUCCESS`; `SM_STATUS_INVALID_PARAMETER` when the text is NULL,
 *                     empty, no number of the base or a sign alone, or the base another; NULL is
 *                     allowed
 * @return the low 32 bits of the number; 0 for a text that is none and for another base
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTASCIIToSigned32VT(const qvx_astring* text, qvx_u32 base, qvx_u32* status);

/**
 * Converts decimal text to an unsigned 64-bit number; texts of bases 16 and 8 are only checked.
 *
 * @param[in] text     the text, without white space
 * @param[in] base     QVX_BASE_OCTAL, QVX_BASE_DECIMAL or QVX_BASE_HEXADECIMAL
 * @param[out] status  `SM_STATUS_SUCCESS`, for a sign alone too; `SM_STATUS_INVALID_PARAMETER` when
 *                     the text is NULL, empty or not of the base's digits, or the base
 *                     another; NULL is allowed
 * @return in base 10 the number modulo 2 to the 64th, 0 for a text that is none and for one with
 *         "-"; in the others 0
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u64 PXTASCIIToUnSigned64VT(const qvx_astring* text, qvx_u32 base, qvx_u32* status);

/**
 * Converts decimal text to a signed 64-bit number; texts of bases 16 and 8 are only checked.
 *
 * @param[in] text     the text, without white space
 * @param[in] base     QVX_BASE_OCTAL, QVX_BASE_DECIMAL or QVX_BASE_HEXADECIMAL
 * @param[out] status  `SM_STATUS_SUCCESS`, for a sign alone too; `SM_STATUS_INVALID_PARAMETER` when
 *                     the text is NULL, empty or not of the base's digits, or the base
 *                     another; NULL is allowed
 * @return in base 10 the number modulo 2 to the 64th, 0 for a text that is none; in the others 0
 * @par Memory
 * Reads the text only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s64 PXTASCIIToSigned64VT(const qvx_astring* text, qvx_u32 base, qvx_u32* status);

/**
 * Writes a signed 32-bit number in decimal.
 *
 * @param[out] out   room for 12 bytes; NULL only counts
 * @param[in] value  the number
 * @return the number of characters, the NUL not counted
 * @par Memory
 * `out` stays the caller's; only the text and its NUL are written.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTSigned32ToASCII(qvx_astring* out, qvx_s32 value);

/**
 * Writes an unsigned 32-bit number in decimal.
 *
 * @param[out] out   room for 11 bytes; NULL only counts
 * @param[in] value  the number
 * @return the number of characters, the NUL not counted
 * @par Memory
 * `out` stays the caller's; only the text and its NUL are written.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTUnSigned32ToASCII(qvx_astring* out, qvx_u32 value);

/**
 * Writes an unsigned 64-bit number in decimal.
 *
 * @param[out] out   room for 21 bytes; NULL does nothing
 * @param[in] value  the number
 * @par Memory
 * `out` stays the caller's; only the text and its NUL are written.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTUnSigned64ToASCII(qvx_astring* out, qvx_u64 value);

/**
 * Writes a signed 64-bit number in decimal.
 *
 * @param[out] out   room for 21 bytes; NULL does nothing
 * @param[in] value  the number
 * @par Memory
 * `out` stays the caller's; only the text and its NUL are written.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTSigned64ToASCII(qvx_astring* out, qvx_s64 value);

/**
 * Writes a double with eight decimals over a text whose length is the room.
 *
 * Fill the buffer with as many characters other than NUL as may be used, and a NUL after them: the
 * result and its NUL take the place of those characters at most, and are cut to fit. An empty
 * buffer receives nothing.
 *
 * @param[in,out] out  the filled buffer; NULL does nothing
 * @param[in] value    the number
 * @par Memory
 * `out` stays the caller's; nothing is written after the text that was there.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 * @par Standards
 * ISO C `printf`, "%.8f".
 */
QVX_EXPORT void PXTDoubleToASCII(qvx_astring* out, qvx_d64 value);

/**
 * Writes a boolean as "true" or "false".
 *
 * @param[out] out   room for 6 bytes; NULL does nothing
 * @param[in] value  exactly 1 is true, any other value false
 * @par Memory
 * `out` stays the caller's; only the text and its NUL are written.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTBoolnToASCII(qvx_astring* out, qvx_booln value);

/**
 * Converts 16-bit decimal text to a signed 32-bit number.
 *
 * The text goes through the locale's encoding with room for one byte a unit and one more; of a text
 * that needs more, what fits is read, and a unit after it that the locale cannot hold is not seen.
 *
 * @param[in] text  16-bit units up to a 0 unit
 * @return the low 32 bits of the number; 0 when there is none, when the locale cannot hold the
 * text, without memory, and for NULL
 * @par Memory
 * Scratch memory only, released before the return.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 */
QVX_EXPORT qvx_s32 PXTUniToSigned32(const qvx_ustring* text);

/**
 * Converts 16-bit decimal text to an unsigned 32-bit number. A negative text wraps.
 *
 * @param[in] text  16-bit units up to a 0 unit, read as `PXTUniToSigned32` reads them
 * @return the low 32 bits of the number; 0 on any failure
 * @par Memory
 * Scratch memory only, released before the return.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 */
QVX_EXPORT qvx_u32 PXTUniToUnSigned32(const qvx_ustring* text);

/**
 * Converts 16-bit decimal text to a signed 64-bit number, as `PXTASCIIToSigned64` does.
 *
 * @param[in] text  16-bit units up to a 0 unit, read as `PXTUniToSigned32` reads them
 * @return the number modulo 2 to the 64th; 0 on any failure
 * @par Memory
 * Scratch memory only, released before the return.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 */
QVX_EXPORT qvx_s64 PXTUniToSigned64(const qvx_ustring* text);

/**
 * Converts 16-bit decimal text to an unsigned 64-bit number, as `PXTASCIIToUnSigned64` does.
 *
 * @param[in] text  16-bit units up to a 0 unit, read as `PXTUniToSigned32` reads them
 * @return the number modulo 2 to the 64th; 0 for a text with "-" and on any failure
 * @par Memory
 * Scratch memory only, released before the return.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 */
QVX_EXPORT qvx_u64 PXTUniToUnSigned64(const qvx_ustring* text);

/**
 * Converts 16-bit text to a double, as `PXTASCIIToDouble` does.
 *
 * @param[in] text  16-bit units up to a 0 unit, read as `PXTUniToSigned32` reads them
 * @return the number; 0 on any failure
 * @par Memory
 * Scratch memory only, released before the return.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 */
QVX_EXPORT qvx_d64 PXTUniToDouble(const qvx_ustring* text);

/**
 * Writes a double as 16-bit text with a given number of decimals.
 *
 * A text that does not fit is cut: (size / 2) - 1 units and a 0 unit are stored, and 0 is still
 * returned. Sizes 2 and 3 store the 0 unit alone, sizes 0 and 1 only measure.
 *
 * @param[out] out        the room, or NULL to ask for the size
 * @param[in,out] size    bytes of room, terminator counted; then the bytes stored or needed
 * @param[in] value       the number
 * @param[in] precision   the number of decimals, 0 or more
 * @retval 0 stored, cut or measured
 * @retval -1 when `size` is NULL, `precision` is negative, there is no memory, or the locale's
 * decimal point is no character of the locale's encoding; `out` and `size` are left as they were
 * @par Memory
 * `out` stays the caller's; nothing is written beyond the stated size.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 * @par Standards
 * ISO C `printf`, "%f".
 */
QVX_EXPORT qvx_s32 PXTUniDoubleToStr(qvx_ustring* out, qvx_u32* size, qvx_d64 value,
                                     qvx_s32 precision);

/**
 * Writes the first three characters of an unsigned 32-bit number's text as 16-bit text.
 *
 * Base 8 is octal, base 16 hexadecimal with small letters, base 2 always gives the empty text. Any
 * other base is decimal and signed: 4294967295 is -1. No text has more than three characters: 1234
 * is 123. Use `PXTUnSigned32ToASCII` for whole numbers.
 *
 * @param[out] out      the room, or NULL to ask for the size
 * @param[in,out] size  bytes of room, terminator counted; then the bytes stored or needed. A text
 *                      that does not fit is cut as in `PXTUniDoubleToStr`
 * @param[in] value     the number
 * @param[in] base      one of `QVXBase`; any other is decimal
 * @retval 0 stored, cut or measured
 * @retval -1 when `size` is NULL or there is no memory; `out` and `size` are left as they were
 * @par Memory
 * `out` stays the caller's; nothing is written beyond the stated size.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 */
QVX_EXPORT qvx_s32 PXTUniUnSigned32ToStr(qvx_ustring* out, qvx_u32* size, qvx_u32 value,
                                         qvx_s32 base);

/**
 * Writes the first three characters of a signed 32-bit number's text as 16-bit text.
 *
 * The same as `PXTUniUnSigned32ToStr` for the number's 32 bits.
 *
 * @param[out] out      the room, or NULL to ask for the size
 * @param[in,out] size  bytes of room, terminator counted; then the bytes stored or needed
 * @param[in] value     the number
 * @param[in] base      one of `QVXBase`; any other is decimal
 * @retval 0 stored, cut or measured
 * @retval -1 when `size` is NULL or there is no memory; `out` and `size` are left as they were
 * @par Memory
 * `out` stays the caller's; nothing is written beyond the stated size.
 * @par Threads
 * Keeps no state; any thread may call while none changes the locale.
 */
QVX_EXPORT qvx_s32 PXTUniSigned32ToStr(qvx_ustring* out, qvx_u32* size, qvx_s32 value,
                                       qvx_s32 base);

/**
 * Writes a time in local time: weekday, month, day, time and year, without a newline.
 *
 * The form is that of Thu Jan  1 00:00:00 1970, in English whatever the locale. The year has as
 * many characters as it needs, so the text has 21 to 25: 24 in the years 1000 to 9999.
 *
 * @param[out] out  room for 26 bytes
 * @param[in] time  the time
 * @retval 0 written
 * @retval -1 when `out` is NULL, the time has no local time, or the text would have more than 25
 *         characters; nothing is written
 * @par Memory
 * `out` stays the caller's.
 * @par Threads
 * Any thread may call while none changes the environment: the time zone is looked up each time.
 * @par Standards
 * ISO C `asctime`, less its newline.
 */
QVX_EXPORT qvx_s32 PXTTimeToAStr(qvx_astring* out, time_t time);

/**
 * Writes a time as 16-bit text, in the form of `PXTTimeToAStr`.
 *
 * @param[out] out      room for `*size` units and one more, or NULL to ask for the size
 * @param[in,out] size  units of room, terminator not counted; then the bytes written or needed,
 *                      terminator counted
 * @param[in] time      the time
 * @retval 0 written or measured
 * @retval -1 when `size` is NULL, the room is short of a unit (what fits is written, without a
 *         terminator), or the time has no text
 * @par Memory
 * `out` stays the caller's. The terminator is stored unchecked: 24 units of room hold a text of 24
 * characters, and the terminator goes into the 25th.
 * @par Threads
 * Any thread may call while none changes the environment.
 */
QVX_EXPORT qvx_s32 PXTUniTimeToStr(qvx_ustring* out, qvx_u32* size, time_t time);

/**
 * Adds 3600 seconds to a time for which daylight saving time is in effect locally.
 *
 * @param[in,out] time  the time; left alone when it has no local time or the sum does not fit. NULL
 *                      does nothing
 * @par Memory
 * `time` stays the caller's.
 * @par Threads
 * Any thread may call while none changes the environment.
 */
QVX_EXPORT void PXTDSTFix(time_t* time);

QVX_END_DECLS

#endif
