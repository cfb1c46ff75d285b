#!/usr/bin/env bash
# Makes the screenshots of docs/screenshots afresh: the real program on the simulated line, in a virtual display.
# Needs the packages xvfb, openbox, xdotool and imagemagick, and the build of ./run.
# screenshots.sh [BUILD_FOLDER [OUTPUT_FOLDER]]: into an output folder of your own go all pictures, light and dark.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
kavro=$(realpath "${1:-$root/build}")/src/app/kavro
documents=$root/docs/screenshots
shots=${2:-$documents}
work=$(mktemp -d)

for program in Xvfb openbox xdotool import "$kavro"; do
    command -v "$program" >/dev/null || { echo "screenshots: $program is missing." >&2; exit 1; }
done

Xvfb -displayfd 3 -screen 0 1280x1024x24 3>"$work/display" >/dev/null 2>&1 &
server=$!
trap 'kill $server; rm -rf "$work"' EXIT
until [ -s "$work/display" ]; do sleep 0.1; done
DISPLAY=:$(cat "$work/display")
export DISPLAY HOME=$work XDG_CONFIG_HOME=$work/.config
openbox >/dev/null 2>&1 &
sleep 1

# A dark theme as a desktop hands it to the program.
dark_theme() {
    mkdir -p "$XDG_CONFIG_HOME"
    cat >"$XDG_CONFIG_HOME/kdeglobals" <<'THEME'
[Colors:Window]
BackgroundNormal=42,46,50
ForegroundNormal=252,252,252
[Colors:View]
BackgroundNormal=27,30,32
BackgroundAlternate=35,38,41
ForegroundNormal=252,252,252
[Colors:Button]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
[Colors:Selection]
BackgroundNormal=61,174,233
ForegroundNormal=252,252,252
THEME
    export XDG_CURRENT_DESKTOP=KDE KDE_FULL_SESSION=true KDE_SESSION_VERSION=5
}

