/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_COMMAND_LOG_H
#define QVXCS_COMMAND_LOG_H

/**
 * @file
 * The command log: which management commands were run, by whom, and what endangered the suite.
 *
 * It is one XML log (see xml_log.h) at a fixed place,
 * `/etc/cim/zarn/plinthos/var/log/vexilon//qvcmdlog.xml`, and its backup is `qvcmdlog.xm_` beside
 * it. Every call that needs the log makes it when it is missing, with the entry QVX_LOG_CLEARED,
 * user `Local System`, source `QVPX`.
 *
 * The log moves to its backup when an entry would bring it to its maximum size. That is the decimal
 * number after the first `preferences.system.cmdlogmaxsize=` of
 * `/etc/cim/zarn/plinthos/vexilon//qvx/ini/qvx.properties`, read again by each append. A number may
 * have a sign (`-5` is 4,294,967,291); one beyond 32 bits, another text, or no file leaves 131,072.
 *
 * Sizes are in bytes.
 *
 * @par Locks
 * The sizes are read under the suite's file lock, for which all calls wait up to 60,000 attempts,
 * 1 ms apart. The lock does not nest: making a missing log ends the outer hold as well, and other
 * processes may come into the rest of that call. Threads of one process take turns for the whole of
 * each call's hold, within the same attempts.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** Limits of the command log. */
enum QVXCommandLogLimit {
  QVX_CMDLOG_FIRST_ID = 5001,  /**< least identifier of an event */
  QVX_CMDLOG_LAST_ID = 6999,   /**< greatest identifier of an event */
  QVX_CMDLOG_MAX_SIZE = 131072 /**< default maximum size, in bytes */
};

/**
 * Returns the command log's path and makes the log when it is missing.
 *
 * @return the path; NULL when the log cannot be made or without memory
 * @par Memory
 * The path is the caller's, who frees it with PXTFreeMem().
 * @par Threads
 * Any thread may call; the beginning of `command_log.h` describes the locks.
 */
QVX_EXPORT qvx_astring* PXTGetCmdLogPathFileName(void);

/**
 * Records one event.
 *
 * @param[in] identifier   the event's number, QVX_CMDLOG_FIRST_ID to QVX_CMDLOG_LAST_ID
 * @param[in] user         who caused it, 1 to 1,023 bytes
 * @param[in] source       the program that records it, 1 to 1,023 bytes
 * @param[in] description  1 to 16,383 bytes of well-formed markup; not escaped
 * @param[in] type         the event's type, one of `QVXLogType` of xml_log.h
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when a text is NULL or the identifier is out of its range;
 *         nothing is written, no log is made
 * @retval SM_STATUS_BAD_ARGUMENT when a text is empty or too long; no entry is written, but a
 *         missing log is made
 * @retval SM_STATUS_NO_MEMORY when another process has just deleted the log, and there is no memory
 *         for its directory's name
 * @retval SM_STATUS_NOT_LOADED while the library is not attached; the log is as it was
 * @retval SM_STATUS_LOCK_FAILED when the file lock cannot be taken; nothing is appended
 * @retval SM_STATUS_BAD_DATA when the log has 65 bytes and more and no closing tag, and no kill
 *         within an append was the cause; it is as it was
 * @retval SM_STATUS_WRITE_FAILED when the entry was not written whole, as on a full disk, or the
 *         log could not be closed. The entry is taken back: the log is cut and its closing tag
 *         written again (the first entry leaves an empty file); only where that fails too do later
 *         appends give SM_STATUS_BAD_DATA, until the log is cleared or mended
 * @retval 0xFFFFFFFF when a missing log, or one of fewer than 65 bytes, cannot be made, whatever
 *         the cause; when the time cannot be read, the entry cannot be built whole, or the log
 *         cannot be opened or measured
 * @par Memory
 * Nothing is handed over.
 * @par Threads
 * Any thread may call; the beginning of `command_log.h` describes the locks.
 */
QVX_EXPORT qvx_u32 PXTAppendToCmdLog(qvx_s32 identifier, const qvx_astring* user,
                                     const qvx_astring* source, const qvx_astring* description,
                                     qvx_u16 type);

/**
 * Deletes the command log and begins it anew with a `Log was cleared` entry.
 *
 * @param[in] user    who clears it, 1 to 1,023 bytes, or NULL
 * @param[in] source  the program that clears it, 1 to 1,023 bytes, or NULL
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when a text is empty or too long; the log's entries stay, and a
 *         missing log is made
 * @retval SM_STATUS_LOCK_FAILED when the file lock cannot be taken: for the delete, and the log
 *         stays, or for the new entry, and the old log is gone
 * @retval SM_STATUS_NO_MEMORY when there is no memory for the directory's name; the old log is gone
 * @retval SM_STATUS_BAD_DATA when another program has meanwhile put a file without a closing tag in
 *         the log's place; the old log is gone
 * @retval SM_STATUS_WRITE_FAILED when the entry was not written whole, as on a full disk, or the
 *         log could not be closed; the old log is gone, and the entry is taken back, which leaves
 *         an empty file
 * @retval 0xFFFFFFFF when a missing log, or one of fewer than 65 bytes, cannot be made, whatever
 *         the cause, or the log cannot be deleted. Also, with the old log gone, when the directory
 *         cannot be made, the time cannot be read, the entry cannot be built whole, or the new log
 *         cannot be created, opened or measured
 * @par Memory
 * Nothing is handed over.
 * @par Threads
 * Any thread may call; the beginning of `command_log.h` describes the locks.
 */
QVX_EXPORT qvx_u32 PXTClearCmdLog(const qvx_astring* user, const qvx_astring* source);

/**
 * Reads the command log's size and makes the log when it is missing.
 *
 * @param[out] size  the size; 0 on every failure that sets it
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `size` is NULL
 * @retval SM_STATUS_LOCK_FAILED when the file lock cannot be taken
 * @retval SM_STATUS_NO_MEMORY when the log cannot be made, whatever the cause
 * @retval 0xFFFFFFFF when the log cannot be measured
 * @par Memory
 * `size` stays the caller's.
 * @par Threads
 * Any thread may call; the beginning of `command_log.h` describes the locks.
 */
QVX_EXPORT qvx_u32 PXTGetCmdLogSize(qvx_u32* size);

/**
 * Reads the size at which the command log moves to its backup.
 *
 * @param[out] size  the properties file's number, else 131,072
 * @retval SM_STATUS_SUCCESS whether or not the properties file could be read
 * @retval SM_STATUS_INVALID_PARAMETER when `size` is NULL
 * @retval SM_STATUS_LOCK_FAILED when the file lock cannot be taken; `*size` stays
 * @par Memory
 * `size` stays the caller's.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetCmdLogMaxSize(qvx_u32* size);

/**
 * Restores the default maximum, the only one that can be set; the properties file still overrides
 * it.
 *
 * @param[in] size  QVX_CMDLOG_MAX_SIZE
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER for any other size
 * @retval SM_STATUS_LOCK_FAILED when the file lock cannot be taken
 * @par Memory
 * Nothing is handed over.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_u32 PXTSetCmdLogMaxSize(qvx_s32 size);

QVX_END_DECLS

#endif
