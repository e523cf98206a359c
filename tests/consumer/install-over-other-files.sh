#!/usr/bin/env bash
# install-over-other-files.sh SOURCE_DIR BUILD_DIR
# Installing twice into a prefix that others use as well, and uninstalling, leaves what was there, as it was.
set -euo pipefail
source_dir=$1
build_dir=$2
place=$(mktemp -d)
refusal=$(mktemp)
trap 'rm -rf "$place" "$refusal"' EXIT

fail() {
  echo "FAILED: $*"
  exit 1
}

listing() { (cd "$place" && find . -printf '%y %m %p\n' | sort && find . -type f -exec sha256sum {} + | sort); }

cd "$source_dir"
mkdir -p "$place/prefix/lib/other" "$place/prefix/empty"
echo kept >"$place/prefix/lib/other/file"
before=$(listing)
tools/install "$build_dir" "$place/prefix"
installed=$(listing)
[ "$installed" != "$before" ] || fail "nothing was installed"
tools/install "$build_dir" "$place/prefix"
[ "$(listing)" = "$installed" ] || fail "a second installation differs"

# A file that an earlier version installed, and that this one no longer has, goes with the next installation.
echo "folder share/optstudy/old" >>"$place/prefix/share/optstudy/install-manifest"
echo "file share/optstudy/old/file" >>"$place/prefix/share/optstudy/install-manifest"
mkdir "$place/prefix/share/optstudy/old"
echo old >"$place/prefix/share/optstudy/old/file"
tools/install "$build_dir" "$place/prefix"
[ ! -e "$place/prefix/share/optstudy/old/file" ] || fail "a file of the earlier version is still there"

bash "$place/prefix/share/optstudy/uninstall"
[ "$(listing)" = "$before" ] || fail "after uninstalling: $(listing)"

# Somebody else's file in our way is left alone, and nothing is installed beside it.
mkdir -p "$place/prefix/share/optstudy"
echo theirs >"$place/prefix/share/optstudy/uninstall"
before=$(listing)
tools/install "$build_dir" "$place/prefix" 2>"$refusal" && fail "a foreign file was overwritten"
grep -q 'share/optstudy/uninstall is there and is not ours' "$refusal" || fail "refused without saying why"

[ "$(listing)" = "$before" ] || fail "a refused installation left something"
rm -r "$place/prefix/share/optstudy"

# A manifest that points outside removes nothing.
tools/install "$build_dir" "$place/prefix"
echo outside >"$place/outside"
echo "file ../outside" >>"$place/prefix/share/optstudy/install-manifest"
bash "$place/prefix/share/optstudy/uninstall" 2>/dev/null && fail "a damaged manifest was accepted"
[ -e "$place/outside" ] || fail "the file outside is gone"
[ -e "$place/prefix/share/optstudy/uninstall" ] || fail "a damaged manifest removed something"
