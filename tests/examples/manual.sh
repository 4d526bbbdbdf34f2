#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# manual.sh PROGRAM SOURCE: a program of the manual prints what the comment at its end says.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"

printed=$(sed -n '/^ \* Prints:$/,/^ \*\/$/s/^ \*   //p' "$2")
same "$2 says what it prints" "yes" "$([ -n "$printed" ] && echo yes)"
check 0 "$printed" "$1"
finish
