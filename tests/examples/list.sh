#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# examples/list.c: a sorted list, and as many identifiers as the table holds.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"

check 1 "list: pear: is there already (SM_STATUS_BAD_ARGUMENT)
3 names, the highest identifier is 3
2 apple
3 fig
1 pear" list pear apple pear fig
names=()
sorted=
for number in {1..31}; do
  names+=("$(printf 'n%02d' "$number")")
  sorted+=$'\n'"$number ${names[-1]}"
done
check 0 "31 names, the highest identifier is 31$sorted" list "${names[@]}"
check 2 "list: one more: no identifier is free, or no memory
31 names, the highest identifier is 31$sorted" list "${names[@]}" "one more"
finish
