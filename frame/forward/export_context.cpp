// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/export_context.h"

#include "base/export_context.h"

void PXTGetExportContext(u32* slot) { qvx::GetExportContext(slot); }
void PXTSetExportContext(u32* saveSlot, u32* context) { qvx::SetExportContext(saveSlot, context); }
void PXTResetExportContext(u32* saveSlot) { qvx::ResetExportContext(saveSlot); }
void PXTSetProcessEnvironment() { qvx::SetProcessEnvironment(); }
void SUPTBeforeForkForDaemon() { qvx::BeforeForkForDaemon(); }
s32 PXTEnableLongFileNames() { return qvx::EnableLongFileNames(); }
s32 PXTDisableLongFileNames() { return qvx::EnableLongFileNames(); }
