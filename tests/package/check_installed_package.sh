#!/usr/bin/env bash
# Installs the build into a scratch prefix, builds the consumer project against it with
# find_package(kestrel) alone, and runs what it built.
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
echo "installed package: consumer built and ran"
