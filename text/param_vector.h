// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_PARAM_VECTOR_H
#define QVX_TEXT_PARAM_VECTOR_H

#include "qvxcs/types.h"

namespace qvx {

astring* GetAStrParamName(astring* entry);
ustring* GetUStrParamName(ustring* entry);
astring* GetAStrParamValue(astring* entry);
ustring* GetUStrParamValue(ustring* entry);
u32 IsValidParam(const astring* entry);
u32 IsValidUParam(const ustring* entry);
s32 GetParamIndexByAStrName(s32 count, astring** entries, const astring* name, booln ignoreCase);
s32 GetParamIndexByUStrName(s32 count, ustring** entries, const ustring* name, booln ignoreCase);
astring* GetAStrParamValueByAStrName(s32 count, astring** entries, const astring* name,
                                     booln ignoreCase);
ustring* GetUStrParamValueByUStrName(s32 count, ustring** entries, const ustring* name,
                                     booln ignoreCase);

// An internal service without a caller in the library, held by its tests.
u32 GetAStrParamNameLen(const astring* entry);
u32 GetUStrParamNameLen(const ustring* entry);

}  // namespace qvx

#endif
