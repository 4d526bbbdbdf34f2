/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_GROW_STRING_H
#define QVXCS_GROW_STRING_H

/**
 * @file
 * Text of unknown length, built by appending; a hex dump; small edits of 8-bit text.
 *
 * A record holds a text, the size of its block and the text's length. There are two forms: 8-bit
 * (`SSAStr`) and 16-bit (`SSUStr`). The capacity counts bytes in both; the length counts
 * characters, or 16-bit units, before the terminator. A record starts with an alloc call, lives
 * through appends and ends with its free call; while it lives its text is terminated.
 *
 * An append that does not fit moves the text to a larger block: the size needed, or twice the old
 * capacity where that is more (above 0xFFFFF bytes a quarter more instead of twice). Pointers to
 * the old text are invalid from then on. An append returns only the text pointer: when no
 * larger block can be allocated, the record stays as it was, and only the unchanged length shows
 * it. A text of the record itself may be appended to it.
 *
 * Nothing here takes a lock. A record belongs to one thread at a time; different records may be
 * used from different threads.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** A growable 8-bit text. */
typedef struct SSAStr {
  qvx_astring* text; /**< the text, NUL-terminated; NULL once freed */
  qvx_u32 capacity;  /**< size of the block in bytes */
  qvx_u32 length;    /**< characters before the NUL */
} SSAStr;

/** A growable 16-bit text. */
typedef struct SSUStr {
  qvx_ustring* text; /**< the text, ended by a 0 unit; NULL once freed */
  qvx_u32 capacity;  /**< size of the block in bytes, not in units */
  qvx_u32 length;    /**< 16-bit units before the 0 unit */
} SSUStr;

/**
 * Starts a growable 8-bit text.
 *
 * @param[out] record   gets an empty text; what it held before is not freed
 * @param[in] capacity  size of the first block in bytes, NUL counted
 * @retval text  the record's empty text
 * @retval NULL when `record` is NULL, `capacity` is 0 or memory runs out; the record is left alone
 * @par Memory
 * Ends with PXTSSAStrFree. The text alone may also be kept and given to PXTFreeMem.
 * @par Threads
 * The record belongs to the calling thread.
 */
QVX_EXPORT qvx_astring* PXTSSAStrAlloc(SSAStr* record, qvx_u32 capacity);

/**
 * Starts a growable 16-bit text.
 *
 * @param[out] record   gets an empty text; what it held before is not freed
 * @param[in] capacity  size of the first block in bytes; 1 is kept as it is, and the block still
 * has room for the 0 unit
 * @retval text  the record's empty text
 * @retval NULL when `record` is NULL, `capacity` is 0 or memory runs out; the record is left alone
 * @par Memory
 * Ends with PXTSSUStrFree. The text alone may also be kept and given to PXTFreeMem.
 * @par Threads
 * The record belongs to the calling thread.
 */
QVX_EXPORT qvx_ustring* PXTSSUStrAlloc(SSUStr* record, qvx_u32 capacity);

/**
 * Frees the text and sets all three fields to 0.
 *
 * @param[in,out] record  a started or freed record, or NULL to do nothing
 * @par Memory
 * The record itself stays the caller's. Freeing it twice does no harm.
 * @par Threads
 * The record belongs to the calling thread.
 */
QVX_EXPORT void PXTSSAStrFree(SSAStr* record);

/**
 * Frees the text and sets all three fields to 0.
 *
 * @param[in,out] record  a started or freed record, or NULL to do nothing
 * @par Memory
 * The record itself stays the caller's. Freeing it twice does no harm.
 * @par Threads
 * The record belongs to the calling thread.
 */
QVX_EXPORT void PXTSSUStrFree(SSUStr* record);

/**
 * Appends 8-bit text to 8-bit text.
 *
 * @param[in,out] record  the record to grow
 * @param[in] text        what is appended, any encoding; NULL appends nothing
 * @retval text  the record's text. Where memory ran out, or the length would exceed 32 bits, it is
 * the old text with the old length.
 * @retval NULL when `record` or its text is NULL
 * @par Memory
 * The result stays the record's.
 * @par Threads
 * The record belongs to the calling thread.
 */
QVX_EXPORT qvx_astring* PXTSSAStrCatAStr(SSAStr* record, const qvx_astring* text);

/**
 * Appends 16-bit text to 16-bit text.
 *
 * @param[in,out] record  the record to grow
 * @param[in] text        what is appended; NULL appends nothing
 * @retval text  the record's text. Where memory ran out, or the length would exceed 32 bits, it is
 * the old text with the old length.
 * @retval NULL when `record` or its text is NULL
 * @par Memory
 * The result stays the record's.
 * @par Threads
 * The record belongs to the calling thread.
 */
QVX_EXPORT qvx_ustring* PXTSSUStrCatUStr(SSUStr* record, const qvx_ustring* text);

