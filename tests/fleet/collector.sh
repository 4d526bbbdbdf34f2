#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# The collector, in its sandbox: a bridge for the hosts' links, and rsyslog with the example's file.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"
echo collector >/proc/sys/kernel/hostname
ip link set lo up
ip link add hosts type bridge
ip addr add 192.0.2.1/24 dev hosts
ip link set hosts up
mount -t tmpfs tmpfs /var
mkdir -p /var/log/qvxctl /var/spool/rsyslog
mount --bind "$QVX_FLEET/arrived" /var/log/qvxctl
printf 'global(workDirectory="/var/spool/rsyslog")\n' >/run/rsyslog.conf
cat examples/fleet/rsyslog-collector.conf >>/run/rsyslog.conf
touch "$QVX_FLEET/collector.up"
again "$QVX_FLEET/collector.pid" rsyslogd -n -f /run/rsyslog.conf -i NONE &
wait $!
