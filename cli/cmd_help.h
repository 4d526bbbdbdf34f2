// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CLI_CMD_HELP_H
#define QVX_CLI_CMD_HELP_H

#include "qvxcs/cli_value.h"
#include "qvxcs/types.h"

namespace qvx {

astring* NVSuptCMDHelp(s32 ignoredCount, astring** ignoredVector, const PXTCommand* table,
                       s32 count, PXTCommandFunction self);

}  // namespace qvx

#endif
