/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_INI_FILE_H
#define QVXCS_INI_FILE_H

/**
 * @file
 * Reading and writing INI files: settings under a section and a key.
 *
 * A file is 8-bit text, read line by line; the line end is "\n", and a "\r" before it belongs to
 * the line. One read returns at most 8,449 characters, so a longer line is handled as several
 * lines.
 *
 * - Header: any leading spaces and tabs, "[", and the section's name up to the next "]"; the rest
 *   of the line is ignored. The name is not trimmed; its first 255 characters count. A "[" without
 *   a "]" is a malformed header.
 * - Comment: a line that begins with "#" or ";" in its first column.
 * - Key line: any leading spaces and tabs, the key up to the first "=", and the value up to the
 *   line end. Neither is trimmed: the key of "name = x" is "name ", its value " x". There are no
 *   quotes, escapes or continuation lines.
 *
 * Names are compared exactly, case included. Of several sections with one name, the first counts,
 * up to the next line that begins with "["; in the section, the first line of the key counts.
 *
 * The types of values are `QVXIniType`; PXTXBufCatNode() uses some of the numbers with other
 * meanings. Sizes count bytes. Values and defaults need no alignment. -1 as a status is 0xFFFFFFFF.
 *
 * Every call takes first a lock among the threads of its process, then the lock that the suite's
 * processes share. It keeps both while it works on the file, so no call sees a file that another is
 * changing. With the lock flag QVX_LOCK_WAIT a call waits for them, up to 60,000 attempts, 1 ms
 * apart; with any other flag it tries once, which always fails in a process that may not write the
 * lock file. Changing a value that was read takes two calls: another program or thread may write
 * between them. The calls also work in a child forked from a process with threads.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** Types of values in INI files: the value in memory, its least size, its text in the file. */
enum QVXIniType {
  QVX_INI_ASTRING = 1, /**< `astring`, 1 byte or more: the text itself */
  QVX_INI_USTRING = 2, /**< `ustring`, 1 byte or more: its bytes in memory order, the 0 unit
                            included, written as QVX_INI_BINARY */
  QVX_INI_BINARY = 3,  /**< bytes, 1 or more: "0x01,0xAB" */
  QVX_INI_BOOLN = 4,   /**< `booln`, 2 bytes: "TRUE" or "FALSE", read in any case */
  QVX_INI_U32 = 5,     /**< `u32`, 4 bytes: decimal */
  QVX_INI_S32 = 6,     /**< `s32`, 4 bytes: decimal */
  QVX_INI_U64 = 7,     /**< `u64`, 8 bytes: decimal */
  QVX_INI_S64 = 8,     /**< `s64`, 8 bytes: decimal */
  QVX_INI_D64 = 9      /**< `d64`, 8 bytes: decimal, written with eight places */
};

/** Lock flags: how a call takes the lock that the suite's processes share. */
enum QVXLockFlag {
  QVX_LOCK_TRY = 0, /**< try once, as with any value but 1 */
  QVX_LOCK_WAIT = 1 /**< wait for it */
};

