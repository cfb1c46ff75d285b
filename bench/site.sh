#!/usr/bin/env bash
# What one box carries: LINES simulated lines of 32 modules at 9600 baud each, monitored as fast as they allow, into a
# PostgreSQL database and an MQTT broker of its own: bench/site.sh [BUILD_FOLDER] [LINES] [SECONDS] [STORE] [BROKER]
# STORE and BROKER are "yes" or "no". Needs postgresql, libqt6sql6-psql, mosquitto and mosquitto-clients.
# The simulated lines, which no real box has, are counted apart. SETTLE_S is how long it runs before it is measured.
set -euo pipefail

build=${1:-$(cd "$(dirname "$0")/.." && pwd)/build}
lines=${2:-32} seconds=${3:-60} store=${4:-yes} broker=${5:-yes}
kavroctl=$build/src/cli/kavroctl kavrosim=$build/src/cli/kavrosim
postgres=$(echo /usr/lib/postgresql/*/bin | awk '{ print $NF }')
postgres_port=${POSTGRES_PORT:-55432} mqtt_port=${MQTT_PORT:-51883}

work=$(mktemp -d)
chmod 755 "$work"
as_server=()
if [ "$(id -u)" -eq 0 ]; then
    as_server=(setpriv --reuid=nobody --regid=nogroup --clear-groups)
fi
monitors=() simulators=() servers=()
end() {
    kill -TERM "${monitors[@]}" "${simulators[@]}" 2>/dev/null || true
    kill -INT "${servers[@]}" 2>/dev/null || true # a database that is asked by SIGTERM waits for its clients
    wait 2>/dev/null || true
    rm -rf --one-file-system "$work"
}
trap end EXIT
trap 'exit 1' INT TERM
export HOME=$work XDG_CONFIG_HOME=$work XDG_DATA_HOME=$work PGPASSWORD=none

await() { # COMMAND ...: until it succeeds
    local tries
    for tries in $(seq 200); do
        "$@" >/dev/null 2>&1 && return 0
        sleep 0.1
    done
    echo "site.sh: gave up waiting for: $*" >&2
    exit 1
}

sql() { psql --quiet --tuples-only --no-align --host 127.0.0.1 --port "$postgres_port" --username postgres "${@:2}" --command "$1"; }

start_database() {
    mkdir "$work/database"
    [ ${#as_server[@]} -eq 0 ] || chown nobody:nogroup "$work/database"
    (cd "$work/database" && LC_ALL=C "${as_server[@]}" "$postgres/initdb" --auth=trust --username=postgres --pgdata data >"$work/initdb.log")
    (cd "$work/database" && exec "${as_server[@]}" "$postgres/postgres" -D data -p "$postgres_port" -c listen_addresses=127.0.0.1 \
        -c unix_socket_directories= >"$work/postgres.log" 2>&1) &
    servers+=($!)
    await sql "SELECT 1"
    sql "CREATE DATABASE site"
}

start_broker() {
    printf 'listener %s 127.0.0.1\nallow_anonymous true\npersistence false\nmax_queued_messages 0\nuser root\n' "$mqtt_port" >"$work/mosquitto.conf"
    "$(command -v mosquitto || echo /usr/sbin/mosquitto)" -c "$work/mosquitto.conf" >"$work/mosquitto.log" 2>&1 &
    servers+=($!)
    await mosquitto_sub -p "$mqtt_port" -t '$SYS/broker/version' -C 1 -W 1
    mosquitto_sub -p "$mqtt_port" -q 1 -t 'site/+/+/+' -F %t >"$work/messages" & # somebody who looks
    servers+=($!)
}

# The models that one would mix, with one value each but for the one that reads eight.
write_line() {
    local models=(8250 8210 8320 8310 8210 8410 8320 8210) address separator=
    printf '{"seed":3,"modules":['
    for address in $(seq 32); do
        printf '%s{"model":"%s","address":%d,"baud":9600}' "$separator" "${models[$((address % 8))]}" "$address"
        separator=,
    done
    printf ']}\n'
}

start_line() { # NUMBER
    "$kavrosim" --line "$work/line.json" --link "$work/tty$1" >/dev/null &
    simulators+=($!)
}

start_monitor() { # NUMBER
    local options=()
    [ "$store" = no ] || options+=(--store "postgresql://postgres@127.0.0.1:$postgres_port/site")
    [ "$broker" = no ] || options+=(--mqtt "mqtt://127.0.0.1:$mqtt_port/site")
    [ ${#options[@]} -eq 0 ] || options+=(--line "line$1" --spool "$work/line$1.spool")
    "$kavroctl" monitor --port "1=$work/tty$1" --map "$work/map.json" --interval 0 --csv "${options[@]}" >"$work/values$1.csv" 2>>"$work/notes" &
    monitors+=($!)
}

# Processor time of processes and their children, in hundredths of a second.
ticks() { # PID ...
    local sum=0 pid time
    for pid in "$@"; do
        for time in $(cat "/proc/$pid/stat" 2>/dev/null | awk '{ sub(/.*\) /, ""); print $12 + $13 + $14 + $15 }'); do
            sum=$((sum + time))
        done
    done
    echo "$sum"
}

with_children() { # PID ...
    local pid
    for pid in "$@"; do
        echo "$pid" && pgrep --parent "$pid" || true
    done
}

# In KiB, on average of the monitors: resident, its part of what is shared included, its own alone.
memory() {
    for pid in "${monitors[@]}"; do
        cat "/proc/$pid/smaps_rollup"
    done | awk -v count="${#monitors[@]}" '/^Rss/ { rss += $2 } /^Pss:/ { pss += $2 } /^Private/ { own += $2 }
        END { printf "%.1f MiB resident, %.1f with its part of what is shared, %.1f its own\n", rss / count / 1024, pss / count / 1024, own / count / 1024 }'
}

# Of the whole machine, in hundredths of a second: what is done, idle, waiting for a disk.
machine() { awk '/^cpu / { print $2 + $3 + $4 + $7 + $8, $5, $6 }' /proc/stat; }

# KiB that the processes have sent to the disk.
written() { # PID ...
    local pid
    for pid in "$@"; do
        cat "/proc/$pid/io"
    done | awk '/^write_bytes/ { sum += $2 } END { printf "%d\n", sum / 1024 }'
}

values() { cat "$work"/values*.csv | grep -vc '^time,'; }
rows() { [ "$store" = no ] && echo 0 || sql "SELECT count(*) FROM readings" --dbname site; }
messages() { [ "$broker" = no ] && echo 0 || wc -l <"$work/messages"; }

[ "$store" = no ] || start_database
[ "$broker" = no ] || start_broker
write_line >"$work/line.json"
for number in $(seq "$lines"); do
    start_line "$number"
done
for number in $(seq "$lines"); do
    await test -e "$work/tty$number"
done
"$kavroctl" search --port "1=$work/tty1" --to 33 --json >"$work/map.json" 2>/dev/null
for number in $(seq "$lines"); do
    start_monitor "$number"
done
sleep "${SETTLE_S:-20}"

mapfile -t server_pids < <(with_children "${servers[@]}")
read -r busy idle waiting < <(machine)
begin=$(date +%s%N) read=$(values) stored=$(rows) published=$(messages)
to_disk=$(written "${monitors[@]}") of_monitors=$(ticks "${monitors[@]}") of_simulators=$(ticks "${simulators[@]}")
declare -A of_server=()
for pid in "${server_pids[@]}"; do
    of_server[$pid]=$(ticks "$pid")
done
sleep "$seconds"
mapfile -t server_pids < <(with_children "${servers[@]}")
to_disk=$(($(written "${monitors[@]}") - to_disk)) of_monitors=$(($(ticks "${monitors[@]}") - of_monitors)) of_simulators=$(($(ticks "${simulators[@]}") - of_simulators))
of_servers=
for pid in "${server_pids[@]}"; do
    name=$(cat "/proc/$pid/comm" 2>/dev/null || echo gone)
    of_servers+="$name $(($(ticks "$pid") - ${of_server[$pid]:-0}))"$'\n'
done
read -r busy2 idle2 waiting2 < <(machine)
passed_ms=$((($(date +%s%N) - begin) / 1000000))
read=$(($(values) - read)) stored=$(($(rows) - stored)) published=$(($(messages) - published))

share() { awk -v t="$1" -v ms="$passed_ms" 'BEGIN { printf "%.3f", t * 10 / ms }'; } # of one core
rate() { awk -v n="$1" -v ms="$passed_ms" 'BEGIN { printf "%.0f", n * 1000 / ms }'; }
echo "$lines lines of 32 modules, store $store, broker $broker, ${passed_ms} ms:"
echo "readings a second: $(rate "$read") read, $(rate "$stored") in the database, $(rate "$published") messages at the broker"
echo "cores: kavroctl $(share "$of_monitors") ($(awk -v s="$(share "$of_monitors")" -v n="$lines" 'BEGIN { printf "%.4f", s / n }') a line), kavrosim $(share "$of_simulators")"
echo "$of_servers" | awk 'NF == 2 { sum[$1] += $2 } END { for (name in sum) print name, sum[name] }' | while read -r name sum; do
    echo "cores: $name $(share "$sum")"
done
echo "a monitor: $(memory)"
echo "disk: $(rate "$((to_disk / lines))") KiB a second and line, values as text included"
echo "whole machine: $(share $((busy2 - busy))) cores busy, $(share $((waiting2 - waiting))) waiting for a disk, $(share $((idle2 - idle))) idle"
[ ! -s "$work/notes" ] || { echo "notes of the monitors:"; sort "$work/notes" | uniq -c | sort -rn | head -5; }

kill -TERM "${monitors[@]}"
wait "${monitors[@]}" || true
monitors=()
sleep 1
echo "after the end: $(values) read, $(rows) in the database, $(messages) at who looks, $(cat "$work"/*.spool 2>/dev/null | wc -c) bytes of spools"
[ "$store" = no ] || sql "SELECT 'database: ' || pg_size_pretty(pg_total_relation_size('readings')) || ', ' || pg_total_relation_size('readings') / greatest(count(*), 1) || ' bytes a reading' FROM readings" --dbname site
