#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# What the packages need to be built is what `scripts/setup package` installs: on a machine that has
# nothing yet, a package that is missing there stops the build.
set -euo pipefail
cd "$(dirname "$0")/../.."

# Helpers of debhelper come with it.
needed=$(sed -n '/^Build-Depends/,/^[^B ]/{s/^Build-Depends[^:]*://; /^[^ ]/d; p}' packaging/debian/control |
  tr ',' '\n' | awk 'NF { print $1 }' | grep -v '^debhelper-compat$\|^dh-sequence-')
[ "$(wc -l <<<"$needed")" -ge 5 ] || {
  echo "build_depends: cannot read packaging/debian/control"
  exit 1
}
installed=$(bash -c 'source <(sed -n "/^build=(/,/^packages=()/p" scripts/setup)
  printf "%s\n" "${package[@]}"')
missing=$(grep -vxF "$installed" <<<"$needed") || exit 0
echo "build_depends: scripts/setup package does not install: $missing"
exit 1
