#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# What qvxctl and the manual need may be installed after a first build, as the demo's: the next
# configuration of the same folder takes it up.
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$(mktemp -d)
trap 'rm -rf "$build"' EXIT

commands() { # CMAKE_OPTION ...: those that a build runs
  cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQVXCS_TESTS=OFF "$@" \
    >"$build/configure.log" 2>&1 || {
    cat "$build/configure.log" >&2
    return 1
  }
  ninja -C "$build" -t commands all
}
fail() {
  echo "found_later: $*" >&2
  exit 1
}

first=$(commands -DCMAKE_DISABLE_FIND_PACKAGE_CLI11=ON -DQVXCS_DOXYGEN=)
grep -q ' -o libqvxcs.so' <<<"$first" || fail "the library is not built"
grep -q ' -o qvxctl \|/tools/man ' <<<"$first" && fail "built without what it needs"
second=$(commands -DCMAKE_DISABLE_FIND_PACKAGE_CLI11=OFF -UQVXCS_DOXYGEN)
grep -q ' -o qvxctl ' <<<"$second" || fail "CLI11 is there now, but qvxctl is not built"
! command -v doxygen >/dev/null || grep -q '/tools/man ' <<<"$second" ||
  fail "Doxygen is there now, but the manual is not made"
refused=$(commands -DQVXCS_TOOLS=OFF -DQVXCS_MANUAL=OFF)
grep -q ' -o qvxctl \|/tools/man ' <<<"$refused" && fail "built although it is refused"
exit 0
