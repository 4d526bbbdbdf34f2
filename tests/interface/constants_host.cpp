// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "constants_host.c"  // NOLINT(bugprone-suspicious-include): one host, in both languages
