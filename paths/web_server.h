// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_PATHS_WEB_SERVER_H
#define QVX_PATHS_WEB_SERVER_H

#include "qvxcs/types.h"

namespace qvx {

// Stops, starts or restarts the suite's connection service.
u32 CfgWebServer(u32 action, u32 reserved, s32* exitCode);

}  // namespace qvx

#endif
