# shellcheck shell=bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# What the tests of the examples share. Each runs in its own sandbox, sources this file, runs
# its program and ends with finish, whose exit status is 0 only if all came out as it should.
set -euo pipefail

[ -e /run/qvx-sandbox ] || {
  echo "$0: for the sandbox only" >&2
  exit 1
}
export LC_ALL=C.UTF-8 TZ=UTC PATH="$QVX_BUILD/examples:$PATH"
role_map=/etc/cim/zarn/plinthos/qvxrolemap
checks=0
wrong=0

# Compares two texts.
same() { # TITLE EXPECTED ACTUAL
  checks=$((checks + 1))
  if [ "$2" != "$3" ]; then
    printf '%s\n  should be:\n%s\n  is:\n%s\n' "$1" "$2" "$3" >&2
    wrong=$((wrong + 1))
  fi
}

# Runs a command and compares its exit status and all that it prints.
check() { # EXPECTED-STATUS EXPECTED-OUTPUT COMMAND ...
  local status=0 output expected=$1 text=$2
  shift 2
  output=$("$@" 2>&1) || status=$?
  same "$*" "exit $expected: $text" "exit $status: $output"
}

finish() {
  echo "$checks checks, $wrong wrong"
  [ "$wrong" -eq 0 ]
}

write_role_map() {
  cat >"$role_map"
  chmod 0640 "$role_map"
}

add_user() { # NAME ID PASSWORD-FIELD [AGING-FIELDS]
  echo "$1:x:$2:$2::/nonexistent:/usr/sbin/nologin" >>/etc/passwd
  echo "$1:x:$2:" >>/etc/group
  echo "$1:$3:${4:-20000:0:99999:7:::}" >>/etc/shadow
}
