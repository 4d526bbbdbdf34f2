// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_CONFIG_INI_FIXED_TYPES_H
#define QVX_TESTS_CONFIG_INI_FIXED_TYPES_H

#include "qvxcs/ini_file.h"
#include "qvxcs/types.h"

namespace qvx::test {

// The types of fixed size and their bytes.
inline constexpr struct {
  s32 type;
  u32 bytes;
} kFixed[] = {{QVX_INI_BOOLN, 2}, {QVX_INI_U32, 4}, {QVX_INI_S32, 4},
              {QVX_INI_U64, 8},   {QVX_INI_S64, 8}, {QVX_INI_D64, 8}};

}  // namespace qvx::test

#endif
