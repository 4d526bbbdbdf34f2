/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_OS_LOG_H
#define QVXCS_OS_LOG_H

/**
 * @file
 * Events of a host in the operating system's log.
 *
 * An event goes to the system's log service (syslog) under the host's source name, with facility
 * "daemon". Texts are UCS-2 and are written in the encoding of the process's current locale, so a
 * host that logs other than ASCII text calls `setlocale` first. Both calls run inside the export
 * context; neither takes the lock that the suite's processes share.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** Types of events. */
enum QVXOsLogType {
  QVX_OSLOG_ERROR = 1,      /**< priority "err" */
  QVX_OSLOG_WARNING = 2,    /**< priority "warning" */
  QVX_OSLOG_INFORMATION = 4 /**< priority "info", as with any other value */
};

/**
 * Writes one event to the system's log.
 *
 * The message is "EventID: ", the number, two blanks and the text. Carriage returns become blanks,
 * line feeds stay. The text is never used as a format. A source or text whose encoded form is
 * longer than its count of units and five bytes is cut there at a whole character.
 *
 * @param[in] eventType    one of `QVXOsLogType`; any other value is informational
 * @param[in] eventNumber  the event's number
 * @param[in] source       the host's name, up to a 0 unit
 * @param[in] text         what happened, up to a 0 unit
 * @retval SM_STATUS_SUCCESS also when no log service listens: syslog reports nothing
 * @retval 0xFFFFFFFF when a text is NULL or cannot be held by the locale, and without memory:
 *         nothing is logged
 * @par Memory
 * Both texts stay the caller's; nothing is kept.
 * @par Threads
 * Any thread may call. The log is opened and closed in each call, and its identity is one for the
 * process: a host that logs under its own name opens its log again afterwards. Calls of
 * several threads are not serialised and may log under each other's source.
 * @par Standards
 * `openlog`, `syslog` and `closelog` of POSIX.1-2008.
 */
QVX_EXPORT qvx_u32 PXTAppendToOSLog(qvx_u16 eventType, qvx_u32 eventNumber,
                                    const qvx_ustring* source, const qvx_ustring* text);

/**
 * Would clear the system's log; this platform has no such call.
 *
 * @retval SM_STATUS_SUCCESS always, without effect
 * @par Memory
 * Nothing is allocated.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_u32 PXTClearOSLog(void);

QVX_END_DECLS

#endif
