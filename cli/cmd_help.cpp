// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/cmd_help.h"

#include <cstdio>
#include <utility>

#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "base/heap.h"
#include "cli/param_node.h"
#include "xml/xml_buffer.h"

namespace qvx {
namespace {

constexpr u32 kFirstCapacity = 256;

// The help that a command returns for itself; empty without one. A command may write into its
// arguments, so each gets its own copies.
HeapArray<astring> AskForHelp(PXTCommandFunction command) {
  astring user[] = "qvxusrinfo=nvsupt";
  astring help[] = "cmdhelp=true";
  astring* vector[] = {user, help, nullptr};
  return HeapArray<astring>(command(2, vector));
}

// Deliberate: the help is the command's own markup and is written unescaped into its element. Held
// by CmdHelp.HelpTextsStandUnescaped.
void CatCommand(void* buffer, const PXTCommand& command) {
  const HeapArray<astring> help = AskForHelp(command.function);
  if (!help) return;
  const HeapArray<astring> attribute =
      QuotedAttribute("val", command.name == nullptr ? "" : command.name);
  if (!attribute) return;
  (void)PXMBufCatNode(buffer, "qvxcmd", attribute.get(), QVX_TYPE_ASTRING, help.get());
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
  XmlBuffer buffer = AllocXmlBuffer(kFirstCapacity);
  if (!buffer) return nullptr;
  if (self == nullptr || table == nullptr || count < 1) return ReleaseContent(std::move(buffer));
  if (CatBegin(buffer.get(), count) != SM_STATUS_SUCCESS) return nullptr;
  for (s32 i = 0; i < count; ++i) {
    if (table[i].function != nullptr && table[i].function != self) {
      CatCommand(buffer.get(), table[i]);
    }
  }
  (void)PXMBufCatEndNode(buffer.get(), "CLICmdHelp");
  return ReleaseContent(std::move(buffer));
}

}  // namespace qvx
