// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_SOCKET_FAULT_H
#define QVX_TESTS_SUPPORT_SOCKET_FAULT_H

namespace qvx::test {

// From here to the end of this process the library gets no socket of the family. Use it in a child
// process.
void RefuseFamily(int family);

// The type, with its flags, that the last socket was asked for with; 0 before the first.
int LastSocketType();

}  // namespace qvx::test

#endif
