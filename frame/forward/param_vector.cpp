// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/param_vector.h"

#include "text/param_vector.h"

astring* PXTGetAStrParamName(astring* entry) { return qvx::GetAStrParamName(entry); }
ustring* PXTGetUStrParamName(ustring* entry) { return qvx::GetUStrParamName(entry); }
astring* PXTGetAStrParamValue(astring* entry) { return qvx::GetAStrParamValue(entry); }
ustring* PXTGetUStrParamValue(ustring* entry) { return qvx::GetUStrParamValue(entry); }
u32 PXTIsValidParam(const astring* entry) { return qvx::IsValidParam(entry); }
u32 PXTIsValidUParam(const ustring* entry) { return qvx::IsValidUParam(entry); }
s32 PXTGetParamIndexByAStrName(s32 count, astring** entries, const astring* name,
                               booln ignoreCase) {
  return qvx::GetParamIndexByAStrName(count, entries, name, ignoreCase);
}
s32 PXTGetParamIndexByUStrName(s32 count, ustring** entries, const ustring* name,
                               booln ignoreCase) {
  return qvx::GetParamIndexByUStrName(count, entries, name, ignoreCase);
}
astring* PXTGetAStrParamValueByAStrName(s32 count, astring** entries, const astring* name,
                                        booln ignoreCase) {
  return qvx::GetAStrParamValueByAStrName(count, entries, name, ignoreCase);
}
ustring* PXTGetUStrParamValueByUStrName(s32 count, ustring** entries, const ustring* name,
                                        booln ignoreCase) {
  return qvx::GetUStrParamValueByUStrName(count, entries, name, ignoreCase);
}
