// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/string_resource.h"

#include "base/cancel_hold.h"
#include "config/string_resource.h"

u32 PXTGetUnicodeStringFromIDPathFile(u32 stringId, u32* languageId, const astring* path,
                                      ustring* buffer, u32* size) {
  const qvx::CancelHold hold;
  return qvx::GetUnicodeStringFromIDPathFile(stringId, languageId, path, buffer, size);
}
