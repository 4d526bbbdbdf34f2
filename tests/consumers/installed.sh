#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# Installs the library, moves it, and there builds consumer.c and consumer.cpp against it, by
# pkg-config and by CMake, and runs them in the sandbox.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"

sandbox=$build/tests/sandbox
IFS=. read -r major minor _ <<<"$version"

# Staged under one name, used under another: whatever remembers the first place fails.
DESTDIR=$folder/stage quietly cmake --install "$build" --prefix /usr
mv "$folder/stage/usr" "$folder/moved"
moved=$folder/moved

links=$(readlink "$moved/$libraries/libqvxcs.so" "$moved/$libraries/libqvxcs.so.$major" | xargs)
[ "$links" = "libqvxcs.so.$major libqvxcs.so.$version" ] || fail "libqvxcs.so points to: $links"
[ "$(ls "$moved/include")" = qvxcs ] || fail "headers of others are installed: $(ls "$moved/include")"
diff <(ls include/qvxcs) <(ls "$moved/include/qvxcs") || fail "not the public headers"
for file in share/man/man8/qvxctl.8 share/bash-completion/completions/qvxctl; do
  [ -e "$moved/bin/qvxctl" ] && is_there=1 || is_there=0
  [ -e "$moved/$file" ] && has_it=1 || has_it=0
  [ "$is_there" -eq "$has_it" ] || fail "qvxctl is installed: $is_there, but $file: $has_it"
done
if grep -rFl "$PWD/" "$moved"; then
  fail "these files name the folder of the build"
fi
say "installed and moved: the library, its links, its headers"

expected=$'/etc/cim/zarn/plinthos/vexilon/\nqvxtest\n<Answer>42</Answer>'
run() { # WHAT PROGRAM [ENVIRONMENT ...]
  local output
  output=$(env "${@:3}" "$sandbox" "$2") || fail "$1: $2 left with $?"
  [ "$output" = "$expected" ] || fail "$1: $2 printed: $output"
  say "$1: as expected"
}

# The folder of the .pc file alone: a library that the machine has installed is not looked at.
export PKG_CONFIG_LIBDIR=$moved/$libraries/pkgconfig
[ "$(pkg-config --modversion qvxcs)" = "$version" ] || fail "pkg-config reports another version"
pkg-config --atleast-version="$major.$minor" qvxcs
if pkg-config --atleast-version="$major.$((minor + 1))" qvxcs; then
  fail "pkg-config takes $version for $major.$((minor + 1))"
fi
read -ra flags <<<"$(pkg-config --cflags --libs qvxcs)"
strict=(-Wall -Wextra -pedantic-errors -Werror)
quietly gcc -std=c11 "${strict[@]}" tests/consumers/consumer.c -o "$folder/pc_c" "${flags[@]}"
quietly g++ -std=c++17 "${strict[@]}" tests/consumers/consumer.cpp -o "$folder/pc_cpp" "${flags[@]}"
unset PKG_CONFIG_LIBDIR
run "C11 by pkg-config" "$folder/pc_c" "LD_LIBRARY_PATH=$moved/$libraries"
run "C++17 by pkg-config" "$folder/pc_cpp" "LD_LIBRARY_PATH=$moved/$libraries"

quietly cmake -G Ninja -S tests/consumers -B "$folder/cmake" -DCMAKE_PREFIX_PATH="$moved"
grep -qF "qvxcs_DIR:PATH=$moved/" "$folder/cmake/CMakeCache.txt" || fail "CMake found another library"
quietly cmake --build "$folder/cmake"
run "C11 by CMake" "$folder/cmake/consumer_c"
run "C++17 by CMake" "$folder/cmake/consumer_cpp"
others=("$((major - 1)).9" "$major.$((minor + 1))" "$((major + 1)).0")
for wanted in "${others[@]}"; do
  if cmake -G Ninja -S tests/consumers -B "$folder/cmake-$wanted" -DCMAKE_PREFIX_PATH="$moved" \
    -DWANTED="$wanted" >/dev/null 2>&1; then
    fail "CMake takes $version for $wanted"
  fi
done
say "CMake takes $version for $major.0, and for none of ${others[*]}"
