// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/kept_descriptor.h"

#include <sys/stat.h>

#include <atomic>
#include <utility>

#include "os/ipc_file.h"

namespace qvx {
namespace {

// A bit for each number that is ever closed by its number; larger numbers need no bit.
constexpr int kBits = 64;
constexpr int kNumbers = 256;
constinit std::atomic<u64> keptNumbers[kNumbers / kBits] = {};

u64 BitOf(int number) { return u64{1} << (number % kBits); }

bool HasBit(int number) { return number >= 0 && number < kNumbers; }

void SetKept(int number, bool kept) {
  if (!HasBit(number)) return;
  std::atomic<u64>& word = keptNumbers[number / kBits];
  if (kept) {
    word |= BitOf(number);
  } else {
    word &= ~BitOf(number);
  }
}

}  // namespace

KeptDescriptor::KeptDescriptor(Descriptor opened) {
  struct stat status = {};
  if (!opened || fstat(opened.Number(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  descriptor_ = std::move(opened);
  id_ = FileIdOf(status);
  SetKept(Number(), true);
}

KeptDescriptor::~KeptDescriptor() {
  if (!descriptor_) return;
  SetKept(Number(), false);
  if (!IsOurs()) (void)descriptor_.Release();
}

KeptDescriptor& KeptDescriptor::operator=(KeptDescriptor&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  std::swap(id_, other.id_);
  return *this;
}

bool KeptDescriptor::IsOurs() const {
  struct stat status = {};
  return fstat(Number(), &status) == 0 && FileIdOf(status) == id_;
}

bool IsKeptDescriptor(int number) {
  if (number == IPCFileDescriptor()) return true;
  return HasBit(number) && (keptNumbers[number / kBits] & BitOf(number)) != 0;
}

}  // namespace qvx
