#!/usr/bin/env bash
# Makes the screenshots of docs/screenshots afresh: the real program on the simulated line, in a virtual display.
# Needs the packages xvfb, openbox, xdotool and imagemagick, and the build of ./run.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
kavro=$root/build/src/app/kavro
shots=$root/docs/screenshots
work=$(mktemp -d)
display=:97

for program in Xvfb openbox xdotool import "$kavro"; do
    command -v "$program" >/dev/null || { echo "screenshots: $program is missing." >&2; exit 1; }
done

Xvfb $display -screen 0 1280x1024x24 >/dev/null 2>&1 &
server=$!
trap 'kill $server; rm -rf "$work"' EXIT
export DISPLAY=$display HOME=$work XDG_CONFIG_HOME=$work/.config
sleep 1
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

# shot NAME: the active window, with its frame. Only what the documents show is kept.
shot() {
    sleep 0.7
    case $1 in main-window | main-window-dark | searching | com-port | terminal) ;; *) return ;; esac
    import -window "$(xdotool getactivewindow)" -frame "$shots/$1.png"
}

press() {
    xdotool key "$1"
    sleep 0.7
}

# One round through the windows; SUFFIX tells light from dark.
round() {
    (cd "$work" && exec "$kavro" --demo) >/dev/null 2>&1 &
    local program=$!
    sleep 3
    press ctrl+f
    xdotool type 60
    press Return
    sleep 5
    shot "searching$1"
    sleep 12
    press Down
    shot "main-window$1"
    press alt+n
    press c
    shot "com-port$1"
    press Escape
    press alt+o
    press t
    for command in '$012' '$01M' '#01'; do
        xdotool type "$command"
        press Return
    done
    shot "terminal$1"
    press Escape
    press ctrl+q
    press Return
    wait $program
}

mkdir -p "$shots"
round ""
dark_theme
round "-dark"
