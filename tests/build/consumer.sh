#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the tree, builds a host against it with CMake and with pkg-config, and runs both.
# consumer.sh BUILD_DIR SOURCE_DIR WORK_DIR LIBDIR
set -euo pipefail
build=$1 source=$2 work=$3 libdir=$4
rm -rf "$work"
mkdir -p "$work"
# Staged to one place and moved to another: the installed tree must not know where it was built.
cmake --install "$build" --prefix "$work/staged" >"$work/install.log"
mv "$work/staged" "$work/prefix"

cmake -S "$source/tests/build/consumer" -B "$work/build" -G Ninja \
  -DCMAKE_PREFIX_PATH="$work/prefix" >"$work/configure.log"
cmake --build "$work/build" >"$work/build.log"
export DIAGSRUNNER_HARDWARE_CONF=/dev/null
"$work/build/consumer" | tee "$work/tests.txt"
grep -Eq '\||No matching' "$work/tests.txt"

flags=$(PKG_CONFIG_PATH="$work/prefix/$libdir/pkgconfig" \
  pkg-config --define-variable=prefix="$work/prefix" --cflags --libs diagsrunner)
# shellcheck disable=SC2086  # One word per flag.
c++ -std=c++17 "$source/tests/build/consumer/main.cpp" -o "$work/by-pkg-config" $flags \
  -Wl,-rpath,"$work/prefix/$libdir"
"$work/by-pkg-config" >"$work/tests2.txt"
diff "$work/tests.txt" "$work/tests2.txt"

# The installed command has its providers and the rules that it cites.
test -f "$work/prefix/share/doc/diagsrunner/provider-rules.md"
env -u DIAGSRUNNER_ROOT "$work/prefix/bin/diagsrun" provider check | tee "$work/check.txt"
grep -Eqx 'hardware: ok, [0-9]+ classes in 1 library' "$work/check.txt"
