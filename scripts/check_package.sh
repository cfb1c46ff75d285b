#!/usr/bin/env bash
# Makes the packages and checks them: what Debian's own tools say, and that they install, run and go without a trace in a
# bare Debian made for this. That last part needs root, and is left out where this is not root or may not change its root.
# check_package.sh --reproducible also builds them in another folder, for the same bytes: before a release, as it compiles
# all once more.
set -eu
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

"$root/scripts/package.sh"
work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT

check_with_tools() {
    local deb
    lintian --fail-on error,warning --allow-root "$root"/dist/*.deb || fail "lintian complains; see above."
    for deb in "$root"/dist/*.deb; do
        dpkg-deb --extract "$deb" "$work/files"
    done
    desktop-file-validate "$work"/files/usr/share/applications/*.desktop || fail "the desktop entry is not valid."
    appstreamcli validate --no-net --pedantic "$work"/files/usr/share/metainfo/*.xml || fail "the metainfo is not valid."
    if dpkg-deb --field "$root"/dist/kavroctl_*.deb Depends | grep -i widgets; then
        fail "kavroctl depends on windows."
    fi
    for deb in "$root"/dist/*.deb; do
        if dpkg-deb --ctrl-tarfile "$deb" | tar --list | grep -E '(pre|post)(inst|rm)$'; then
            fail "$(basename "$deb") has a maintainer script, which must leave settings alone; look at it, then at this check."
        fi
    done
}

# A copy of what is here, changes included, in a folder with a longer name.
check_reproducible() {
    local other=$work/a-copy-elsewhere deb
    git clone --quiet "$root" "$other"
    (cd "$root" && git ls-files -z --cached --others --exclude-standard | tar --null --create --files-from=-) | tar --extract --directory "$other"
    TZ=Pacific/Auckland "$other/scripts/package.sh" >/dev/null
    for deb in "$root"/dist/*.deb; do
        cmp "$deb" "$other/dist/$(basename "$deb")" && continue
        dpkg-deb --raw-extract "$deb" "$work/here"
        dpkg-deb --raw-extract "$other/dist/$(basename "$deb")" "$work/there"
        diff --recursive --brief "$work/here" "$work/there" >&2 || true
        fail "$(basename "$deb") is not the same when built elsewhere."
    done
    echo "The packages are the same bytes when built in another folder."
}

inside() {
    unshare --mount --pid --fork --mount-proc="$work/bare/proc" chroot "$work/bare" "$@"
}

check_bare() {
    if [ "$(id -u)" -ne 0 ] || ! unshare --mount --pid --fork true 2>/dev/null; then
        echo "Left out: installing in a bare Debian, which needs root and a root folder of its own."
        return 0
    fi
    local release
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    mmdebstrap --quiet --variant=minbase --skip=cleanup/apt "$release" "$work/bare" || fail "no bare Debian could be made; see above."
    cp /etc/resolv.conf "$work/bare/etc/resolv.conf"
    cp "$root"/dist/*.deb "$root/scripts/try_package.sh" "$work/bare/root"
    inside /root/try_package.sh || fail "the packages do not do in a bare Debian; see above."
}

check_with_tools
check_bare
[ "${1:-}" != --reproducible ] || check_reproducible
