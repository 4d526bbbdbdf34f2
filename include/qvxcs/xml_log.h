/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_XML_LOG_H
#define QVXCS_XML_LOG_H

/**
 * @file
 * XML log files: audit logs that a browser shows through a style sheet.
 *
 * A log is one line of UTF-8: the instruction
 * `<?xml-stylesheet type="text/xsl" version="1.0" encoding="UTF-8"?>` (65 bytes, no XML
 * declaration), then `<EventLog>`, one `LogEntry` element for each event, oldest first, and
 * `</EventLog>`. The children of an entry, all always there and in this order:
 *
 * | element | content |
 * |---|---|
 * | `TimeStamp` | seconds since 1970, signed decimal |
 * | `DateTime` | the same time in local time, as in `Thu Jan  1 00:00:00 1970` |
 * | `ComputerName` | this machine's host name |
 * | `Type`, `ID` | the caller's numbers, unsigned decimal |
 * | `UserInfo`, `Source` | the caller's texts, escaped for XML; empty for NULL |
 * | `Description` | the caller's text, unchanged: it must be well-formed markup or free of it |
 * | `Data` | the caller's bytes as a hex dump, unescaped, its lines ended by CR LF; empty without |
 *
 * An append writes in place. It looks for the closing tag at the end of the log and overwrites it,
 * and whatever follows it, with the entry and a new closing tag, both in one write; its cost does
 * not grow with the log. A process that is killed within that write may leave the log without its
 * closing tag. The next append puts the tag back where the library noted it before the write; the
 * entry that was cut is lost, earlier ones are not. A log that an entry would bring to the caller's
 * maximum size is renamed to its backup first: the log's path with the last character replaced by
 * `_`, so `cmd.xml` moves to `cmd.xm_`. One backup is kept and is replaced each time. The new log
 * begins with the entry QVX_LOG_BACKUP_CREATED.
 *
 * Sizes and text limits are in bytes. Logs and backups get mode 01664, a log that is created 0664
 * less the umask until then; a directory that a link in their place points to keeps its mode. Their
 * directory gets 0755 less the umask.
 *
 * @par Locks
 * Append, delete and backup hold the suite's file lock, for which they wait up to
 * 60,000 attempts, 1 ms apart; entries are built outside it. Threads of one process keep each other
 * out as processes do, within the same attempts, and each thread's entries keep their order.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** Types of entries; any other number is taken as well. */
enum QVXLogType {
  QVX_LOG_ERROR = 1,      /**< an error */
  QVX_LOG_WARNING = 2,    /**< a warning */
  QVX_LOG_INFORMATION = 4 /**< information */
};

/** Identifiers of the entries that the library itself writes, of type QVX_LOG_INFORMATION. */
enum QVXLogEntryId {
  QVX_LOG_CLEARED = 0,       /**< `Log was cleared`: the log was begun anew */
  QVX_LOG_BACKUP_CREATED = 1 /**< `Log backup created`: the log before is now the backup */
};

/** Limits of an entry and of a log's name, in bytes. */
enum QVXLogLimit {
  QVX_LOG_MAX_USER = 1023,         /**< longest user or source */
  QVX_LOG_MAX_DESCRIPTION = 16383, /**< longest description */
  QVX_LOG_MAX_DATA = 32768,        /**< most bytes of data */
  QVX_LOG_NAME_ROOM = 256          /**< room that PXTGetBackupXMLLogPathFileName() needs */
};

/**
 * Makes sure that a log is there.
 *
 * A file of 65 bytes and more is left as it is. Otherwise the entry QVX_LOG_CLEARED,
 * `Log was cleared`, is appended, which creates the log and one directory above it.
 *
 * @param[in] path    the log
 * @param[in] user    1 to 1,023 bytes, or NULL; looked at only where the entry is written
 * @param[in] source  1 to 1,023 bytes, or NULL; likewise
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when `path` is NULL, or the entry is to be written and a text is
 *         empty or too long; nothing is touched
 * @retval SM_STATUS_NO_MEMORY when there is no memory for the directory's name
 * @retval SM_STATUS_NOT_LOADED while the library is not attached; no log is made
 * @retval SM_STATUS_LOCK_FAILED when the file lock cannot be taken; no log is made
 * @retval SM_STATUS_BAD_DATA when another program has meanwhile put a file without a closing tag in
 *         the log's place; it is as it was
 * @retval SM_STATUS_WRITE_FAILED when the entry was not written whole, as on a full disk, or the
 *         log could not be closed. The entry is taken back, which leaves an empty file
 * @retval 0xFFFFFFFF when the directory cannot be made, the time cannot be read, the entry cannot
 *         be built whole, or the log cannot be looked at, opened, created or measured
 * @par Memory
 * Nothing is handed over.
 * @par Threads
 * Any thread may call; the beginning of `xml_log.h` describes the locks.
 */
QVX_EXPORT qvx_u32 PXTForceXMLLogExists(const qvx_astring* path, const qvx_astring* user,
                                        const qvx_astring* source);

