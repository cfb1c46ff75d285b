# What ./run and ./test share: sourced, not run. Installs what is missing from Debian's packages and builds.

packages=(g++ cmake ninja-build pkg-config qt6-base-dev qt6-serialport-dev libqt6svg6 qt6-wayland nlohmann-json3-dev libgtest-dev fonts-dejavu-core)

test_packages=(ser2net) # a device server, for ./test alone

package_packages=(debhelper lintian desktop-file-utils appstream mmdebstrap) # for scripts/package.sh and its check alone

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

fail() {
    echo "$(basename "$0"): $1" >&2
    exit 1
}

installed() {
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

install_missing() {
    command -v dpkg-query >/dev/null ||
        fail "this is no Debian system; install the equivalents of: ${packages[*]}, then build with cmake."
    local missing=() package
    for package in "${packages[@]}"; do
        installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null ||
            fail "these packages are missing: ${missing[*]}. There is no sudo here; install them as root with: apt-get install ${missing[*]}"
        sudo=(sudo)
    fi
    echo "Installing with apt-get: ${missing[*]}"
    "${sudo[@]}" apt-get update -qq ||
        fail "apt-get could not read the package lists; check the network, then try again."
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
        fail "apt-get could not install: ${missing[*]}. See what it said above."
}

# build FOLDER [TARGET ...] -- [CMAKE OPTION ...]
build() {
    local folder=$root/$1 targets=()
    shift
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        targets+=("$1")
        shift
    done
    [ $# -gt 0 ] && shift
    if [ ! -f "$folder/build.ninja" ]; then
        # Warnings are errors where changes are checked, not where a newer compiler knows more of them.
        cmake -G Ninja -S "$root" -B "$folder" -DKAVRO_WERROR="${CI:+ON}" "$@" >"$folder.log" 2>&1 ||
            { cat "$folder.log" >&2; rm -f "$folder.log"; fail "the build could not be prepared; see above."; }
        rm -f "$folder.log"
    fi
    ninja -C "$folder" --quiet "${targets[@]}" || fail "the build failed; see above."
}
