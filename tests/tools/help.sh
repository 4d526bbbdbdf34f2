#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# Every script and tool answers --help with its usage, which begins with its name, and does nothing
# else: it runs in an empty copy of the tree's folders, which it leaves as it was.
set -euo pipefail
source=$(realpath "$(dirname "$0")/../..")
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
cp -r "$source/scripts" "$source/tools" "$tree"
files() { find "$tree" -type f -exec md5sum {} + | sort; }
before=$(files)

wrong=0
for command in "$tree"/scripts/* "$tree"/tools/*; do
  name=$(basename "$command")
  [[ $name != __pycache__ && $name != *.py ]] || continue  # a module is no command
  usage=$(timeout 10 "$command" --help </dev/null 2>&1) || {
    echo "$name --help fails: $usage"
    wrong=1
  }
  [[ ${usage#usage: } == "$name"* ]] || {
    echo "$name --help begins: $(head -n 1 <<<"$usage")"
    wrong=1
  }
done
[ "$(files)" = "$before" ] || {
  echo "--help changed files"
  wrong=1
}
exit "$wrong"
