#!/usr/bin/env bash
# Which lines the tests reach: a table of files, and build-coverage/coverage.html. Arguments are passed on to ctest.
set -eu
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

packages+=("${test_packages[@]}" "${coverage_packages[@]}")
install_missing
build coverage
find "$(folder_of coverage)" -name '*.gcda' -delete # of the run before
export QT_QPA_PLATFORM=offscreen
ctest --test-dir "$(folder_of coverage)" --output-on-failure "$@" || fail "a test failed; see above."
gcovr -j "$(nproc)" --root "$root" --filter "$root/src/" --html "$(folder_of coverage)/coverage.html" --txt - "$(folder_of coverage)"
