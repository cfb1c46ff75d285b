#!/usr/bin/env bash
# Leaves two Debian packages in dist/: kavroctl for machines without a screen, kavro with the window. They are made from
# the optimised build that ./run makes too, and are the same bytes wherever and however often they are made from a commit.
set -eu
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

packages+=("${package_packages[@]}")
install_missing
build release kavro kavroctl kavrosim manual

stage=$root/build/package/kavro
rm -rf "$root/build/package"
mkdir -p "$stage" "$root/dist"
cp -rL "$root/packaging/debian" "$stage/debian"
cp "$root/README.md" "$stage"
(cd "$stage" && KAVRO_BUILD=$root/build dpkg-buildpackage --build=binary --no-sign --no-check-builddeps) \
    >"$root/build/package/log" 2>&1 || { cat "$root/build/package/log" >&2; fail "the packages could not be made; see above."; }
rm -f "$root"/dist/*.deb
mv "$root"/build/package/*.deb "$root/dist"
ls "$root"/dist/*.deb
