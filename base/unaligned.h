// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_UNALIGNED_H
#define QVX_BASE_UNALIGNED_H

#include <cstring>
#include <type_traits>

namespace qvx {

// The values that a caller's pointer refers to may be at any address: exactly their bytes are
// copied.

template <typename T>
T LoadValue(const void* from) {
  static_assert(std::is_trivially_copyable_v<T>);
  T value;
  memcpy(&value, from, sizeof(value));
  return value;
}

template <typename T>
void StoreValue(void* to, T value) {
  static_assert(std::is_trivially_copyable_v<T>);
  memcpy(to, &value, sizeof(value));
}

}  // namespace qvx

#endif
