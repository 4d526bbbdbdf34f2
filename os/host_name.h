// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_HOST_NAME_H
#define QVX_OS_HOST_NAME_H

#include "qvxcs/types.h"

namespace qvx {

astring* OSGetComputerDomainName();
u32 GetIPHostName(astring* name, u32* size);
u32 UniGetIPHostName(ustring* name, u32* size);
u32 GetDNSSuffixName(void* name, u32 size);
u32 ValidateHostName(const astring* name);

}  // namespace qvx

#endif
