// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/library.h"

#include <dlfcn.h>

#include <string>

#include "ctl/output.h"

namespace qvx::ctl {
namespace {

void* Load() {
  void* const library = dlopen(QVXCS_SONAME, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw Failure(kUnknown, std::string("the library: ") + dlerror());
  return library;
}

}  // namespace

void* FindCall(const char* name) {
  static void* const library = Load();
  void* const call = dlsym(library, name);
  if (call == nullptr) throw Failure(kUnknown, std::string("the library: ") + dlerror());
  return call;
}

}  // namespace qvx::ctl
