#!/usr/bin/env python3
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
"""judge.py ENTRIES FILE ...: what arrived from each host, one row per key, must be all it wrote."""
import json
import re
import sys

LENGTHS = {0: 16383, 50: 9000}  # of every hundred entries, as writer.c makes them


def description(number):
    return f"entry {number:06d} of a host among many".ljust(LENGTHS.get(number % 100, 0), ".")


wanted = [description(number) for number in range(1, int(sys.argv[1]) + 1)]
faults = 0
for path in sys.argv[2:]:
    rows = {}
    lines = torn = 0
    hosts = set()
    for line in open(path, encoding="utf-8"):
        lines += 1
        try:
            entry = json.loads(line)
        except ValueError:
            torn += 1
            continue
        hosts.add(entry["host"])
        if not re.match(r"entry \d{6} ", entry["description"]):
            continue
        key = (entry["host"], entry["time"], entry["offset"])
        if rows.setdefault(key, entry["description"]) != entry["description"]:
            print(f"{path}: two entries have the key {key}")
            faults += 1
    arrived = list(rows.values())
    missing = len(set(wanted) - set(arrived))
    twice = len(arrived) - len(set(arrived))
    in_order = arrived == sorted(arrived)
    print(f"{'/'.join(sorted(hosts))}: {lines} lines, {len(arrived)} entries, {missing} missing, "
          f"{twice} twice, {torn} torn, {'in order' if in_order else 'NOT in order'}")
    faults += missing + twice + torn + len(hosts) - 1 + (not in_order)
sys.exit(1 if faults else 0)
