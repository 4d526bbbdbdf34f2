/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_LIBRARY_H
#define QVXCS_LIBRARY_H

/**
 * @file
 * Shared libraries that a host loads, each with a record of the caller.
 *
 * A record describes one loaded library from `PXTLibLoad` to `PXTLibUnLoad`. Loading runs the
 * library's constructors with all rights of the process: give paths that only trusted users can
 * write to. A path without a "/" is searched for as the loader searches for libraries. Records are
 * not locked: one record is not loaded or unloaded by two threads at once.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** A library, in memory of the caller and filled by `PXTLibLoad`. */
typedef struct PXTLibrary {
  qvx_astring* path; /**< the record's copy of the path; NULL when nothing is loaded */
  void* handle;      /**< the loader's handle */
} PXTLibrary;

/**
 * Loads a library: all its symbols are bound at once, and other libraries do not see them.
 *
 * @param[out] library  the record, whatever it holds: it is filled, not released
 * @param[in] path      the library's path
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_FAILURE when the library cannot be loaded or `path` is NULL: the record's path
 *         is NULL, its handle as it was
 * @retval 0xFFFFFFFF when `library` is NULL, and without memory: the record's path is NULL
 * @par Memory
 * The record holds a copy of the path until `PXTLibUnLoad`.
 * @par Threads
 * Any thread may call, with its own record.
 */
QVX_EXPORT qvx_u32 PXTLibLoad(PXTLibrary* library, const qvx_astring* path);

/**
 * Looks up a symbol of a loaded library.
 *
 * @param[in] library     a loaded record
 * @param[in] symbolName  the symbol's name
 * @return the symbol's address, or NULL when the library has no such symbol, an argument is NULL or
 *         nothing is loaded. The address of a symbol may itself be NULL.
 * @par Memory
 * The address is good until the library is unloaded.
 * @par Threads
 * Any thread may call while no other loads or unloads the record.
 */
QVX_EXPORT void* PXTLibLinkToExportFN(PXTLibrary* library, const qvx_astring* symbolName);

/**
 * Ends the use of a symbol; does nothing on this platform.
 *
 * @param[in] library  not used
 * @param[in] symbol   not used
 * @retval 0 always
 * @par Memory
 * Nothing is touched.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_u32 PXTLibUnLinkFromExportFN(PXTLibrary* library, const void* symbol);

/**
 * Unloads a library.
 *
 * @param[in,out] library  a record that `PXTLibLoad` has filled, or a zeroed one
 * @retval SM_STATUS_SUCCESS the library was closed; the record's handle is NULL
 * @retval 0xFFFFFFFF when the loader refused, the handle is NULL or `library` is NULL
 * @par Memory
 * The record's copy of the path is released and set to NULL, whatever the result.
 * @par Threads
 * One thread at a time to a record, and no other while it uses the library's symbols.
 */
QVX_EXPORT qvx_u32 PXTLibUnLoad(PXTLibrary* library);

QVX_END_DECLS

#endif
