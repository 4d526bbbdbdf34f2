// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_TIME_TEXT_H
#define QVX_TEXT_TIME_TEXT_H

#include <ctime>

#include "qvxcs/types.h"

namespace qvx {

s32 TimeToAStr(astring* out, time_t time);
s32 UniTimeToStr(ustring* out, u32* size, time_t time);
void DSTFix(time_t* time);

}  // namespace qvx

#endif
