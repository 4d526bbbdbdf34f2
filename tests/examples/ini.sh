#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# examples/ini.c: values read, changed and deleted.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"

file=/tmp/settings.ini
printf '# settings\n[net]\nhost=alpha\n port = 22\n[disk]\nsize=4\n' >"$file"
check 0 alpha ini get "$file" net host
check 0 " 22" ini get "$file" net "port "
check 1 "ini: no such key (SM_STATUS_KEY_NOT_FOUND)" ini get "$file" net port
check 1 "ini: no such section (SM_STATUS_SECTION_NOT_FOUND)" ini get "$file" NET host
check 1 "ini: the file cannot be opened (SM_STATUS_FILE_OPEN_FAILED: No such file or directory)" ini get /tmp/none.ini net host
check 0 "" ini set "$file" net host beta
check 0 "" ini set "$file" net mask 24
check 0 "" ini set "$file" new a "b = c"
check 0 "" ini delete "$file" disk size
check 1 "ini: no such key (SM_STATUS_KEY_NOT_FOUND)" ini delete "$file" disk size
printf '[net]\nport\nport=1\n' >/tmp/twice.ini
check 1 "ini: another line of the key is in force now" ini delete /tmp/twice.ini net port
same "the file without the first line of the key" "[net]
port=1" "$(cat /tmp/twice.ini)"
check 0 "" ini delete /tmp/twice.ini net port
check 1 "ini: no such section (SM_STATUS_SECTION_NOT_FOUND)" ini delete "$file" other size
check 2 "ini: an INI file cannot hold this text (SM_STATUS_INVALID_PARAMETER)" ini set "$file" net host $'a\nb'
check 2 "ini: an INI file cannot hold this text (SM_STATUS_INVALID_PARAMETER)" ini set "$file" net a=b c
same "the file" "# settings
[net]
host=beta
 port = 22
mask=24
[disk]
[new]
a=b = c" "$(cat "$file")"
long=$(printf '%05000d' 7)
check 0 "" ini set /tmp/fresh/other.ini net long "$long"
check 0 "$long" ini get /tmp/fresh/other.ini net long
same "its mode" 1664 "$(stat -c %a /tmp/fresh/other.ini)"
finish
