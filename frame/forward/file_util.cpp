// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/file_util.h"

#include "base/cancel_hold.h"
#include "os/file_util.h"

u32 PXTDeleteFile(const astring* path) {
  const qvx::CancelHold hold;
  return qvx::DelFile(path);
}
u32 PXTGetSizeOfFile(const astring* path, u32* size) {
  const qvx::CancelHold hold;
  return qvx::GetSizeOfFile(path, size);
}
u32 PXTGetTmpFile(const astring* directory, astring* name, u32* size) {
  const qvx::CancelHold hold;
  return qvx::GetTmpFile(directory, name, size);
}
u32 PXTMkDir(const astring* path) {
  const qvx::CancelHold hold;
  return qvx::CreateDir(path);
}
u32 PXTRmDir(const astring* path) {
  const qvx::CancelHold hold;
  return qvx::DelDir(path);
}
