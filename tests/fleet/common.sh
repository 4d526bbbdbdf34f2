# shellcheck shell=bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# What the hosts and the collector share: they run in a sandbox and start their services anew.
set -euo pipefail
cd "$(dirname "$0")/../.."
[ -e /run/qvx-sandbox ] || exit 1

trap 'kill $(jobs -p); exit 0' TERM
again() { # PID-FILE COMMAND ...
  local pid_file=$1
  shift
  while :; do
    setpriv --pdeathsig TERM "$@" &
    echo $! >"$pid_file"
    wait $! || true
    sleep 1
  done
}
