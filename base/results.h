// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_RESULTS_H
#define QVX_BASE_RESULTS_H

#include "qvxcs/types.h"

namespace qvx {

// -1 as a status, size or count: all 32 bits set.
inline constexpr u32 kMinusOne = 0xFFFFFFFF;

// The greatest size that a 32-bit size argument can hold. Sizes are added up in 64 bits first.
inline constexpr u64 kMaxSize = 0xFFFFFFFF;

}  // namespace qvx

#endif
