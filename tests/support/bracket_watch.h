// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_BRACKET_WATCH_H
#define QVX_TESTS_SUPPORT_BRACKET_WATCH_H

#include <string>

namespace qvx::test {

// The export-context hooks that ran in this thread since the last call of this, in their order, 64
// at most: "(" where a context was installed, ")" where the one before was put back with the same
// slot, "!" for a hook with other arguments.
std::string TakeBrackets();

}  // namespace qvx::test

#endif
