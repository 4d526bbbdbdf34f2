// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CLI_LOG_CONTENT_H
#define QVX_CLI_LOG_CONTENT_H

#include "qvxcs/types.h"

namespace qvx {

astring* CmdGetXMLLogContent(const astring* path);

}  // namespace qvx

#endif
