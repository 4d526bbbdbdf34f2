/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_HASH_ID_H
#define QVXCS_HASH_ID_H

/**
 * @file
 * ID tables: unique small positive numbers from a bitmap that the caller owns.
 *
 * Ask for the bytes (round them up to a multiple of 4 for full use), allocate and clear them, then
 * acquire, verify, release and list identifiers. The table is an array of 32-bit words; bit i of
 * word w is the identifier w * 32 + i, and a set bit means that it is in use. Identifier 0
 * is never handed out nor listed, so that 0 can mean "none".
 *
 * Sizes are always bytes. Acquiring, listing and the maximum use whole words, size / 4 rounded
 * down; verifying and releasing reach every identifier up to size * 8 - 1, those of a partial last
 * word too. Words after the first 512 MiB are not used: their identifiers do not fit in 32 bits.
 * Table pointers and cursors are not checked. There is no lock: threads that share a table
 * must lock it themselves.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Computes how many bytes a table for a number of identifiers needs.
 *
 * Identifier 0 takes one of the bits.
 *
 * @param[in] count  the number of identifiers
 * @return count / 8, rounded up; not rounded to whole words
 * @par Memory
 * None.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTHashTableBytesNeeded(qvx_u32 count);

/**
 * Marks all identifiers free.
 *
 * @param[out] table  the table
 * @param[in] size    its size in bytes
 * @retval SM_STATUS_SUCCESS always
 * @par Memory
 * Exactly `size` bytes become 0.
 * @par Threads
 * The caller keeps other threads off the table.
 */
QVX_EXPORT qvx_u32 PXTClearHashTable(void* table, qvx_u32 size);

/**
 * Takes the lowest free identifier.
 *
 * @param[in,out] table  the table
 * @param[in] size       its size in bytes
 * @return the identifier, now in use; 0 when none is free or the size is below 4
 * @par Memory
 * Only the identifier's bit changes.
 * @par Threads
 * The caller keeps other threads off the table.
 */
QVX_EXPORT qvx_u32 PXTAcquireHashID(void* table, qvx_u32 size);

/**
 * Frees an identifier.
 *
 * @param[in,out] table  the table
 * @param[in] size       its size in bytes
 * @param[in] id         the identifier
 * @retval 0 it was in use and now is free
 * @retval -1 it was free or lies above size * 8 - 1
 * @par Memory
 * Only the identifier's bit changes.
 * @par Threads
 * The caller keeps other threads off the table.
 */
QVX_EXPORT qvx_s32 PXTReleaseHashID(void* table, qvx_u32 size, qvx_u32 id);

/**
 * Tests whether an identifier is in use.
 *
 * @param[in] table  the table
 * @param[in] size   its size in bytes
 * @param[in] id     the identifier
 * @retval 0 it is in use
 * @retval -1 it is free or lies above size * 8 - 1
 * @par Memory
 * Reads the table only.
 * @par Threads
 * The caller keeps writing threads off the table.
 */
QVX_EXPORT qvx_s32 PXTVerifyHashID(void* table, qvx_u32 size, qvx_u32 id);

/**
 * Finds the highest identifier in use.
 *
 * @param[in] table  the table
 * @param[in] size   its size in bytes
 * @return the identifier; 0 when none is in use or the size is below 4
 * @par Memory
 * Reads the table only.
 * @par Threads
 * The caller keeps writing threads off the table.
 */
QVX_EXPORT qvx_u32 PXTGetMaxInUseID(void* table, qvx_u32 size);

/**
 * Sets a cursor to the start of the table and finds the first identifier in use.
 *
 * @param[in] table  the table
 * @param[in] size   its size in bytes
 * @param[out] word  the cursor's word: 0, or that of the identifier found
 * @param[out] bit   the cursor's bit: 0, or that of the identifier found
 * @return the identifier; 0 when there is none
 * @par Memory
 * Reads the table only.
 * @par Threads
 * The caller keeps writing threads off the table.
 */
QVX_EXPORT qvx_u32 PXTFindFirstHashID(void* table, qvx_u32 size, qvx_u32* word, qvx_u32* bit);

/**
 * Finds the next identifier in use after a cursor.
 *
 * In the cursor's word the bits above the cursor are looked at; in every later word the search
 * begins at the cursor's bit again, so identifiers whose bit is below it are skipped: with 5
 * and 33 in use only 5 is found, with 5 and 37 both. A cursor bit above 31 finds nothing. Use
 * `PXTVerifyHashID` to list every identifier.
 *
 * @param[in] table     the table
 * @param[in] size      its size in bytes
 * @param[in,out] word  the cursor's word, moved to the identifier found
 * @param[in,out] bit   the cursor's bit, moved to the identifier found
 * @return the identifier; 0, and the cursor unchanged, when there is none
 * @par Memory
 * Reads the table only.
 * @par Threads
 * The caller keeps writing threads off the table.
 */
QVX_EXPORT qvx_u32 PXTFindNextHashID(void* table, qvx_u32 size, qvx_u32* word, qvx_u32* bit);

QVX_END_DECLS

#endif
