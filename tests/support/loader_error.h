// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_LOADER_ERROR_H
#define QVX_TESTS_SUPPORT_LOADER_ERROR_H

namespace qvx::test {

// The next dlerror of this process returns an error, as if an earlier call had left it.
void LeaveLoaderError();

}  // namespace qvx::test

#endif