/**
 * Deletes a log and begins it anew with the entry QVX_LOG_CLEARED, `Log was cleared`.
 *
 * The arguments are checked before anything is deleted. The backup stays. Anything but a directory
 * is deleted, also a FIFO or a device in the log's place; of a link, only the link. Entries that
 * another process appends between the two steps come before the new entry.
 *
 * @param[in] path    the log
 * @param[in] user    1 to 1,023 bytes, or NULL
 * @param[in] source  1 to 1,023 bytes, or NULL
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when `path` is NULL or a text is empty or too long; the log stays
 * @retval SM_STATUS_LOCK_FAILED when the file lock cannot be taken: for the delete, and the log
 *         stays, or for the new entry, and the old log is gone
 * @retval SM_STATUS_NO_MEMORY when there is no memory for the directory's name; the old log is gone
 * @retval SM_STATUS_BAD_DATA when another program has meanwhile put a file without a closing tag in
 *         the log's place; the old log is gone
 * @retval SM_STATUS_WRITE_FAILED when the entry was not written whole, as on a full disk, or the
 *         log could not be closed; the old log is gone, and the entry is taken back, which leaves
 *         an empty file
 * @retval 0xFFFFFFFF when the log cannot be deleted, a missing one included: nothing is created.
 *         Also, with the old log gone, when the directory cannot be made, the time cannot be read,
 *         the entry cannot be built whole, or the new log cannot be created, opened or measured
 * @par Memory
 * Nothing is handed over.
 * @par Threads
 * Any thread may call; the beginning of `xml_log.h` describes the locks.
 */
QVX_EXPORT qvx_u32 PXTClearXMLLog(const qvx_astring* path, const qvx_astring* user,
                                  const qvx_astring* source);

/**
 * Appends one entry to a log; a missing log and one directory above it are created.
 *
 * A file under 65 bytes is written anew. A backup that fails is not reported: the entry goes to
 * the log that is full. A log of 4 GiB - 1 or more has no backup, and neither has one whose name
 * ends with
 * `_` or has more than 255 bytes. `Log backup created` names the same user and source; a failure to
 * write it is not reported.
 *
 * @param[in] path         the log
 * @param[in] type         the entry's type, one of `QVXLogType`
 * @param[in] id           the entry's identifier
 * @param[in] user         1 to 1,023 bytes, or NULL
 * @param[in] source       1 to 1,023 bytes, or NULL
 * @param[in] description  1 to 16,383 bytes, or NULL; not escaped
 * @param[in] data         bytes to dump, or NULL with a size of 0
 * @param[in] dataSize     at most 32,768
 * @param[in] maxSize      the log's size together with the new entry at which it moves to its
 * backup
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when `path` is NULL, `data` is NULL with a size, or a text or the
 *         data is outside its limits; nothing is touched
 * @retval SM_STATUS_NO_MEMORY when there is no memory for the directory's name
 * @retval SM_STATUS_NOT_LOADED while the library is not attached; the log is as it was
 * @retval SM_STATUS_LOCK_FAILED when the file lock cannot be taken; nothing is appended
 * @retval SM_STATUS_BAD_DATA when a log of 65 bytes and more has no closing tag, and no kill within
 *         an append was the cause; it is as it was
 * @retval SM_STATUS_WRITE_FAILED when the entry was not written whole, as on a full disk, or the
 * log could not be closed. The entry is taken back: the log is cut and its closing tag written
 * again (the first entry leaves an empty file); only where that fails too do later appends give
 * SM_STATUS_BAD_DATA, until the log is cleared or mended
 * @retval 0xFFFFFFFF when the directory cannot be made, the time cannot be read, the entry cannot
 *         be built whole, or the log cannot be opened, created or measured
 * @par Memory
 * Nothing is handed over.
 * @par Threads
 * Any thread may call; the beginning of `xml_log.h` describes the locks.
 */
QVX_EXPORT qvx_u32 PXTAppendToXMLLog(const qvx_astring* path, qvx_u16 type, qvx_u32 id,
                                     const qvx_astring* user, const qvx_astring* source,
                                     const qvx_astring* description, const void* data,
                                     qvx_u32 dataSize, qvx_u32 maxSize);

/**
 * Returns the name of a log's backup: its path with the last character replaced by `_`.
 *
 * @param[in] path    the log, 2 to 255 bytes
 * @param[out] buffer  room for 256 bytes, or NULL to ask for the size
 * @param[out] size   the name's length and its NUL; what it holds before is not looked at
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `path` or `size` is NULL or the path has fewer than 2
 *         bytes; `*size` stays
 * @retval SM_STATUS_BUFFER_TOO_SMALL for a path of 256 bytes and more; `*size` is its length plus 1
 * @par Memory
 * `buffer` stays the caller's. It always needs room for 256 bytes, whatever `*size` says.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetBackupXMLLogPathFileName(const qvx_astring* path, qvx_astring* buffer,
                                                  qvx_u32* size);

/**
 * Reads a log into an XML answer.
 *
 * The answer is a `Content` element with the file's text, not escaped, and an
 * `SMStatus` element with the value 0. A file that is not empty but cannot be opened or read
 * becomes `SMStatus` with the value -1 alone. The file is read without the lock; what is appended
 * while it is read is not shown, and the closing tag may then be missing. A line is shown up to its
 * first NUL byte. The answer is whole or NULL.
 *
 * @param[in] path  the log
 * @return the answer; NULL for a NULL path, a file that is missing, empty, no regular file or so
 *         large that the answer would reach 4 GiB, and without memory
 * @par Memory
 * The answer is the caller's, who frees it with PXTFreeMem(). While it is built, it needs little
 * more than the file's size.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTCmdGetXMLLogContent(const qvx_astring* path);

QVX_END_DECLS

#endif
