#!/usr/bin/env bash
# Whether all sources are laid out as clang-format lays them out. check_format.sh --fix lays them out.
set -eu
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

packages=("${style_packages[@]}")
install_missing
cd "$root"
how=(--dry-run --Werror)
[ "${1:-}" = --fix ] && how=(-i)
find src tests bench -name '*.cpp' -print0 -o -name '*.h' -print0 | xargs -0 -n 50 -P "$(nproc)" clang-format "${how[@]}" ||
    fail "these are laid out otherwise. scripts/check_format.sh --fix lays them out."
