#!/bin/sh
# Builds the bench programs and prints what they measure: bench/run.sh [BUILD_FOLDER]
# The build must be an optimised one; without a folder "build" beside the sources is used.
set -eu

source=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$source/build}

[ -f "$build/CMakeCache.txt" ] || cmake -S "$source" --preset release -B "$build" >/dev/null
cmake --build "$build" --target bench >/dev/null

"$build/bench/exchange_bench"
echo
"$build/bench/network_bench"
echo
"$build/bench/search_bench"
echo
"$build/bench/panel_bench"
echo
"$build/bench/monitor_bench"
echo
"$build/bench/late_bench" 20000
echo
"$build/bench/traffic_bench"
echo
"$build/bench/trend_bench"
echo
"$build/bench/history_bench"
echo
"$build/bench/damage_bench"
echo
"$build/bench/reader_fuzz" 1 10
"$build/bench/clicker_bench" 1 10
echo

if [ ! -x "$build/bench/startup_bench" ]; then
    echo "start: not measured, the X11 headers (libx11-dev) are missing"
    exit 0
fi
if ! command -v Xvfb >/dev/null; then
    echo "start: not measured, Xvfb (package xvfb) is missing"
    exit 0
fi

# A display and a home of their own, so that nothing else draws and no settings of the user matter.
scratch=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill "$server"; rm -rf "$scratch"' EXIT
Xvfb -displayfd 3 -br -screen 0 1280x1024x24 -nolisten tcp 3>"$scratch/display" 2>/dev/null &
server=$!
tries=0
until [ -s "$scratch/display" ]; do
    tries=$((tries + 1))
    [ "$tries" -le 100 ] || { echo "start: not measured, Xvfb did not start"; exit 1; }
    sleep 0.1
done

mkdir "$scratch/run"
chmod 700 "$scratch/run"
DISPLAY=":$(cat "$scratch/display")" HOME=$scratch XDG_CONFIG_HOME=$scratch XDG_RUNTIME_DIR=$scratch/run \
    QT_QPA_PLATFORM=xcb "$build/bench/startup_bench" "$build/bench/empty_window" "$build/src/app/kavro" --demo
