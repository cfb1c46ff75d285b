#!/bin/bash
# Runs as root in a bare Debian that scripts/check_package.sh makes: installs the packages beside it, runs the programs as
# an ordinary user, installs them again, removes them, and looks for what is left.
set -eu
cd "$(dirname "$0")"
export DEBIAN_FRONTEND=noninteractive
settings=/home/tester/.config/kavro

fail() {
    echo "try_package.sh: $1" >&2
    exit 1
}

quietly() {
    "$@" >log 2>&1 || { cat log >&2; fail "this failed: $*"; }
}

as_user() {
    runuser --user tester -- env HOME=/home/tester QT_QPA_PLATFORM=offscreen "$@"
}

useradd --create-home tester
quietly apt-get install -y --no-install-recommends ./kavroctl_*.deb
[ -z "$(dpkg-query --show 'libqt6widgets*' 2>/dev/null)" ] || fail "kavroctl brought windows with it."
as_user kavroctl --version
[ -s '/usr/lib/systemd/system/kavro-monitor@.service' ] || fail "the service of a monitor is missing."
as_user kavroctl search --demo --to 3
as_user kavroctl monitor --demo --to 3 --count 1 --interval 0 --store /home/tester/hall.sqlite
as_user kavroctl history /home/tester/hall.sqlite --csv | grep -q ',1,8210,0,' || fail "kavroctl history has no value."
echo '{"format": "kavro-line", "version": 1, "name": "Hall", "modules": [{"address": 1, "model": "8210", "settings": {}}]}' \
    >/home/tester/hall.kavro.json
as_user kavroctl report /home/tester/hall.kavro.json /home/tester/hall.pdf
[ "$(head -c 5 /home/tester/hall.pdf)" = %PDF- ] || fail "kavroctl report made no PDF file."

quietly apt-get install -y --no-install-recommends ./kavro_*.deb
as_user kavro --version
# A session of its own, ended as the desktop ends one.
(cd /home/tester && as_user timeout --preserve-status --signal=TERM 4 kavro --demo) || fail "kavro --demo did not run."
[ -s $settings/demo/COM.CFG ] || fail "kavro kept no settings."
cksum $settings/demo/* >before

quietly dpkg --install ./*.deb # an upgrade, as dpkg sees it
dpkg --listfiles kavro kavroctl | grep kavro >files
quietly apt-get purge -y --autoremove kavro kavroctl
cksum $settings/demo/* | cmp before - || fail "the settings of a user were touched."

while read -r file; do
    [ ! -e "$file" ] || fail "this is left: $file"
done <files
left=$(find / -xdev \( -path /proc -o -path /home -o -path /root -o -path /tmp \) -prune -o -iname '*kavro*' -print)
left+=$(grep -r -l -i kavro /etc /usr /var/lib/dpkg 2>/dev/null | grep -v -e '-old$' || true)
[ -z "$left" ] || fail "this is left: $left"
echo "Nothing is left but the settings of the user."