# shot NAME: the active window, with its frame. The documents get only the pictures that they show.
shot() {
    sleep 0.7
    [ "$shots" != "$documents" ] || grep -qr "screenshots/$1.png" "$root/README.md" "$root"/docs/*.md || return 0
    import -window "$(xdotool getactivewindow)" -frame "$shots/$1.png"
}

press() {
    for key in "$@"; do
        xdotool key "$key"
        sleep 0.4
    done
}

# begin: the program on its simulated line.
begin() {
    (cd "$work" && exec "$kavro" --demo) >/dev/null 2>&1 &
    program=$!
    sleep 3
}

finish() {
    press ctrl+q Return
    wait $program
}

# search ADDRESS: up to that address.
search() {
    press ctrl+f
    xdotool type "$1"
    press Return
}

# module LINE: selects that line of the list, counted from 1.
module() {
    press Down Home
    for ((line = 1; line < $1; ++line)); do xdotool key Down; done
    sleep 0.3
}

# open LETTER: an entry of the Operation menu.
open() {
    press alt+o "$1"
    sleep 1.2
}

# The steps of a replacement: nothing answers at address 21 of the demo line, and its 8250 at 22 is in its
# initialisation state.
replace_windows() {
    cat >"$work/hall.kavro.json" <<'LINE'
{"format": "kavro-line", "version": 1, "name": "Hall", "modules": [
  {"address": 1, "model": "8210", "settings": {"baud": 9600, "checksum": false}},
  {"address": 21, "model": "8250", "tag": "TT-101",
   "settings": {"baud": 19200, "checksum": true, "range": "0A", "channels": [0, 1, 2]}}]}
LINE
    begin
    open r
    press alt+o
    xdotool type "$work/hall.kavro.json"
    press Return
    sleep 2
    shot "replace-step-1$1"
    press alt+n
    sleep 14
    shot "replace-step-2$1"
    press alt+n
    sleep 2
    shot "replace-step-3$1"
    press alt+w
    sleep 4
    shot "replace-step-4$1"
    press Escape
    finish
}

# A loop check of an input of the demo line, whose signal moves, and of an output.
loop_windows() {
    cat >"$work/boiler.kavro.json" <<'LINE'
{"format": "kavro-line", "version": 1, "name": "Boiler house", "modules": [
  {"address": 5, "model": "8250", "settings": {"channels": [0, 2]},
   "channels": {"0": {"tag": "TT-101"}, "2": {"tag": "TT-102", "note": "behind the pump"}}},
  {"address": 8, "model": "8310", "tag": "TV-103", "settings": {}}, {"address": 10, "model": "8410", "settings": {}}]}
LINE
    begin
    open l
    xdotool type "$work/boiler.kavro.json"
    press Return
    sleep 1
    shot "loop-begin$1"
    press alt+d
    sleep 5
    shot "loop-input$1"
    press p p
    sleep 2
    press p
    sleep 2
    shot "loop-check$1"
    press Escape
    sleep 1
    finish
}

# The windows of the whole line; SUFFIX tells light from dark.
line_windows() {
    begin
    shot "first-start$1"
    press ctrl+f alt+f
    shot "search$1"
    press Escape
    search 60
    sleep 5
    shot "searching$1"
    sleep 12
    press Down
    shot "main-window$1"
    press alt+n c
    shot "com-port$1"
    press Escape
    open t
    for command in '$012' '$01M' '#01'; do
        xdotool type "$command"
        press Return
    done
    xdotool type '$05' # how it will be sent is shown
    shot "terminal$1"
    press Escape Escape
    traffic_windows "$1"
    line_file_windows "$1"
    open m
    xdotool getactivewindow windowsize 1150 640
    press Right Right space Down Down space Down Down Right space # ticks three values
    sleep 90
    shot "monitor$1"
    press Escape
    finish
}

# What passed so far, a line check of it, and the window that only listens.
traffic_windows() {
    press alt+n t
    xdotool getactivewindow windowsize 1150 640
    shot "traffic$1"
    press alt+o
    shot "listen-only$1"
    press Escape
    xdotool search --name '^Traffic$' windowactivate --sync
    press Escape
    press alt+n l
    press alt+s
    sleep 45
    shot "line-check$1"
    press Escape
    sleep 1
    [ "$(xdotool getactivewindow getwindowname)" != "Line Check" ] || press Escape
}

# A backup, what differs from it after some changes to the file, a restore, and one that was stopped.
line_file_windows() {
    local file=$work/boiler.kavro.json
    rm -f "$file"
    press alt+f b
    sleep 1
    xdotool type "$file"
    press Return
    shot "backup$1"
    press Return
    until [ -s "$file" ]; do sleep 0.5; done
    sleep 1
    sed -i -e '0,/"tag": ""/s//"tag": "TT-101"/' -e '0,/"range": "08"/s//"range": "0A"/' \
        -e '0,/"high-alarm": [0-9.]*/s//"high-alarm": 2.5/' -e '0,/"baud": 9600/s//"baud": 19200/' \
        -e 's/"address": 9,/"address": 99,/' "$file"
    press alt+f m
    sleep 1
    press Return
    sleep 15
    shot "compare$1"
    press alt+r
    sleep 1
    shot "restore$1"
    press alt+s alt+t
    sleep 3
    shot "restored$1"
    press Escape
    press alt+f t
    sleep 1
    press Return
    shot "cut-off$1"
    press Escape
    rm -f "$file".*
}

# The line in the list of a search up to address 24, and the pictures of that module's dialogs.
models=(
    "1 8210 cda" "2 8220 cda" "3 8230 cda" "4 8240 cda" "5 8250 cda" "6 8260 cda" "8 8310 cda" "9 8320 cda"
    "10 8410 cd" "11 8420 cd" "12 8430 cd" "13 8440 cd" "14 8450 cd" "15 8460 cd" "16 8470 cd" "17 8510 cd"
    "18 8610 c" "19 8250-initialisation c"
)
declare -A operation=([c]=configuration [d]=diagnostic [a]=calibration)

module_windows() {
    begin
    search 24
    sleep 9
    local entry line model letters index
    for entry in "${models[@]}"; do
        read -r line model letters <<<"$entry"
        module "$line"
        for ((index = 0; index < ${#letters}; ++index)); do
            local letter=${letters:index:1}
            open "$letter"
            sleep 1.5
            shot "${operation[$letter]}-$model$1"
            [ "$letter" != a ] || calibration_steps "$model$1"
            press Escape
        done
    done
    finish
}

# The further steps of the guide that is open.
calibration_steps() {
    local step
    case $1 in
    83*) for step in 2 3 4 5; do press Return && sleep 0.5 && shot "calibration-$1-step-$step"; done ;;
    *) press Return && shot "calibration-$1-step-2" && press alt+o && shot "calibration-$1-step-3" ;;
    esac
}

mkdir -p "$shots"
line_windows ""
module_windows ""
replace_windows ""
loop_windows ""
dark_theme
line_windows "-dark"
replace_windows "-dark"
loop_windows "-dark"
[ "$shots" = "$documents" ] || module_windows "-dark"
