/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_UNI_STRING_H
#define QVXCS_UNI_STRING_H

/**
 * @file
 * The byte-string routines of the C library, for texts of 16-bit units.
 *
 * The platform's wide characters have 32 bits, so these texts need their own routines. They do
 * what `strlen`, `strcpy` and their siblings do, unit for unit, with the differences that each
 * function says.
 *
 * Units: every length, count and position is in 16-bit units, never in bytes. A text ends at its
 * first unit 0. Surrogate pairs are two units like any others.
 *
 * Arguments are not checked: a NULL text is the caller's error, and a destination needs room for
 * all that is written. Source and destination must not overlap. No function here returns a status.
 *
 * Locks: none are taken. Threads: every routine but `PXTUniStrtok` keeps no state and may be
 * called by any thread.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Measures a text.
 *
 * @param[in] string  16-bit units up to a 0 unit
 * @return the number of units before the terminator; 4,294,967,295 when there are more
 * @par Memory
 * Keeps no reference to the text.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTUniStrlen(const qvx_ustring* string);

/**
 * Copies a text, terminator included.
 *
 * @param[out] destination  room for the source and its terminator
 * @param[in] source        the text to copy
 * @par Memory
 * Both stay the caller's.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTUniStrcpy(qvx_ustring* destination, const qvx_ustring* source);

/**
 * Copies units until it has copied the terminator or `count` units, whichever comes first.
 *
 * Unlike `strncpy` it does not fill up with zeros: what follows a shorter source stays as it
 * was. Like `strncpy` it adds no terminator when the count runs out.
 *
 * @param[out] destination  room for `count` units, or for the source and its terminator
 * @param[in] source        the text to copy; needs no terminator within `count` units
 * @param[in] count         units to copy at most
 * @par Memory
 * Both stay the caller's. No unit of the source after the first `count` is read.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTUniStrncpy(qvx_ustring* destination, const qvx_ustring* source, qvx_u32 count);

/**
 * Appends a text, terminator included.
 *
 * @param[in,out] destination  a text with room for the source after it
 * @param[in] source           the text to append
 * @par Memory
 * Both stay the caller's.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTUniStrcat(qvx_ustring* destination, const qvx_ustring* source);

/**
 * Appends at most `count` units of a text and always terminates the result.
 *
 * @param[in,out] destination  a text with room for `count` units and a terminator after it; with a
 *                             count of 0 it is neither read nor written
 * @param[in] source           the text to append; needs no terminator within `count` units
 * @param[in] count            units to append at most
 * @par Memory
 * Both stay the caller's. No unit of the source after the first `count` is read.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTUniStrncat(qvx_ustring* destination, const qvx_ustring* source, qvx_u32 count);

/**
 * Tests whether two texts differ.
 *
 * The result is the difference of the first differing units modulo 65536, 0 to 65535. It is never
 * negative: "a" against "b" is 65535. Only zero or not zero means something, so it does not
 * sort.
 *
 * @param[in] first   a text
 * @param[in] second  the text to compare it with
 * @return 0 if the texts are equal, a positive number otherwise
 * @par Memory
 * Keeps no reference to either text.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTUniStrcmp(const qvx_ustring* first, const qvx_ustring* second);

/**
 * Finds the first occurrence of a unit.
 *
 * @param[in] string  the text to search
 * @param[in] unit    the unit sought; 0 finds the terminator
 * @return where the unit is, or NULL if the text does not hold it
 * @par Memory
 * The result points into `string`.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_ustring* PXTUniStrchr(const qvx_ustring* string, qvx_ustring unit);

/**
 * Finds the first occurrence of a text within another.
 *
 * @param[in] string   the text to search
 * @param[in] pattern  the text sought; an empty one is found at the start
 * @return where the pattern begins, or NULL if the text does not hold it
 * @par Memory
 * The result points into `string`.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_ustring* PXTUniStrstr(const qvx_ustring* string, const qvx_ustring* pattern);

/**
 * Measures the leading run of units that occur in a set.
 *
 * @param[in] string  the text to measure
 * @param[in] set     the units that belong to the run, as a text
 * @return the run's length, at most 4,294,967,295; 0 for an empty text or set
 * @par Memory
 * Keeps no reference to either text.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTUniStrspn(const qvx_ustring* string, const qvx_ustring* set);

/**
 * Measures the leading run of units that do not occur in a set.
 *
 * @param[in] string  the text to measure
 * @param[in] set     the units that end the run, as a text
 * @return the run's length, at most 4,294,967,295; the text's length when no unit is in the set
 * @par Memory
 * Keeps no reference to either text.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTUniStrcspn(const qvx_ustring* string, const qvx_ustring* set);

/**
 * Splits a text into tokens, one each call.
 *
 * The first call names the text, each further call passes NULL for the next token of the same
 * text. Delimiters before a token are skipped; the delimiter after it is overwritten with 0. The
 * delimiters may differ from call to call. After the last token every continuing call returns NULL
 * until a new text is named.
 *
 * @param[in,out] string  the text to split, or NULL to go on with the previous one
 * @param[in] delimiters  the units that separate tokens, as a text
 * @return the token, or NULL when none is left or no text was ever named
 * @par Memory
 * The result points into the text, which stays the caller's and must live until the split is done.
 * @par Threads
 * The position is one for the whole process, shared by all threads and callers without a lock:
 * a second split ends the first. Callers that split texts on several threads at once must not use
 * this function.
 */
QVX_EXPORT qvx_ustring* PXTUniStrtok(qvx_ustring* string, const qvx_ustring* delimiters);

/**
 * Overwrites every unit before the terminator.
 *
 * @param[in,out] string  the text to overwrite; its length stays
 * @param[in] unit        the unit to write; 0 empties the text
 * @return `string`
 * @par Memory
 * The text stays the caller's.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_ustring* PXTUniStrset(qvx_ustring* string, qvx_ustring unit);

/**
 * Writes a unit into exactly `count` positions from the start.
 *
 * Unlike the byte routine of this name it does not stop at the terminator: a count beyond the
 * text's length overwrites the terminator and what follows it.
 *
 * @param[out] string  room for `count` units
 * @param[in] unit     the unit to write
 * @param[in] count    positions to write
 * @par Memory
 * The text stays the caller's. Nothing is read.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTUniStrnset(qvx_ustring* string, qvx_ustring unit, qvx_u32 count);

/**
 * Reverses a text in place. The halves of a surrogate pair change places too.
 *
 * @param[in,out] string  the text to reverse
 * @return `string`
 * @par Memory
 * The text stays the caller's. No memory is allocated.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_ustring* PXTUniStrrev(qvx_ustring* string);

QVX_END_DECLS

#endif