/**
 * Reads a value, or lists keys or sections.
 *
 * With QVX_INI_ASTRING and no key, the call lists the keys of the section in the file's order; with
 * no section, it lists the sections of the file, repeated names too. Each name in a list ends with
 * a NUL, and one more NUL ends the list. `*size` becomes the sum of the lengths plus one for each
 * name. It does not count the final NUL, so a list that fills `*size` exactly ends one byte after
 * it.
 *
 * When the value cannot be read, the default is stored instead; the status still reports the
 * reason. When the default is used, and how much of it:
 * - QVX_INI_ASTRING: any failure after the file was opened, except SM_STATUS_BUFFER_TOO_SMALL, when
 *   the default's size is not 0: as many bytes as both sizes allow, the last one made NUL.
 *   Otherwise the value is "" and its size 0. When the lock cannot be taken or the file cannot be
 *   opened, value and size are unchanged. Lists have no default; when a list fails, except with
 *   SM_STATUS_BUFFER_TOO_SMALL, the size is unchanged.
 * - QVX_INI_USTRING and QVX_INI_BINARY: any failure except SM_STATUS_BUFFER_TOO_SMALL: as many
 *   bytes as both sizes allow. Otherwise `*size` is 0. When the file has a number above 255, the
 *   bytes before it may be in the buffer after that size.
 * - the other types: any failure, when the default's size is at least the type's: the value is the
 *   default and `*size` the type's size. Otherwise `*size` is 0.
 *
 * A default may be the value itself or overlap it. No default is stored after a missing pointer, a
 * size too small for the type or an unknown type; value and size are then unchanged.
 *
 * Texts are read as follows. The first word of a `booln`, ended by a space, counts. Bytes are
 * hexadecimal numbers separated by commas, with or without "0x"; the list ends, without a fault, at
 * the first piece that does not begin with a number. A text that does not begin with a number,
 * after any blanks, is not reported: the value is 0; so is that of a QVX_INI_U64 with "-". What
 * comes after the number is ignored. An integer too large for its type is cut to the type's low
 * bits; for QVX_INI_U32 and QVX_INI_S32, the value of one beyond 64 bits is unspecified.
 *
 * @param[in] section       the section, or NULL (QVX_INI_ASTRING) to list the sections
 * @param[in] key           the key, or NULL (QVX_INI_ASTRING) to list the keys
 * @param[in] type          one of `QVXIniType`
 * @param[out] value        room for the value
 * @param[in,out] size      bytes of room; then the bytes delivered for texts and binary values;
 *                          unchanged for the other types unless the default is used
 * @param[in] defaultValue  a value of the type, or NULL for none
 * @param[in] defaultSize   its bytes; for QVX_INI_USTRING exactly those of the text with its 0 unit
 * @param[in] path          the file
 * @param[in] lockFlag      QVX_LOCK_WAIT to wait for the lock, any other to try once
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when value, size or path is NULL, section or key is NULL for a
 * type other than QVX_INI_ASTRING, `*size` is less than the type's least size (2 for a list), the
 * type is unknown or the default of QVX_INI_USTRING is not a text of its size
 * @retval SM_STATUS_LOCK_FAILED when the lock could not be taken
 * @retval SM_STATUS_FILE_OPEN_FAILED when the file is missing, cannot be opened or is not a regular
 * file
 * @retval SM_STATUS_BAD_SECTION_HEADER when a malformed header comes before the section (in a list
 * of sections: anywhere), or the rest of the file cannot be read
 * @retval SM_STATUS_SECTION_NOT_FOUND when the file has no such section, or none at all
 * @retval SM_STATUS_KEY_NOT_FOUND when the section has no such key, or none at all
 * @retval SM_STATUS_BUFFER_TOO_SMALL when text, bytes or list do not fit: `*size` is the size
 * needed. The value is unchanged (QVX_INI_ASTRING) or holds the bytes or names that fit
 * @retval SM_STATUS_DATA_TOO_LARGE when the text is not a `booln`, or one of its bytes is negative
 * or above 255
 * @retval -1 without memory
 * @par Memory
 * `value` stays the caller's; nothing is allocated for the caller.
 * @par Threads
 * Any thread may call; the beginning of `ini_file.h` describes the lock.
 * @par Standards
 * ISO C strtod for QVX_INI_D64, in the current locale.
 */
QVX_EXPORT qvx_u32 PXTReadINIPathFileValue(const qvx_astring* section, const qvx_astring* key,
                                           qvx_s32 type, void* value, qvx_u32* size,
                                           const void* defaultValue, qvx_u32 defaultSize,
                                           const qvx_astring* path, qvx_booln lockFlag);

