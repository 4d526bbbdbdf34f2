// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "own_types_host.c"  // NOLINT(bugprone-suspicious-include): one host, in both languages
