// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_EXPORT_CONTEXT_H
#define QVX_BASE_EXPORT_CONTEXT_H

#include "qvxcs/types.h"

#include "base/cancel_hold.h"

namespace qvx {

// The context captured by the first attach.
extern u32 origECI;

void GetExportContext(u32* slot);
void SetExportContext(u32* saveSlot, u32* context);
void ResetExportContext(u32* saveSlot);
void SetProcessEnvironment();
void BeforeForkForDaemon();
s32 EnableLongFileNames();

// Used around the 25 exported calls that include/qvxcs/export_context.h names, so that a platform
// with a context per process can switch to the library's own and back.
class ExportBracket {
 public:
  ExportBracket() { SetExportContext(&slot_, &origECI); }
  ~ExportBracket() noexcept(false) { ResetExportContext(&slot_); }
  ExportBracket(const ExportBracket&) = delete;
  ExportBracket& operator=(const ExportBracket&) = delete;

 private:
  // Declared first: the context is put back before the thread may end.
  CancelHold hold_;
  u32 slot_ = 0;
};

}  // namespace qvx

#endif
