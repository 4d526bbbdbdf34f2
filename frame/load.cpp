// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Linked into the shared library only. The priority lets the attach run before, and the detach
// after, every other initialiser and exit handler of the image.
#include "frame/module.h"

namespace {

constexpr int kFirst = 101;

__attribute__((constructor(kFirst))) void Load() { (void)qvx::ModuleInit(); }

__attribute__((destructor(kFirst))) void Unload() { (void)qvx::ModuleFini(); }

}  // namespace
