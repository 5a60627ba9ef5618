#!/usr/bin/env bash
# A large upload that is interrupted four times: soak.sh BIN-FOLDER [GiB]. ./dev soak builds and calls it.
# Ends with 0 only if each run went on with what the server held, the two ends are the same, and neither
# program ever had more memory than it may.
set -euo pipefail
export LC_ALL=C.UTF-8

bin=$(readlink -f "$1")
gib=${2:-5}
most_kib=$((64 * 1024))
scratch=$(mktemp -d)
nas_root=$scratch/nas
nas_log=$scratch/nas.log
put_log=$scratch/put.log
peaks=$scratch/peaks
film=$scratch/film.bin
nas= client= watchers=()

end_process() {
    [ -n "$1" ] || return 0
    kill -"$2" "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

clean_up() {
    local status=$?
    trap - EXIT
    end_process "$client" KILL
    end_process "$nas" TERM
    rm -rf "$scratch"
    exit "$status"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

say() { printf '%s\n' "$*"; }
die() {
    printf '\nThe soak failed: %s\n' "$*" >&2
    for log in "$put_log" "$nas_log"; do
        [ ! -e "$log" ] || { printf -- '--- the end of %s\n' "${log##*/}" >&2; tail -n 5 "$log" >&2; }
    done
    exit 1
}
mib() { awk -v bytes="$1" 'BEGIN { printf "%.1f MiB", bytes / 1048576 }'; }

# The kernel keeps a process's highest memory; it is read until the process has gone.
watch_memory() {
    local name=$1 pid=$2 line last=0
    while line=$(grep VmHWM "/proc/$pid/status" 2>/dev/null); do
        last=${line//[^0-9]/}
        printf '%s %s\n' "$name" "$last" >"$peaks/$name.$pid"
        sleep 0.05
    done
}

start_nas() {
    "$bin/torvi-nas" --root "$nas_root" --port "${port:-0}" --user alice:wonderland "$@" >"$nas_log" 2>&1 </dev/null &
    nas=$!
    watch_memory server "$nas" &
    watchers+=($!)
    local ready=
    for _ in $(seq 200); do
        ready=$(grep -m 1 '^torvi-nas ready' "$nas_log" || true)
        [ -z "$ready" ] || break
        kill -0 "$nas" 2>/dev/null || break
        sleep 0.05
    done
    [ -n "$ready" ] || die "the NAS did not start"
    port=$(sed -n 's/.* http=[^ ]*:\([0-9]*\).*/\1/p' <<<"$ready")
}

# What the server has of the unfinished file, in bytes.
held() {
    find "$nas_root" -path '*partials/*' -type f -regextype posix-extended -regex '.*/[0-9a-f]{32}' -printf '%s\n' |
        head -n 1
}

begin_put() {
    "$bin/torvi" put "$film" /home/ --server 127.0.0.1 --port "$port" --user alice >"$put_log" 2>&1 </dev/null &
    client=$!
    watch_memory client "$client" &
    watchers+=($!)
}

# Until the run has come so far, in percents.
wait_for_percent() {
    until grep -q "^film.bin: $1%" "$put_log"; do
        kill -0 "$client" 2>/dev/null || die "torvi ended before $1%"
        sleep 0.02
    done
}

# A run must end with that code, and must have gone on where the server said that it was, further than before.
end_put() {
    local expected=$1 how=$2 status=0 from=0
    wait "$client" 2>/dev/null || status=$?
    client=
    [ "$status" = "$expected" ] || die "$how: torvi ended with $status, not $expected"
    if [ -n "${before:-}" ]; then
        from=$(sed -n 's/.*resuming at byte \([0-9]*\) of .*/\1/p' "$put_log")
        [ -n "$from" ] || die "$how: torvi began anew"
        [ "$from" -gt "$before" ] || die "$how: torvi went on at $from, and at $before the time before"
        [ -n "$(sed -n "/func=get_chunked_upload_status .*($from bytes)/p" "$nas_log")" ] ||
            die "$how: torvi went on at $from, of which the server knows nothing"
    fi
    before=$from
    printf '%-32s from %10s, exit code %s\n' "$how" "$(mib "$from")" "$status"
}

# A connection that breaks in the first slice costs the upload, so 30% must lie behind it.
[ "$gib" -ge 4 ] || die "the file must have 4 GiB at least"

export XDG_STATE_HOME=$scratch/state TORVI_PASSWORD=wonderland
mkdir -p "$nas_root" "$peaks"

size=$((gib * 1073741824))
say "A sparse file of $gib GiB, with random bytes at every 100 MiB and around the borders of the slices of 1 GiB"
truncate -s "$size" "$film"
for ((at = 0; at < size; at += 104857600)); do
    head -c 1000000 /dev/urandom | dd of="$film" bs=1M seek="$at" oflag=seek_bytes conv=notrunc status=none
done
for ((at = 1073741824; at < size; at += 1073741824)); do
    head -c 1000000 /dev/urandom | dd of="$film" bs=1M seek="$((at - 500000))" oflag=seek_bytes conv=notrunc status=none
done
[ "$(stat -c %s "$film")" = "$size" ] || die "the file has another size"
touch -d '2024-02-29 12:34:56 UTC' "$film"

SECONDS=0
start_nas
begin_put
wait_for_percent 10
kill -INT "$client"
end_put 7 "Ctrl-C"

begin_put
wait_for_percent 30
end_process "$nas" KILL
end_put 8 "the server is killed"

# The next request for a slice is cut in its middle.
start_nas --fail cut-upload,match=chunked_upload,bytes=300000000
begin_put
end_put 8 "the server cuts the connection"

begin_put
wait_for_percent 70
kill -KILL "$client"
end_put 137 "torvi is killed"

begin_put
end_put 0 "to the end"
say "$SECONDS seconds"

stored=$nas_root/homes/alice/film.bin
[ -z "$(held)" ] || die "something is left of the upload on the server"
[ -z "$(find "$XDG_STATE_HOME" -path '*uploads/*')" ] || die "torvi still remembers the upload"
sent_digest=$(sha256sum <"$film") stored_digest=$(sha256sum <"$stored")
say ""
say "${sent_digest%% *}  sent"
say "${stored_digest%% *}  stored"
[ "$sent_digest" = "$stored_digest" ] || die "the two ends differ"
[ "$(stat -c %Y "$film")" = "$(stat -c %Y "$stored")" ] || die "the modification time was lost"

end_process "$nas" TERM
nas=
wait "${watchers[@]}" || true
say ""
for name in client server; do
    peak=$(cat "$peaks/$name".* | sort -k 2 -n | tail -n 1 | cut -d ' ' -f 2)
    printf 'peak memory of the %s: %s MiB resident, of %s that it may have\n' "$name" \
        "$(awk -v kib="$peak" 'BEGIN { printf "%.1f", kib / 1024 }')" $((most_kib / 1024))
    [ "$peak" -gt 0 ] && [ "$peak" -lt "$most_kib" ] || die "the $name had $peak KiB"
done
say ""
say "Done: $gib GiB in five runs, every byte the same."
