// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_exception.h"

namespace ZarnSupport {

// Here, so that the type's run-time information has one home.
ZarnException::~ZarnException() = default;

}  // namespace ZarnSupport
