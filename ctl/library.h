// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LIBRARY_H
#define QVX_CTL_LIBRARY_H

// The installed library's calls. The first of them loads the library, which takes and releases the
// suite's lock: commands that only look never call any of them.
namespace qvx::ctl {

// Loads the library first; throws a Failure where it or the call is not found.
void* FindCall(const char* name);

}  // namespace qvx::ctl

// A call of the library by its declaration: QVX_CALL(PXTGetProcessRights)().
#define QVX_CALL(function) \
  (reinterpret_cast<decltype(&(function))>(::qvx::ctl::FindCall(#function)))

#endif