/**
 * Reads a value of a file in the product's INI directory.
 *
 * The file is "/etc/cim/zarn/plinthos/vexilon//qvx/ini/" and the name, cut at 255 characters. How
 * lists and texts are read, and when the default is used, is told with PXTReadINIPathFileValue();
 * without an install path no default is stored.
 *
 * @param[in] section       the section, or NULL (QVX_INI_ASTRING) to list the sections
 * @param[in] key           the key, or NULL (QVX_INI_ASTRING) to list the keys
 * @param[in] type          one of `QVXIniType`
 * @param[out] value        room for the value
 * @param[in,out] size      bytes of room; then the bytes delivered for texts and binary values;
 *                          unchanged for the other types unless the default is used
 * @param[in] defaultValue  a value of the type, or NULL for none
 * @param[in] defaultSize   its bytes; for QVX_INI_USTRING exactly those of the text with its 0 unit
 * @param[in] fileName      the file's bare name
 * @param[in] lockFlag      QVX_LOCK_WAIT to wait for the lock, any other to try once
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when value, size or `fileName` is NULL, section or key is NULL for
 * a type other than QVX_INI_ASTRING, `*size` is less than the type's least size (2 for a list), the
 * type is unknown or the default of QVX_INI_USTRING is not a text of its size
 * @retval SM_STATUS_LOCK_FAILED when the lock could not be taken
 * @retval SM_STATUS_FILE_OPEN_FAILED when the file is missing, cannot be opened or is not a regular
 * file
 * @retval SM_STATUS_BAD_SECTION_HEADER when a malformed header comes before the section (in a list
 * of sections: anywhere), or the rest of the file cannot be read
 * @retval SM_STATUS_SECTION_NOT_FOUND when the file has no such section, or none at all
 * @retval SM_STATUS_KEY_NOT_FOUND when the section has no such key, or none at all
 * @retval SM_STATUS_BUFFER_TOO_SMALL when text, bytes or list do not fit: `*size` is the size
 * needed. The value is unchanged (QVX_INI_ASTRING) or holds the bytes or names that fit
 * @retval SM_STATUS_DATA_TOO_LARGE when the text is not a `booln`, or one of its bytes is negative
 * or above 255
 * @retval -1 when the product has no install path, or without memory
 * @par Memory
 * `value` stays the caller's; nothing is allocated for the caller.
 * @par Threads
 * Any thread may call; the beginning of `ini_file.h` describes the lock.
 * @par Standards
 * ISO C strtod for QVX_INI_D64, in the current locale.
 */
QVX_EXPORT qvx_u32 PXTReadINIFileValue(const qvx_astring* section, const qvx_astring* key,
                                       qvx_s32 type, void* value, qvx_u32* size,
                                       const void* defaultValue, qvx_u32 defaultSize,
                                       const qvx_astring* fileName, qvx_booln lockFlag);

/**
 * Sets or deletes a key.
 *
 * A missing file is created, and the last directory of its path too. In an existing file the key's
 * line is replaced where it is; a new key comes before the next header, after comments and blank
 * lines that end the section; a new section comes at the end of the file. No line end is added
 * before a new key or section: it joins a last line that has none, and unless that line is blank,
 * no read finds it. The key's line is "key=value\n", a header "[section]\n"; all else is kept byte
 * by byte. When the old line is longer than 8,449 characters, only its first piece is replaced. A
 * value is written as it is: one with a line end in it becomes several lines.
 *
 * Unlike a read, a write also counts a line that is the key alone, without "=", as the key's line
 * (for an empty key, a blank line). It replaces or deletes the key's first line; a later one stays,
 * so a deleted key may still have a value.
 *
 * The change is made in a copy, "pxtini32.tmp" in the file's directory, which is flushed to disk
 * and then replaces the file. Every program that opens the file sees the old one or the new one,
 * even after a kill or a power failure. For a path without a directory, or in the root directory,
 * the copy is in the working directory. A file with the copy's name, or a hard link to it, is
 * refused with SM_STATUS_FILE_OPEN_FAILED; a missing file of that name is created. The file keeps
 * its owner and group where the process may set them; its mode becomes 01664 (octal), and nobody
 * has more rights on the file or its copy in the meantime.
 *
 * A new section, or a new file, is appended in place where a copy cannot replace the file or has no
 * room: the path is a symbolic link, the file has several hard links or may only be appended to,
 * the copy cannot be moved onto it (another file system, a mount point), or the disk or the quota
 * has room for a copy of the file, but not for the section. (Without room for the copy the status
 * is SM_STATUS_WRITE_FAILED, and the unfinished copy stays.) In place, the section is written in
 * one call and flushed, and removed again when that fails. All other writes go through the copy:
 * a symbolic link, or one of several hard links, becomes a separate file, and the other file stays
 * as it was.
 *
 * A NULL value with size 0 deletes the key (texts and binary values). Deleting a key that the
 * section does not have is a success.
 *
 * @param[in] section   at most 255 characters
 * @param[in] key       at most 255 characters
 * @param[in] type      one of `QVXIniType`
 * @param[in] value     the value, or NULL to delete
 * @param[in] size      its bytes. QVX_INI_ASTRING: length plus one, 8,193 at most. QVX_INI_USTRING:
 * units and 0 unit, 2,048 at most. QVX_INI_BINARY: 1 to 2,048. Others: at least the type's size. A
 * list of bytes longer than 8,192 characters is not written, so the limit of QVX_INI_USTRING and
 * QVX_INI_BINARY is 1,638 bytes
 * @param[in] path      the file
 * @param[in] lockFlag  QVX_LOCK_WAIT to wait for the lock, any other to try once
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when section, key or path is NULL, a name is too long, the value
 * is NULL and its type is neither text nor binary, or the type is unknown
 * @retval SM_STATUS_DATA_TOO_LARGE when the size does not fit the value, or a key is to be deleted
 * from a missing section or file
 * @retval SM_STATUS_LOCK_FAILED when the lock could not be taken
 * @retval SM_STATUS_FILE_OPEN_FAILED when the file or its copy cannot be opened
 * @retval SM_STATUS_BAD_SECTION_HEADER when a malformed header comes before the section, or the
 * rest of the file cannot be read
 * @retval SM_STATUS_WRITE_FAILED when the disk is full or fails
 * @retval SM_STATUS_FILE_DELETE_FAILED when the file is protected against being replaced
 * @retval SM_STATUS_FILE_CREATE_FAILED when the copy cannot be moved
 * @retval -1 when the directory cannot be created, or without memory
 *
 * After a failure the file's text is unchanged. A file that was to be created may be left empty,
 * and a copy may remain; the next change removes the copy.
 * @par Memory
 * Keeps nothing of the caller's.
 * @par Threads
 * Any thread may call; the beginning of `ini_file.h` describes the lock.
 * @par Standards
 * ISO C printf for QVX_INI_D64, in the current locale.
 */
