#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# examples/rights.c: who a process and a user are, and what they may do.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/users.sh"

check 0 "user: root
by its identities: administrator, superuser (0x40007)
by the role map: user (0x1)" rights
check 0 "ada: administrator (0x7)" rights ada
check 0 "paul: power user (0x3)" rights paul
check 0 "root: administrator, superuser (0x40007)" rights root
check 0 "stranger: user (0x1)" rights stranger
check 2 "rights: the name cannot be converted (SM_STATUS_BAD_DATA)" rights $'\xff'
as_una=(setpriv --reuid 2003 --clear-groups --regid)
check 0 "user: una
by its identities: user (0x1)
by the role map: user (0x1)" "${as_una[@]}" 2003 "$(command -v rights)"
check 0 "user: una
by its identities: power user (0x3)
by the role map: user (0x1)" "${as_una[@]}" 0 "$(command -v rights)"
check 2 "rights: the real user of this process has no name" \
  setpriv --reuid 2999 --regid 2003 --clear-groups "$(command -v rights)"
echo "ada * administrator" | write_role_map
check 1 "una: no access (0x0)" rights una
check 0 "user: root
by its identities: administrator, superuser (0x40007)
by the role map: administrator (0x7)" rights
finish
