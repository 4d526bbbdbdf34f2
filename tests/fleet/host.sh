#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# host.sh NUMBER ENTRIES PER-SECOND: one host, in its sandbox. In systemd's place it makes the
# spool's folder and starts the follower as the examples say and, like rsyslog, again when it ends.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"
folder=$QVX_FLEET/host$1
echo "host$1" >/proc/sys/kernel/hostname
mount -t tmpfs tmpfs /var
mkdir -p /var/lib/qvxctl /var/spool/rsyslog "$folder"
read -r spool mode user group _ < <(sed -n 's/^d //p' examples/fleet/qvxctl-follow.tmpfiles)
install -d -m "$mode" -o "$user" -g "$group" "$spool"
echo "192.0.2.1 collector.example" >>/etc/hosts
ln -s "$QVX_BUILD/qvxctl" /run/qvxctl
printf 'global(workDirectory="/var/spool/rsyslog")\n' >/run/rsyslog.conf
cat examples/fleet/rsyslog-host.conf >>/run/rsyslog.conf

touch "$folder/up"
until ip addr add "192.0.2.1$1/24" dev eth0 2>/dev/null; do
  sleep 0.1
done
ip link set lo up
ip link set eth0 up

children=()
unit=examples/fleet/qvxctl-follow.service
read -ra follower < <(sed -n 's|^ExecStart=/usr/bin/qvxctl|/run/qvxctl|p' "$unit")
output=$(sed -n 's/^StandardOutput=append://p' "$unit")
again "$folder/follower" "${follower[@]}" >>"$output" &
children+=($!)
again "$folder/forwarder" rsyslogd -n -f /run/rsyslog.conf -i NONE &
children+=($!)
(
  while :; do
    lines=$(grep -c FLEET "$output" 2>/dev/null) || true
    echo "${lines:-0}" >"$folder/written.new"
    mv "$folder/written.new" "$folder/written"
    sleep 0.2
  done
) &
children+=($!)
"$QVX_BUILD/tests/fleet/fleet_writer" "$2" "$3" &
wait $!
touch "$folder/done"
wait "${children[@]}"
