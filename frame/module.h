// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_FRAME_MODULE_H
#define QVX_FRAME_MODULE_H

#include "qvxcs/types.h"

namespace qvx {

extern s32 modAttachCount;

// The loader runs constructors and destructors one at a time: the count has no lock.
s32 ModuleAttach();
s32 ModuleDetach();

// What the loader runs when the library is loaded and unloaded.
s16 ModuleInit();
s16 ModuleFini();

}  // namespace qvx

#endif
