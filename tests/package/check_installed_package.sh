#!/usr/bin/env bash
# Installs the build into a scratch prefix, builds the consumer project against it with
# find_package(kestrel) alone and again with pkg-config, runs what it built, and runs
# the installed programs.
#   check_installed_package.sh BUILD_DIR SOURCE_DIR WORK_DIR [EXTRA_CXX_FLAGS]
set -euo pipefail
build=$1 source=$(cd "$2" && pwd) work=$3 flags=${4:-}
rm -rf "$work"
cmake --install "$build" --prefix "$work/prefix" >/dev/null
cmake -S "$source/tests/package/consumer" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" \
  -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$flags" >/dev/null
cmake --build "$work/build" >/dev/null
"$work/build/core_host" "$work/shapes.kpr" "$source/examples/shapes.h"
if [ -x "$work/build/widget_host" ]; then
  QT_QPA_PLATFORM=offscreen "$work/build/widget_host" "$work/shapes.kpr"
fi
# The same host built with make's tools alone, through pkg-config (static linking needs
# the private libraries too).
pc_dir=$(dirname "$(find "$work/prefix" -name kestrel.pc | head -n 1)")
pc_flags=$(PKG_CONFIG_PATH="$pc_dir" pkg-config --static --cflags --libs kestrel)
# shellcheck disable=SC2086
c++ -std=c++20 $flags "$source/tests/package/consumer/core_host.cpp" -o "$work/core_host_pc" $pc_flags
"$work/core_host_pc" "$work/shapes_pc.kpr" "$source/examples/shapes.h"
cmp "$work/shapes.kpr" "$work/shapes_pc.kpr"
# The programs install beside the libraries.
"$work/prefix/bin/kestrel" --version
"$work/prefix/bin/kestrel-ctags" --version | grep -q "Universal Ctags"
if [ -x "$work/prefix/bin/kestrel-view" ]; then "$work/prefix/bin/kestrel-view" --version; fi
echo "installed package: consumer built and ran"
