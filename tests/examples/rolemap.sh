#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# examples/rolemap.c: each fault of a role map, with its line.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/users.sh"

stand_in="; the library uses its built-in lines"
no_fault='no fault; what the library skips in silence, "qvxctl rolemap check" shows'
check 0 "$no_fault" rolemap
# A byte above 0x7F ends the map for the library, which reports nothing.
printf 'ada * user\n# No\xC3\xABl\nbob * superhero\n' | write_role_map
check 0 "$no_fault" rolemap
printf '# faulty\nada * superhero\n' | write_role_map
check 1 "line 2: the role is none of administrator, poweruser and user$stand_in" rolemap
printf 'ada * user\n\n# faulty\n\t ada *\n' | write_role_map
check 1 "line 4: a field is missing: users, hosts and a role are needed$stand_in" rolemap
printf 'ada srv1 user\nada srv2,SRV1 user\n' | write_role_map
check 1 "line 2: a user is given the same host a second time$stand_in" rolemap
printf '# nobody\n\n' | write_role_map
check 1 "the file has no line that counts$stand_in" rolemap
chmod 0644 "$role_map"
check 1 "the file's mode is neither 0640 nor 01640$stand_in" rolemap
rm "$role_map"
check 1 "the file is missing or cannot be opened$stand_in" rolemap
echo "ada * administrator" | write_role_map
check 0 "$no_fault" rolemap
command_log=/etc/cim/zarn/plinthos/var/log/vexilon/qvcmdlog.xml
entries() { grep -o "<ID>$1</ID>" "$command_log" | wc -l; }
same "faults in the command log" "1 1 1 1 1" \
  "$(entries 5911) $(entries 5913) $(entries 5914) $(entries 5915) $(entries 5916)"
rm "$command_log"
mkdir "$command_log"
check 2 "rolemap: the command log cannot be written (QVX_FAILED: Is a directory)" rolemap
rmdir "$command_log"
finish
