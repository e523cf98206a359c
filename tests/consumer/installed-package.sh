#!/usr/bin/env bash
# installed-package.sh SOURCE_DIR BUILD_DIR LINK_FLAGS
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

expect_output() { # <program>
  local output
  output=$("$1") || fail "$1 ended with status $?"
  [ "$output" = "$expected" ] || fail "$1 printed: $output"
}

expected='4.5
ab
Fan.Speed
no study'

cd "$source_dir"
tools/install "$build_dir" "$place/first"
cp -r tests/consumer/program "$place/program"
cmake -S "$place/program" -B "$place/build" -G Ninja -DCMAKE_PREFIX_PATH="$place/first" -DCMAKE_CXX_FLAGS="$flags" \
  >"$place/configure.log" 2>&1 || { cat "$place/configure.log"; fail "the package was not found"; }
cmake --build "$place/build" >"$place/build.log" 2>&1 || { cat "$place/build.log"; fail "the program was not built"; }
grep -q "$source_dir" "$place/build/build.ninja" && fail "the program was built against the source tree"
expect_output "$place/build/consumer"

# The same program built against, and run from, the prefix at another place.
mv "$place/first" "$place/second"
rm -rf "$place/build"
cmake -S "$place/program" -B "$place/build" -G Ninja -DCMAKE_PREFIX_PATH="$place/second" -DCMAKE_CXX_FLAGS="$flags" \
  >"$place/configure.log" 2>&1 || { cat "$place/configure.log"; fail "the moved package was not found"; }
cmake --build "$place/build" >"$place/build.log" 2>&1 || { cat "$place/build.log"; fail "not built against the moved package"; }
expect_output "$place/build/consumer"
if [ -x "$build_dir/bin/optstudy" ]; then
  "$place/second/bin/optstudy" --help >/dev/null || fail "the installed command does not run in the moved prefix"
  (cd "$place" && second/bin/optstudy init demo && second/bin/optstudy run demo/beam.study.yaml) >"$place/run.log" 2>&1 \
    || { cat "$place/run.log"; fail "the installed command does not write and run an example"; }
fi

"$place/second/share/optstudy/uninstall"
[ ! -e "$place/second" ] || fail "left behind: $(find "$place/second")"
