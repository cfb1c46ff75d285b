#!/usr/bin/env bash
# Whether what needs no Qt also compiles for Windows. Nothing of it is run.
set -eu
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

packages=(cmake ninja-build nlohmann-json3-dev "${windows_packages[@]}")
install_missing
build windows
echo "The core compiles for Windows."
