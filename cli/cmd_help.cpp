// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/cmd_help.h"

#include <cstdio>

#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "base/heap.h"
#include "cli/param_node.h"
#include "xml/xml_buffer.h"

namespace qvx {
namespace {

constexpr u32 kFirstCapacity = 256;
constexpr u16 kDiscard = 0;
constexpr u16 kGetContent = 1;

// The help that a command returns for itself; null without one. A command may write into its
// arguments, so each gets its own copies.
astring* AskForHelp(PXTCommandFunction command) {
  astring user[] = "qvxusrinfo=nvsupt";
  astring help[] = "cmdhelp=true";
  astring* vector[] = {user, help, nullptr};
  return command(2, vector);
}

// Deliberate: the help is the command's own markup and is written unescaped into its element. Held
// by CmdHelp.HelpTextsStandUnescaped.
void CatCommand(void* buffer, const PXTCommand& command) {
  astring* help = AskForHelp(command.function);
  if (help == nullptr) return;
  const HeapArray<astring> attribute =
      QuotedAttribute("val", command.name == nullptr ? "" : command.name);
  if (attribute) (void)PXMBufCatNode(buffer, "qvxcmd", attribute.get(), QVX_TYPE_ASTRING, help);
  PXMFreeBufContent(help);
}

// Deliberate: the count is the table's count minus one, for the calling command, whether or not it
// is in the table. Held by CmdHelp.CountIsOneLessThanTheTable.
u32 CatBegin(void* buffer, s32 count) {
  astring attribute[32];
  (void)snprintf(attribute, sizeof(attribute), "count=\"%d\"", count - 1);
  return PXMBufCatBeginNode(buffer, "CLICmdHelp", attribute);
}

}  // namespace

astring* NVSuptCMDHelp(s32 /*ignoredCount*/, astring** /*ignoredVector*/, const PXTCommand* table,
                       s32 count, PXTCommandFunction self) {
  void* buffer = PXMAllocBuf(kFirstCapacity, 0);
  if (buffer == nullptr) return nullptr;
  if (self == nullptr || table == nullptr || count < 1) return PXMFreeBuf(buffer, kGetContent);
  if (CatBegin(buffer, count) != SM_STATUS_SUCCESS) return PXMFreeBuf(buffer, kDiscard);
  for (s32 i = 0; i < count; ++i) {
    if (table[i].function != nullptr && table[i].function != self) CatCommand(buffer, table[i]);
  }
  (void)PXMBufCatEndNode(buffer, "CLICmdHelp");
  return PXMFreeBuf(buffer, kGetContent);
}

}  // namespace qvx
