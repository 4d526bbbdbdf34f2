// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ipc_name.h"

#include <cstdio>

#include "base/layout.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr s32 kUnread = -1;
constexpr s32 kDefaultBase = 100000;
constexpr int kLineRoom = 256;

s32 ipcNameBase = kUnread;

s32 Sum(s32 base, u32 offset) { return static_cast<s32>(static_cast<u32>(base) + offset); }

bool ScanBase(const astring* line, s32* base) {
  long long wide = 0;
  if (sscanf(line, " ipcnamebase=%lld", &wide) != 1) return false;
  *base = static_cast<s32>(static_cast<u32>(static_cast<u64>(wide)));
  return true;
}

}  // namespace

s32 ReadIPCNameBase() {
  s32 base = kDefaultBase;
  const FilePtr file = OpenFile(kIPCConfigPath, "r");
  if (file == nullptr) return base;
  astring line[kLineRoom];
  while (fgets(line, kLineRoom, file.get()) != nullptr && !ScanBase(line, &base)) {
  }
  return base;
}

// Deliberate: a configured base of -1 reads as "not read yet", so the file is read again at the
// next call. Held by IPCName.ABaseOfMinusOneIsReadAgain.
s32 CreateIPCName(u32 offset) {
  if (ipcNameBase == kUnread) {
    ipcNameBase = ReadIPCNameBase();
  }
  return Sum(ipcNameBase, offset);
}

}  // namespace qvx
