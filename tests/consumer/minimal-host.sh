#!/usr/bin/env bash
# minimal-host.sh SOURCE_DIR BUILD_DIR LINK_FLAGS
# The minimal host, taken out of the tree, is built and passes its tests with the installed package alone.
set -euo pipefail
source_dir=$1
build_dir=$2
flags=$3
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

fail() {
  echo "FAILED: $*"
  exit 1
}

cd "$source_dir"
tools/install "$build_dir" "$place/prefix"
cp -r examples/minimal-host "$place/minimal-host"
cd "$place"
cmake -S minimal-host -B build -G Ninja -DCMAKE_PREFIX_PATH="$place/prefix" -DCMAKE_CXX_FLAGS="$flags" \
  >configure.log 2>&1 || { cat configure.log; fail "the package was not found"; }
cmake --build build >build.log 2>&1 || { cat build.log; fail "the host was not built"; }
grep -q "$source_dir" build/build.ninja && fail "the host was built against the source tree"
ctest --test-dir build --output-on-failure --no-tests=error
