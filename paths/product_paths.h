// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_PATHS_PRODUCT_PATHS_H
#define QVX_PATHS_PRODUCT_PATHS_H

#include "qvxcs/types.h"

namespace qvx {

// New heap texts; null without enough memory or without the path that they are under.
astring* SUPTIntfGetProductIniPath();
astring* SUPTIntfGetProductVarPath();
astring* SUPTIntfGetQVXWWWRootPath();
astring* SUPTIntfGetQVXXSLRootPath();
astring* SUPTIntfGetQVXDownloadPath();
astring* SUPTIntfGetQVXUploadPath();
astring* SUPTIntfGetQVXCLIDocsPath();
astring* SUPTIntfGetQVXWEBDocsPath();
astring* SUPTIntfGetIWSTempDirPath();

}  // namespace qvx

#endif
