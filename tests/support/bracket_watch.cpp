// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "support/bracket_watch.h"

#include <utility>

#include "qvxcs/types.h"

#include "base/export_context.h"

namespace {

std::string brackets;
const u32* slotInForce = nullptr;

}  // namespace

// Test programs wrap the two hooks by the names that the linker sees.
extern "C" {
void __wrap__ZN3qvx16SetExportContextEPjS0_(u32* saveSlot, u32* context) {
  slotInForce = saveSlot;
  brackets += saveSlot != nullptr && context == &qvx::origECI ? '(' : '!';
}

void __wrap__ZN3qvx18ResetExportContextEPj(u32* saveSlot) {
  brackets += saveSlot != nullptr && saveSlot == slotInForce ? ')' : '!';
}
}

namespace qvx::test {

std::string TakeBrackets() { return std::exchange(brackets, std::string()); }

}  // namespace qvx::test
