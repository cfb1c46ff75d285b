# What ./run, ./test and the scripts share: sourced, not run. Installs what is missing from Debian's packages and builds.

packages=(g++ cmake ninja-build pkg-config qt6-base-dev qt6-serialport-dev libqt6sql6-sqlite libqt6svg6 qt6-wayland nlohmann-json3-dev libmosquitto-dev libgtest-dev fonts-dejavu-core)

# A device server, a database, a broker and its certificates, for ./test alone.
test_packages=(ser2net postgresql libqt6sql6-psql mosquitto openssl)

package_packages=(debhelper lintian desktop-file-utils appstream mmdebstrap) # for scripts/package.sh and its check alone

style_packages=(clang-format clang-tidy) # for scripts/check_format.sh and scripts/check_tidy.sh alone

windows_packages=(g++-mingw-w64-x86-64-posix) # for scripts/check_windows.sh alone

coverage_packages=(gcovr) # for scripts/coverage.sh alone

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

# The folder of a preset (CMakePresets.json).
folder_of() {
    [ "$1" = release ] && echo "$root/build" || echo "$root/build-$1"
}

# prepare PRESET: configures its folder when that has not been done.
prepare() {
    local folder log
    folder=$(folder_of "$1")
    log=$folder.log
    [ ! -f "$folder/build.ninja" ] || return 0
    # Warnings are errors where changes are checked, not where a newer compiler knows more of them.
    cmake -S "$root" --preset "$1" -DKAVRO_WERROR="${CI:+ON}" >"$log" 2>&1 ||
        { cat "$log" >&2; rm -f "$log"; fail "the build could not be prepared; see above."; }
    rm -f "$log"
}

# build PRESET [TARGET ...]
build() {
    local preset=$1
    shift
    prepare "$preset"
    ninja -C "$(folder_of "$preset")" --quiet "$@" || fail "the build failed; see above."
}
