// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/oem.h"

#include <cstdio>
#include <cstring>

#include "qvxcs/ini_file.h"
#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/layout.h"
#include "config/ini_read_values.h"

namespace qvx {
namespace {

constexpr u32 kChassisRoom = 8193;
constexpr u32 kPrefixRoom = 256;
constexpr astring kOwnBrand[] = "zarn";

}  // namespace

astring* SUPTIntfGetOEMINIPathFile(const astring* oem, const astring* file, const astring* flag) {
  if (oem == nullptr || file == nullptr || flag == nullptr) return nullptr;
  constexpr astring kFormat[] = "%s%s/ini/%s/%s";
  const astring* const brand = strcmp(flag, "0") == 0 ? kOwnBrand : "debrand";
  const u64 room = u64{sizeof(kOemDirectory)} + sizeof(kFormat) + strlen(oem) + strlen(brand) +
                   u64{strlen(file)};
  HeapArray<astring> path = AllocArray<astring>(room);
  if (!path) return nullptr;
  (void)snprintf(path.get(), static_cast<size_t>(room), kFormat, kOemDirectory, oem, brand, file);
  return path.release();
}

u32 CheckModularChassis() {
  const HeapArray<astring> value = AllocArray<astring>(kChassisRoom);
  if (!value) return 0;
  u32 size = kChassisRoom;
  const u32 status = SUPTIntfReadINIFileValue("blade", "blade", QVX_INI_ASTRING, value.get(), &size,
                                              nullptr, 0, "qvcli32.ini", QVX_LOCK_WAIT);
  if (status != SM_STATUS_SUCCESS) return 0;
  return strcmp(value.get(), "true") == 0 ? 1 : 0;
}

astring* GetOEMADSchemaPrefix() {
  HeapArray<astring> prefix = AllocArray<astring>(kPrefixRoom);
  if (!prefix) return nullptr;
  memcpy(prefix.get(), kOwnBrand, sizeof(kOwnBrand));
  u32 size = kPrefixRoom;
  // The buffer is its own default, so it holds a prefix whether or not the read succeeds.
  (void)SUPTIntfReadINIFileValue("data", "adschemaprefix", QVX_INI_ASTRING, prefix.get(), &size,
                                 prefix.get(), sizeof(kOwnBrand), "oem.ini", QVX_LOCK_WAIT);
  return prefix.release();
}

}  // namespace qvx
