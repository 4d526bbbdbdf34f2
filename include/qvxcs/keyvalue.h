/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_KEYVALUE_H
#define QVXCS_KEYVALUE_H

/**
 * @file
 * Flat files of "key=value" lines.
 *
 * A line is cleaned before it is interpreted: blanks (space, tab, carriage return, line feed)
 * inside the key, around the first "=" and at the end of the line are removed, except between
 * double quotes; then the double quotes are removed. A cleaned line that begins with ";" or "#" is
 * a comment, a line without "=" is ignored. So `  log level = "very high"  ` is the key `loglevel`
 * with the value `very high`. A key may occur in the file more than once; its occurrences are
 * counted from 0.
 *
 * Text is 8-bit, lines are read in pieces of at most 8,449 characters, and a line counts up to its
 * first NUL byte. Names are paths as they are given, at most 256 characters; those of the `Inst`
 * calls are relative to the product's INI path and cut with it at 255 characters.
 *
 * Reading and rewriting wait for their turn among the threads of the process and for the lock that
 * the suite's processes share, up to 60,000 attempts, 1 ms apart, and keep both throughout. To
 * read a value, change it and write it back takes two calls: another program or thread may write in
 * between. The calls also work in a child that was forked from a process with threads.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** One entry of a file. */
typedef struct PXTKeyValue {
  qvx_astring* key;   /**< the key, cleaned */
  qvx_astring* value; /**< the value, cleaned; may be empty */
} PXTKeyValue;

/**
 * Reads all entries of a file.
 *
 * @param[in] name    the file
 * @param[out] count  the number of entries, 0 with a NULL result
 * @return the entries in the order of the file; NULL when an argument is NULL, the name is too
 *         long, the lock cannot be taken, the file cannot be read or holds no entry, or without
 *         memory
 * @par Memory
 * The caller frees the array with `PXTCFGFreeKeyValueEntries`.
 * @par Threads
 * Keeps no state; any thread may call; the beginning of `keyvalue.h` describes the lock.
 */
QVX_EXPORT PXTKeyValue* PXTCFGGetKeyValueEntries(const qvx_astring* name, qvx_u32* count);

/**
 * Reads all entries of a file below the product's INI path.
 *
 * @param[in] name    the file, relative to the product's INI path
 * @param[out] count  the number of entries, 0 with a NULL result
 * @return the entries in the order of the file; NULL when an argument is NULL, the product's INI
 *         path is not available, the lock cannot be taken, the file cannot be read or holds no
 *         entry, or without memory
 * @par Memory
 * The caller frees the array with `PXTCFGFreeKeyValueEntries`.
 * @par Threads
 * Keeps no state; any thread may call; the beginning of `keyvalue.h` describes the lock.
 */
QVX_EXPORT PXTKeyValue* PXTCFGInstGetKeyValueEntries(const qvx_astring* name, qvx_u32* count);

/**
 * Finds the value of a key's occurrence.
 *
 * @param[in] entries  the array, or NULL
 * @param[in] count    its number of entries
 * @param[in] key      the key, compared exactly
 * @param[in] index    the occurrence, counted from 0
 * @return the entry's own value; NULL when there is no such occurrence, or a pointer is NULL
 * @par Memory
 * The value stays the array's.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTCFGGetKeyValue(const PXTKeyValue* entries, qvx_u32 count,
                                          const qvx_astring* key, qvx_u32 index);

/**
 * Frees an array of entries with every key and value.
 *
 * @param[in] entries  the array; NULL is ignored
 * @param[in] count    its number of entries, as it was given with it
 * @par Memory
 * Array, keys and values are the heap's again.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTCFGFreeKeyValueEntries(PXTKeyValue* entries, qvx_u32 count);

/**
 * Replaces a key's occurrence, or appends the next one.
 *
 * The line of the occurrence becomes "key=value"; all other lines stay as they are. Where the key
 * occurs `index` times, the line is appended; no line end is put before it, so it is joined to a
 * last line that has no line end. The file is copied to "pxtcfg32.tmp" in its directory ("/" for a
 * file there), which is flushed to disk and then takes its place: a symbolic link, or one of
 * several hard links, becomes a separate file, and the other file stays as it was. A file of the
 * copy's own name, or a hard link to it, is refused. The file keeps its owner and group where the
 * process may set them; its mode becomes 01664 (octal), and nobody has more rights on the file or
 * its copy meanwhile. Any failure leaves the file as it was; the copy may remain.
 *
 * @param[in] name   the file, which must exist; a missing last directory of its path is created
 * @param[in] pair   key and value, written as they are
 * @param[in] index  the occurrence, counted from 0
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `name`, `pair`, its key or its value is NULL, or the key
 *         occurs less than `index` times in the file
 * @retval SM_STATUS_DATA_TOO_LARGE when key and value have more than 8,448 characters together
 * @retval SM_STATUS_LOCK_FAILED
 * @retval SM_STATUS_FILE_OPEN_ERROR when the name is too long or is the copy's own, or the file or
 *         its copy cannot be opened
 * @retval SM_STATUS_WRITE_FAILED
 * @retval SM_STATUS_NO_MEMORY
 * @retval SM_STATUS_FILE_DELETE_FAILED when the file is protected against being replaced
 * @retval SM_STATUS_FILE_CREATE_FAILED when the copy could not be moved into place
 * @retval 0xFFFFFFFF when the directory cannot be created, or the file cannot be read to its end
 * @par Memory
 * Takes and keeps none.
 * @par Threads
 * Keeps no state; any thread may call; the beginning of `keyvalue.h` describes the lock.
 */
QVX_EXPORT qvx_u32 PXTCFGSetKeyValue(const qvx_astring* name, const PXTKeyValue* pair,
                                     qvx_u32 index);

/**
 * Replaces a key's occurrence in a file below the product's INI path, or appends the next one.
 *
 * @param[in] name   the file, relative to the product's INI path
 * @param[in] pair   key and value, written as they are
 * @param[in] index  the occurrence, counted from 0
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `name`, `pair`, its key or its value is NULL, or the key
 *         occurs less than `index` times in the file
 * @retval SM_STATUS_DATA_TOO_LARGE when key and value have more than 8,448 characters together
 * @retval SM_STATUS_LOCK_FAILED
 * @retval SM_STATUS_FILE_OPEN_ERROR when the product's INI path is not available, the name is the
 *         copy's own, or the file or its copy cannot be opened
 * @retval SM_STATUS_WRITE_FAILED
 * @retval SM_STATUS_NO_MEMORY
 * @retval SM_STATUS_FILE_DELETE_FAILED when the file is protected against being replaced
 * @retval SM_STATUS_FILE_CREATE_FAILED when the copy could not be moved into place
 * @retval 0xFFFFFFFF when the directory cannot be created, or the file cannot be read to its end
 * @par Memory
 * Takes and keeps none.
 * @par Threads
 * Keeps no state; any thread may call; the beginning of `keyvalue.h` describes the lock.
 */
QVX_EXPORT qvx_u32 PXTCFGInstSetKeyValue(const qvx_astring* name, const PXTKeyValue* pair,
                                         qvx_u32 index);

QVX_END_DECLS

#endif
