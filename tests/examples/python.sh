#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# examples/qvxcs.py: the library from Python.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/users.sh"

export LD_LIBRARY_PATH=$QVX_BUILD PYTHONDONTWRITEBYTECODE=1
example="$(dirname "$0")/../../examples/qvxcs.py"
mkdir /tmp/data
shown="<Flags>0x1f</Flags>
disk 0:3 is full (16 bytes)
apple fig pear"
check 0 "$shown
seconds = 15
logged
root: 0x40007" "$example" /tmp/data
same "the setting" "[poll]
seconds=15" "$(cat /tmp/data/monitor.ini)"
same "entries of the log" 1 "$(grep -c '<Description>Fan 2 is slow</Description>' /tmp/data/events.xml)"
check 0 "$shown
seconds = 15
logged
paul: 0x3" "$example" /tmp/data paul
check 2 "$shown
qvxcs.py: the setting cannot be written (QVX_FAILED: No such file or directory)" \
  "$example" /tmp/none/deeper
mkdir /tmp/faulty
echo "[poll" >/tmp/faulty/monitor.ini
check 2 "$shown
qvxcs.py: the setting cannot be written (SM_STATUS_BAD_SECTION_HEADER)" "$example" /tmp/faulty
folder=$(dirname "$example")
same "the statuses' names" \
  "$(sed -En 's/^#define (SM_STATUS_\w+|QVX_FAILED) (0x\w+)u$/\2 \1/p' "$folder/../include/qvxcs/status.h")" \
  "$(cd "$folder" && python3 -c 'import qvxcs
for status, name in qvxcs.STATUS_NAMES.items(): print(f"0x{status:04X} {name}")')"
same "the statuses with a reason" \
  "$(sed -nE '/HasReason/,/return errno/s/^ *case (\w+):$/\1/p' "$folder/failure.h" | sort)" \
  "$(cd "$folder" && python3 -c 'import qvxcs; print(*sorted(qvxcs.WITH_REASON), sep="\n")')"
same "an errno from elsewhere" "no such key (SM_STATUS_KEY_NOT_FOUND)" \
  "$(cd "$folder" && python3 -c 'import qvxcs
qvxcs.ctypes.set_errno(2)
print(qvxcs.Failure("no such key", 0x107))')"
check 2 "usage: qvxcs.py FOLDER [USER]" "$example"
LD_LIBRARY_PATH=/nowhere
check 2 "qvxcs.py: libqvxcs.so.1: cannot open shared object file: No such file or directory" \
  "$example" /tmp/data
finish
