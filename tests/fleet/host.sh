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

# In systemctl's place, for logrotate. A follower that was just killed is about to start anyway.
mkdir /run/bin
cat >/run/bin/systemctl <<END
#!/bin/sh
[ "\$*" = "restart qvxctl-follow" ] || exit 1
kill "\$(cat "$folder/follower")" 2>/dev/null || true
END
chmod +x /run/bin/systemctl
rotate() {
  local before
  before=$(stat -c %i "$output")
  install -m 0644 examples/fleet/logrotate /run/logrotate
  PATH=/run/bin:$PATH logrotate --force --state /run/logrotate.state /run/logrotate
  until [ -e "$output" ]; do sleep 0.1; done
  [ "$(stat -c %i "$output")" -ne "$before" ]
}

children=()
unit=examples/fleet/qvxctl-follow.service
read -ra follower < <(sed -n 's|^ExecStart=/usr/bin/qvxctl|/run/qvxctl|p' "$unit")
output=$(sed -n 's/^StandardOutput=append://p' "$unit")
# As systemd does, each start opens the output anew.
# shellcheck disable=SC2016
again "$folder/follower" bash -c 'exec "${@:2}" >>"$1"' sh "$output" "${follower[@]}" &
children+=($!)
again "$folder/forwarder" rsyslogd -n -f /run/rsyslog.conf -i NONE &
children+=($!)
(
  while :; do
    cat "$spool"/* 2>/dev/null | grep -c FLEET >"$folder/written.new" || true
    mv "$folder/written.new" "$folder/written"
    sleep 0.2
  done
) &
children+=($!)
(
  while :; do
    if [ -e "$folder/rotate" ]; then
      rotate
      rm "$folder/rotate"
    fi
    sleep 0.1
  done
) &
children+=($!)
"$QVX_BUILD/tests/fleet/fleet_writer" "$2" "$3" &
wait $!
touch "$folder/done"
wait "${children[@]}"