/**
 * Appends 16-bit text to 8-bit text, as UTF-8.
 *
 * @param[in,out] record  the record to grow
 * @param[in] text        what is appended, converted as PXTUCS2StrToUTF8Str does; NULL appends
 *                        nothing
 * @retval text  the record's text. It is the old one when `text` cannot be converted and when the
 *               record cannot grow.
 * @retval NULL when `record` or its text is NULL, or without memory for the conversion; the record
 *         stays as it was
 * @par Memory
 * The result stays the record's.
 * @par Threads
 * The record belongs to the calling thread.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_astring* PXTSSAStrCatUStr(SSAStr* record, const qvx_ustring* text);

/**
 * Appends UTF-8 text to 16-bit text.
 *
 * @param[in,out] record  the record to grow
 * @param[in] text        what is appended, converted as PXTUTF8StrToUCS2Str does; a character that
 *                        decodes to 0 ends it, and NULL appends nothing
 * @retval text  the record's text. It is the old one when `text` cannot be converted and when the
 *               record cannot grow.
 * @retval NULL when `record` or its text is NULL, or without memory for the conversion; the record
 *         stays as it was
 * @par Memory
 * The result stays the record's.
 * @par Threads
 * The record belongs to the calling thread.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_ustring* PXTSSUStrCatAStr(SSUStr* record, const qvx_astring* text);

/**
 * Appends a hex dump of a byte block to a 16-bit text.
 *
 * Each line shows 16 bytes, the last one the rest, in 80 columns, carriage return and line feed:
 * the address, a colon and a blank ("0x00001000: "), two upper-case digits for each byte with a
 * blank between them (a colon after every fourth byte when more follow), and from column 63 on
 * the bytes as characters. Bytes outside 0x20 to 0x7A show as a full stop.
 *
 * @param[in,out] record  the record to grow
 * @param[in] bytes       the block, which must not lie in the record's own text; NULL holds nothing
 * @param[in] count       bytes in the block
 * @param[in] base        address shown for the first byte; addresses wrap at 32 bits
 * @retval 0   the dump is appended, or there is nothing to dump. A line for which the record could
 *             not grow is missing, which only the length shows.
 * @retval -1  when `record` is NULL, when there is something to dump and the record has no text,
 *             or without memory to convert a line; the lines before it stay
 * @par Memory
 * The record and the block stay the caller's.
 * @par Threads
 * The record belongs to the calling thread.
 */
QVX_EXPORT qvx_s32 PXTBufToUStr(SSUStr* record, const void* bytes, qvx_u32 count, qvx_u32 base);

/**
 * Joins two texts into a new one.
 *
 * @param[in] first   the first text
 * @param[in] second  the text that follows it
 * @param[out] out    gets the joined text, or NULL without memory. It is left alone when `first` or
 *                    `second` is NULL; a NULL `out` does nothing.
 * @par Memory
 * The caller frees the new text with PXTFreeMem. What `*out` held before is not freed.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTAppendDNode(const qvx_astring* first, const qvx_astring* second,
                               qvx_astring** out);

/**
 * Removes every double-quote character from some texts, in place.
 *
 * @param[in] count        texts in the array
 * @param[in,out] strings  the array, or NULL to do nothing; entries that are NULL are skipped
 * @par Memory
 * The texts keep their blocks.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTRemoveDQuotesInStrArr(qvx_u32 count, qvx_astring** strings);

/**
 * Compares the beginnings of two texts without regard to the case of A to Z.
 *
 * The locale plays no part; bytes compare as unsigned ones.
 *
 * @param[in] first   one text
 * @param[in] second  the other text
 * @param[in] count   characters to compare at most
 * @return the difference of the last characters compared, `first` minus `second`: 0 when the texts
 *         agree up to `count` or to both their ends, when `count` is 0 and when a text is NULL
 * @par Memory
 * Nothing changes hands.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTAStrnicmp(const qvx_astring* first, const qvx_astring* second, qvx_u32 count);

/**
 * Copies a text with one occurrence of another replaced.
 *
 * The text is scanned once. Other characters between those of `find` do not end a match that has
 * begun. As many characters as `find` has are replaced, and the one that completes the match is the
 * last of them. So "abcdef" with "bd" replaced by "X" is "abXef".
 *
 * @param[in] text      the text to copy, not empty
 * @param[in] find      what is sought, not empty and not longer than `text`
 * @param[in] replace   what takes its place; may be empty
 * @param[in,out] size  bytes of room in `out`, NUL counted; the bytes needed when there is too
 *                      little
 * @param[in,out] out   room for the result, or NULL to ask for its size. It may be `text` itself;
 *                      other texts that lie in it give no useful result
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `text`, `find`, `replace` or `size` is NULL, when
 *         `text` or `find` is empty, or when `find` is the longer; nothing is changed
 * @retval SM_STATUS_SIZE_REQUIRED when `out` is NULL or too small; `*size` is set
 * @retval 0xFFFFFFFF when there is no match. As many characters as the text already in `out` has
 *         (at most `*size`) are then copied from `text`, with zeros after a shorter `text`.
 * @par Memory
 * `out` stays the caller's. It must hold a terminated text before the call; otherwise the copy
 * without a match may fill its whole room.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTASCIIReplaceSubstr(const qvx_astring* text, const qvx_astring* find,
                                         const qvx_astring* replace, qvx_u32* size,
                                         qvx_astring* out);

QVX_END_DECLS

#endif
