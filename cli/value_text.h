// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CLI_VALUE_TEXT_H
#define QVX_CLI_VALUE_TEXT_H

#include "qvxcs/types.h"

namespace qvx {

astring* NVSuptUstrToAstrD(const ustring* text, const astring* fallback, u32* status);
astring* NVSuptUstrToAstr(const ustring* text, u32* status);
ustring* NVSuptAstrToUstrD(const astring* text, const ustring* fallback, u32* status);
ustring* NVSuptAstrToUstr(const astring* text, u32* status);

}  // namespace qvx

#endif
