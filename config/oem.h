// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_OEM_H
#define QVX_CONFIG_OEM_H

#include "qvxcs/types.h"

namespace qvx {

// The path of a file in an OEM's INI tree, a new heap text.
astring* SUPTIntfGetOEMINIPathFile(const astring* oem, const astring* file, const astring* flag);

// 1 when "qvcli32.ini" says that the system is a blade chassis, else 0.
u32 CheckModularChassis();

// A 256-byte heap text: what "oem.ini" configures, else "zarn".
astring* GetOEMADSchemaPrefix();

}  // namespace qvx

#endif
