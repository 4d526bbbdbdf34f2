// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_HOST_NAME_FAULT_H
#define QVX_TESTS_SUPPORT_HOST_NAME_FAULT_H

namespace qvx::test {

// From here to the end of this process a host name that does not fit is cut without an error and
// without a NUL, as POSIX allows.
void CutHostNamesSilently();

// From here to the end of this process the system returns no host name.
void RefuseHostNames();

}  // namespace qvx::test

#endif
