// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_critical_section.h"

namespace ZarnSupport {

void ZarnCriticalSectionObject::enter() { mutex_.lock(); }

void ZarnCriticalSectionObject::leave() { mutex_.unlock(); }

}  // namespace ZarnSupport
