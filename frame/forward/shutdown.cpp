// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/shutdown.h"

#include "os/shutdown.h"

u32 PXTOSShutdown(u16 ignored, u16 mode) { return qvx::OSShutdown(ignored, mode); }
u32 PXTOSGetType() { return qvx::OSGetType(); }
