#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# Two hosts and a collector, each in a sandbox with a network of its own, run the files of
# examples/fleet with the real rsyslog. While both hosts log, the first one's link is cut; meanwhile
# its spool is rotated twice and its follower, its forwarder and the collector are killed. Later the
# second one's forwarder is killed and its spool rotated. Every entry must arrive, each key names one
# entry, and a host's entries keep their order.
# FLEET_ENTRIES (1,000) is the number for each host.
set -euo pipefail
cd "$(dirname "$0")/../.."
here=$PWD/tests/fleet
build=$QVX_BUILD
folder=$build/fleet
entries=${FLEET_ENTRIES:-1000}
# A host's log moves to its backup after about 500 entries, and an offset may come again in the next
# log: at this rate not within the second that is in an entry's key.
rate=150
# About 20 entries a second arrive.
patience=$((120 + entries / 5))

say() { echo "fleet: $*"; }
fail() {
  say "$*" >&2
  for log in "$folder"/*.log; do
    sed "s|^|$(basename "$log"): |" "$log" | tail -n 20 >&2
  done
  exit 1
}
wait_for() { # SECONDS WHAT COMMAND ...
  local end=$((SECONDS + $1)) what=$2
  shift 2
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || fail "waited in vain for $what"
    sleep 0.1
  done
}
written() { [ "$(cat "$folder/host$1/written" 2>/dev/null || echo 0)" -ge "$2" ]; }
arrived() { # HOST: how many different entries
  grep -o 'entry [0-9]*' "$folder/arrived/192.0.2.1$1.json" 2>/dev/null | sort -u | wc -l
}
all_arrived() { [ "$(arrived 1)" -ge "$entries" ] && [ "$(arrived 2)" -ge "$entries" ]; }

if ! command -v rsyslogd >/dev/null || ! command -v logrotate >/dev/null ||
  [ ! -e "/usr/lib/$(uname -m)-linux-gnu/rsyslog/omrelp.so" ]; then
  say "needs the Debian packages logrotate, rsyslog and rsyslog-relp" >&2
  exit 1
fi
cmake --build "$build" --target sandbox qvxctl fleet_writer >/dev/null
rm -rf "$folder"
mkdir -p "$folder"/{arrived,host1,host2}
processes=()
clean_up() {
  local process
  for process in "${processes[@]}"; do
    kill "$process" 2>/dev/null || true
  done
  wait
}
trap clean_up EXIT

start() { # NAME COMMAND ...
  local name=$1
  shift
  QVX_FLEET=$folder "$build/tests/sandbox" "$@" >"$folder/$name.log" 2>&1 &
  processes+=($!)
}
start collector "$here/collector.sh"
wait_for 10 "the collector" test -e "$folder/collector.up"
for host in 1 2; do
  start "host$host" "$here/host.sh" "$host" "$entries" "$rate"
  wait_for 10 "host $host" test -e "$folder/host$host/up"
  nsenter -t "${processes[0]}" -n ip link add "host$host" type veth peer name eth0 \
    netns "${processes[host]}"
  nsenter -t "${processes[0]}" -n ip link set "host$host" master hosts up
done
kill_one() { # PID-FILE
  kill -KILL "$(cat "$folder/$1")"
}
rotate() { # HOST
  touch "$folder/host$1/rotate"
  wait_for 20 "the rotation of host $1" test ! -e "$folder/host$1/rotate"
}
link() { nsenter -t "${processes[0]}" -n ip link set host1 "$1"; }

wait_for "$patience" "a fifth of the entries" written 1 $((entries / 5))
link down
sleep 2
kill_one host1/follower
say "the first host's link is cut, and then its follower killed"
wait_for "$patience" "the follower to go on" written 1 $((entries * 2 / 5))
rotate 1
wait_for "$patience" "the new spool file" written 1 $((entries / 2))
rotate 1
say "its spool is rotated twice"
kill_one host1/forwarder
# The system still holds lines of the killed forwarder; a new collector does not take them.
kill_one collector.pid
say "the forwarder and the collector are killed too"
sleep 3
link up
wait_for "$patience" "half of the entries" written 2 $((entries / 2))
kill_one host2/forwarder
rotate 2
say "the second host's forwarder is killed, and its spool rotated"
wait_for "$patience" "the first host's writer" test -e "$folder/host1/done"
wait_for "$patience" "the second host's writer" test -e "$folder/host2/done"
wait_for "$patience" "all entries at the collector" all_arrived
"$here/judge.py" "$entries" "$folder"/arrived/192.0.2.1[12].json || fail "the judge is not content"
