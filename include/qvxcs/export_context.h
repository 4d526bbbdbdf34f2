/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_EXPORT_CONTEXT_H
#define QVXCS_EXPORT_CONTEXT_H

/**
 * @file
 * The export context: hooks for platforms where a module switches a context of the process around
 * its calls.
 *
 * Such a host asks for the module's context, installs it before a call, keeping the one in force in
 * a save slot, and restores that one after the call. On this platform there is nothing to
 * switch: the context is always 0 and the hooks do nothing. Hosts may still call them, in
 * that order.
 *
 * A context and a save slot are 32 bits. No function here takes a lock or keeps a state.
 *
 * The library itself makes this bracket around 25 of its calls, those that read or write the
 * suite's own settings, logs and service on behalf of the host:
 * - paths.h: PXTGetProductIniPath(), PXTGetProductVarPath(), PXTWebServer()
 * - ini_file.h: PXTReadINIFileValue(), PXTReadINIPathFileValue(), PXTWriteINIFileValue(),
 *   PXTWriteINIPathFileValue()
 * - keyvalue.h: PXTCFGGetKeyValueEntries(), PXTCFGInstGetKeyValueEntries(), PXTCFGGetKeyValue(),
 *   PXTCFGFreeKeyValueEntries(), PXTCFGSetKeyValue(), PXTCFGInstSetKeyValue()
 * - xml_log.h: PXTForceXMLLogExists(), PXTClearXMLLog(), PXTAppendToXMLLog(),
 *   PXTGetBackupXMLLogPathFileName()
 * - command_log.h: PXTGetCmdLogPathFileName(), PXTAppendToCmdLog(), PXTClearCmdLog(),
 *   PXTGetCmdLogSize(), PXTGetCmdLogMaxSize(), PXTSetCmdLogMaxSize()
 * - os_log.h: PXTAppendToOSLog(), PXTClearOSLog()
 *
 * Other calls that touch files, such as those of file_util.h and access.h, run in the host's
 * context.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Returns the module's context.
 *
 * @param[out] slot  receives 0; NULL is ignored
 * @par Memory
 * `slot` stays the caller's.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTGetExportContext(qvx_u32* slot);

/**
 * Installs a context; does nothing on this platform.
 *
 * @param[out] saveSlot  where the context in force would be kept; not touched
 * @param[in] context    the context to install; not read
 * @par Memory
 * Both stay the caller's; either may be NULL.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTSetExportContext(qvx_u32* saveSlot, qvx_u32* context);

/**
 * Puts back the context that was in force; does nothing on this platform.
 *
 * @param[in] saveSlot  where it was kept; not read
 * @par Memory
 * `saveSlot` stays the caller's; it may be NULL.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTResetExportContext(qvx_u32* saveSlot);

/**
 * Prepares the process's environment; does nothing on this platform.
 *
 * @par Memory
 * None.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void PXTSetProcessEnvironment(void);

/**
 * The hook that a host calls before it forks to become a daemon; does nothing on this platform.
 *
 * The lock between processes belongs to the process that took it: a child does not inherit it.
 *
 * @par Memory
 * None.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT void SUPTBeforeForkForDaemon(void);

/**
 * Allows long file names; they always are allowed on this platform, so it does nothing.
 *
 * @retval 0 always
 * @par Memory
 * None.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTEnableLongFileNames(void);

/**
 * Forbids long file names; does nothing on this platform, where they stay allowed.
 *
 * @retval 0 always
 * @par Memory
 * None.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTDisableLongFileNames(void);

QVX_END_DECLS

#endif
