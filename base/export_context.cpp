// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "base/export_context.h"

namespace qvx {

u32 origECI = 0;

void GetExportContext(u32* slot) {
  if (slot != nullptr) {
    *slot = 0;
  }
}

// The hooks stay empty on this platform; callers still make them, in their order.
void SetExportContext([[maybe_unused]] u32* saveSlot, [[maybe_unused]] u32* context) {}

void ResetExportContext([[maybe_unused]] u32* saveSlot) {}

void SetProcessEnvironment() {}

void BeforeForkForDaemon() {}

s32 EnableLongFileNames() { return 0; }

}  // namespace qvx
