/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_PARAM_VECTOR_H
#define QVXCS_PARAM_VECTOR_H

/**
 * @file
 * Parameter vectors: arrays of texts of the form name=value.
 *
 * Commands receive their arguments as a count and an array of text pointers. An entry's name is the
 * text before its first "=", its value the text after it, which may be empty and may hold more "="
 * characters. An entry is well formed when it has an "=" and a name before it. NULL entries count
 * as not well formed; they are skipped in vectors.
 *
 * Each function exists for 8-bit (`AStr`) and 16-bit (`UStr`) texts. All work in place, allocate
 * nothing and take no lock: no other thread may change the texts during a call. The entries array
 * and the search name are not checked; they must not be NULL when the count is 1 or more.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Cuts an entry after its name.
 *
 * The first "=" is overwritten with a NUL: the entry then is the name, and its value can no longer
 * be reached through it.
 *
 * @param[in,out] entry  the entry
 * @return the entry; NULL, and nothing changed, when it is not well formed
 * @par Memory
 * The result points into the caller's text.
 * @par Threads
 * Keeps no state; the entry is changed.
 */
QVX_EXPORT qvx_astring* PXTGetAStrParamName(qvx_astring* entry);

/**
 * Cuts a 16-bit entry after its name, as `PXTGetAStrParamName` does.
 *
 * @param[in,out] entry  the entry
 * @return the entry; NULL, and nothing changed, when it is not well formed
 * @par Memory
 * The result points into the caller's text.
 * @par Threads
 * Keeps no state; the entry is changed.
 */
QVX_EXPORT qvx_ustring* PXTGetUStrParamName(qvx_ustring* entry);

/**
 * Finds an entry's value.
 *
 * @param[in] entry  the entry
 * @return the character after the first "="; NULL when the entry is not well formed
 * @par Memory
 * The result points into the caller's text.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetAStrParamValue(qvx_astring* entry);

/**
 * Finds a 16-bit entry's value.
 *
 * @param[in] entry  the entry
 * @return the unit after the first "="; NULL when the entry is not well formed
 * @par Memory
 * The result points into the caller's text.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_ustring* PXTGetUStrParamValue(qvx_ustring* entry);

/**
 * Says whether an entry is well formed.
 *
 * @param[in] entry  the entry
 * @retval 1 it has a name and an "="
 * @retval 0 it has not
 * @par Memory
 * Reads the entry only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTIsValidParam(const qvx_astring* entry);

/**
 * Says whether a 16-bit entry is well formed.
 *
 * @param[in] entry  the entry
 * @retval 1 it has a name and an "="
 * @retval 0 it has not
 * @par Memory
 * Reads the entry only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTIsValidUParam(const qvx_ustring* entry);

/**
 * Finds the first entry of a name.
 *
 * A search name may itself have the form name=value: only the part before its "=" counts.
 *
 * @param[in] count       the number of entries; below 1 finds nothing
 * @param[in] entries     the entries
 * @param[in] name        the name sought; an empty one finds nothing
 * @param[in] ignoreCase  exactly 1 maps both to the locale's small letters, any other value
 * compares exactly
 * @return the index of the first entry that matches, -1 when none does
 * @par Memory
 * Reads the texts only.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTGetParamIndexByAStrName(qvx_s32 count, qvx_astring** entries,
                                              const qvx_astring* name, qvx_booln ignoreCase);

/**
 * Compares a name with 16-bit entries; finds none.
 *
 * The comparison covers twice the name's length, and the search name ends where an entry has its
 * "=", so no entry ever matches. Walk the entries with `PXTGetUStrParamName` instead.
 *
 * @param[in] count       the number of entries; below 1 finds nothing
 * @param[in] entries     the entries
 * @param[in] name        the name sought
 * @param[in] ignoreCase  has no effect on the result
 * @return -1
 * @par Memory
 * Reads the texts only, up to their terminators.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_s32 PXTGetParamIndexByUStrName(qvx_s32 count, qvx_ustring** entries,
                                              const qvx_ustring* name, qvx_booln ignoreCase);

/**
 * Finds the value of the first entry of a name.
 *
 * @param[in] count       the number of entries; below 1 finds nothing
 * @param[in] entries     the entries
 * @param[in] name        the name sought, compared as in `PXTGetParamIndexByAStrName`
 * @param[in] ignoreCase  exactly 1 ignores case
 * @return the value of the first entry that matches; NULL when none does
 * @par Memory
 * The result points into the caller's text.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetAStrParamValueByAStrName(qvx_s32 count, qvx_astring** entries,
                                                       const qvx_astring* name,
                                                       qvx_booln ignoreCase);

/**
 * Looks for the value of a 16-bit name; finds none, as `PXTGetParamIndexByUStrName`.
 *
 * @param[in] count       the number of entries; below 1 finds nothing
 * @param[in] entries     the entries
 * @param[in] name        the name sought
 * @param[in] ignoreCase  has no effect on the result
 * @return NULL
 * @par Memory
 * Reads the texts only, up to their terminators.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_ustring* PXTGetUStrParamValueByUStrName(qvx_s32 count, qvx_ustring** entries,
                                                       const qvx_ustring* name,
                                                       qvx_booln ignoreCase);

QVX_END_DECLS

#endif