QVX_EXPORT qvx_u32 PXTWriteINIPathFileValue(const qvx_astring* section, const qvx_astring* key,
                                            qvx_s32 type, const void* value, qvx_s32 size,
                                            const qvx_astring* path, qvx_booln lockFlag);

/**
 * Sets or deletes a key of a file in the product's INI directory.
 *
 * The file is "/etc/cim/zarn/plinthos/vexilon//qvx/ini/" and the name, cut at 255 characters. How
 * the file is changed is told with PXTWriteINIPathFileValue(). A NULL value with size 0 deletes the
 * key (texts and binary values); deleting a key that the section does not have is a success.
 *
 * @param[in] section   at most 255 characters
 * @param[in] key       at most 255 characters
 * @param[in] type      one of `QVXIniType`
 * @param[in] value     the value, or NULL to delete
 * @param[in] size      its bytes. QVX_INI_ASTRING: length plus one, 8,193 at most. QVX_INI_USTRING:
 * units and 0 unit, 2,048 at most. QVX_INI_BINARY: 1 to 2,048. Others: at least the type's size. A
 * list of bytes longer than 8,192 characters is not written, so the limit of QVX_INI_USTRING and
 * QVX_INI_BINARY is 1,638 bytes
 * @param[in] fileName  the file's bare name
 * @param[in] lockFlag  QVX_LOCK_WAIT to wait for the lock, any other to try once
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when section, key or `fileName` is NULL, a name is too long, the
 * value is NULL and its type is neither text nor binary, or the type is unknown
 * @retval SM_STATUS_DATA_TOO_LARGE when the size does not fit the value, or a key is to be deleted
 * from a missing section or file
 * @retval SM_STATUS_LOCK_FAILED when the lock could not be taken
 * @retval SM_STATUS_FILE_OPEN_FAILED when the file or its copy cannot be opened
 * @retval SM_STATUS_BAD_SECTION_HEADER when a malformed header comes before the section, or the
 * rest of the file cannot be read
 * @retval SM_STATUS_WRITE_FAILED when the disk is full or fails
 * @retval SM_STATUS_FILE_DELETE_FAILED when the file is protected against being replaced
 * @retval SM_STATUS_FILE_CREATE_FAILED when the copy cannot be moved
 * @retval -1 when the product has no install path, the directory cannot be created, or without
 * memory
 *
 * After a failure the file's text is unchanged. A file that was to be created may be left empty,
 * and a copy may remain; the next change removes the copy.
 * @par Memory
 * Keeps nothing of the caller's.
 * @par Threads
 * Any thread may call; the beginning of `ini_file.h` describes the lock.
 * @par Standards
 * ISO C printf for QVX_INI_D64, in the current locale.
 */
QVX_EXPORT qvx_u32 PXTWriteINIFileValue(const qvx_astring* section, const qvx_astring* key,
                                        qvx_s32 type, const void* value, qvx_s32 size,
                                        const qvx_astring* fileName, qvx_booln lockFlag);

QVX_END_DECLS

#endif
