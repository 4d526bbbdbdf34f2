// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "support/bracket_watch.h"

#include <array>

#include "qvxcs/types.h"

#include "base/export_context.h"

namespace {

// Each thread has its own, without a block of the heap: other tests count blocks.
thread_local std::array<char, 64> brackets;
thread_local size_t count = 0;
thread_local const u32* slotInForce = nullptr;

void Note(char bracket) {
  if (count < brackets.size()) brackets[count++] = bracket;
}

}  // namespace

// Test programs wrap the two hooks by the names that the linker sees.
extern "C" {
void __wrap__ZN3qvx16SetExportContextEPjS0_(u32* saveSlot, u32* context) {
  slotInForce = saveSlot;
  Note(saveSlot != nullptr && context == &qvx::origECI ? '(' : '!');
}

void __wrap__ZN3qvx18ResetExportContextEPj(u32* saveSlot) {
  Note(saveSlot != nullptr && saveSlot == slotInForce ? ')' : '!');
}
}

namespace qvx::test {

std::string TakeBrackets() {
  const std::string taken(brackets.data(), count);
  count = 0;
  return taken;
}

}  // namespace qvx::test
