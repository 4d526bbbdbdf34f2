// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/ini_file.h"

#include "base/export_context.h"
#include "config/ini_read_values.h"
#include "config/ini_write_values.h"

u32 PXTReadINIPathFileValue(const astring* section, const astring* key, s32 type, void* value,
                            u32* size, const void* defaultValue, u32 defaultSize,
                            const astring* path, booln lockFlag) {
  const qvx::ExportBracket bracket;
  return qvx::ReadINIPathFileValue(section, key, type, value, size, defaultValue, defaultSize, path,
                                   lockFlag);
}
u32 PXTReadINIFileValue(const astring* section, const astring* key, s32 type, void* value,
                        u32* size, const void* defaultValue, u32 defaultSize,
                        const astring* fileName, booln lockFlag) {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfReadINIFileValue(section, key, type, value, size, defaultValue, defaultSize,
                                       fileName, lockFlag);
}
u32 PXTWriteINIPathFileValue(const astring* section, const astring* key, s32 type,
                             const void* value, s32 size, const astring* path, booln lockFlag) {
  const qvx::ExportBracket bracket;
  return qvx::WriteINIPathFileValue(section, key, type, value, size, path, lockFlag);
}
u32 PXTWriteINIFileValue(const astring* section, const astring* key, s32 type, const void* value,
                         s32 size, const astring* fileName, booln lockFlag) {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfWriteINIFileValue(section, key, type, value, size, fileName, lockFlag);
}
