/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_PARAM_VECTOR_H
#define QVXCS_PARAM_VECTOR_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT astring* PXTGetAStrParamName(astring* entry);

QVX_EXPORT ustring* PXTGetUStrParamName(ustring* entry);

QVX_EXPORT astring* PXTGetAStrParamValue(astring* entry);

QVX_EXPORT ustring* PXTGetUStrParamValue(ustring* entry);

QVX_EXPORT u32 PXTIsValidParam(const astring* entry);

QVX_EXPORT u32 PXTIsValidUParam(const ustring* entry);

QVX_EXPORT s32 PXTGetParamIndexByAStrName(s32 count, astring** entries, const astring* name,
                                          booln ignoreCase);

QVX_EXPORT s32 PXTGetParamIndexByUStrName(s32 count, ustring** entries, const ustring* name,
                                          booln ignoreCase);

QVX_EXPORT astring* PXTGetAStrParamValueByAStrName(s32 count, astring** entries,
                                                   const astring* name, booln ignoreCase);

QVX_EXPORT ustring* PXTGetUStrParamValueByUStrName(s32 count, ustring** entries,
                                                   const ustring* name, booln ignoreCase);

QVX_END_DECLS

#endif
