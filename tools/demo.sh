#!/usr/bin/env bash
# The library's main job shown on a scratch NAS: demo.sh BIN-FOLDER [MiB]. ./dev demo builds and calls it.
set -euo pipefail
export LC_ALL=C.UTF-8

bin=$(readlink -f "$1")
megabytes=${2:-200}
scratch=$(mktemp -d)
nas_root=$scratch/nas
nas_log=$scratch/nas.log
local_files=$scratch/mine
nas=

stop_nas() {
    [ -n "$nas" ] || return 0
    kill "$nas" 2>/dev/null || true
    wait "$nas" 2>/dev/null || true
    nas=
}

clean_up() {
    local status=$?
    trap - EXIT
    stop_nas
    rm -rf "$scratch"
    exit "$status"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

bold= plain=
if [ -t 1 ]; then
    bold=$'\e[1m' plain=$'\e[0m'
fi

step() {
    number=$((${number:-0} + 1))
    printf '\n%s%d. %s%s\n' "$bold" "$number" "$*" "$plain"
}

say() { printf '   %s\n' "$*"; }
die() { printf '\nThe demo failed: %s\n' "$*" >&2; exit 1; }

# The command as one would type it, then what it prints. Its place is the prompt's business, not the reader's.
typed() { printf '%s$ %s%s\n' "$bold" "$*" "$plain"; }
shown() { typed "$*"; "$@"; }

torvi() { "$bin/torvi" "$@"; }

# A command that must fail with the given exit code: what it prints is the point.
refused() {
    local expected=$1 status=0
    shift
    shown "$@" || status=$?
    [ "$status" = "$expected" ] || die "$* ended with $status, not $expected"
    say "(exit code $status)"
}

start_nas() {
    mkdir -p "$nas_root/Photos" "$nas_root/homes/alice"
    for i in $(seq 23); do
        picture=$nas_root/Photos/IMG_$((4700 + i)).jpg
        head -c $((i * 40000)) /dev/zero >"$picture"
        touch -d "2023-06-01 12:$((i + 10)):00 UTC" "$picture"
    done

    typed "torvi-nas --root nas --port 0 --tls-port 0 --user alice:... &"
    "$bin/torvi-nas" --root "$nas_root" --port 0 --tls-port 0 --user alice:wonderland >"$nas_log" 2>&1 </dev/null &
    nas=$!
    local ready=
    for _ in $(seq 200); do
        ready=$(grep -m 1 '^torvi-nas ready' "$nas_log" || true)
        [ -z "$ready" ] || break
        kill -0 "$nas" 2>/dev/null || break
        sleep 0.05
    done
    [ -n "$ready" ] || { cat "$nas_log" >&2; die "the NAS did not start"; }
    http_port=$(sed -n 's/.* http=[^ ]*:\([0-9]*\).*/\1/p' <<<"$ready")
    tls_port=$(sed -n 's/.* tls=[^ ]*:\([0-9]*\).*/\1/p' <<<"$ready")
    printf '%s\n' "${ready/$nas_root/nas}"
}

digest() { sha256sum <"$1" | cut -d ' ' -f 1; }

# The profile and the sessions of the demo are its own.
export XDG_STATE_HOME=$scratch/state
mkdir -p "$local_files"
cd "$local_files"

step "A NAS: the stand-in server on a scratch folder, over HTTP and TLS"
start_nas

step "Who is there? The one question that needs no session"
shown torvi version --server 127.0.0.1 --port "$http_port"
shown torvi version --server 127.0.0.1 --port "$tls_port" --tls

step "Log in over TLS: first with a wrong password and the library's log on stderr, then with the right one"
export TORVI_PASSWORD=guess
refused 4 torvi login --server 127.0.0.1 --port "$tls_port" --tls --user alice -v
export TORVI_PASSWORD=wonderland
shown torvi login --server 127.0.0.1 --port "$tls_port" --tls --user alice

step "List a folder of 23 files, ten to a page"
shown torvi ls /
shown torvi ls /Photos --page-size 10 --sort mtime
say "What the server saw, the last page being an empty one:"
grep 'func=get_list' "$nas_log" | tail -n 4 | sed 's/^/   /'

step "Upload $megabytes MiB of random bytes"
head -c "${megabytes}M" /dev/urandom >holiday.mov
touch -d '2024-02-29 12:34:56 UTC' holiday.mov
shown torvi put holiday.mov /home/

step "What the server says of it"
shown torvi stat /home/holiday.mov
shown torvi du /home

step "Read it back"
shown torvi get /home/holiday.mov came-back.mov

step "Compare the three: what was sent, what lies on the NAS, what came back"
stored=$nas_root/homes/alice/holiday.mov
for file in holiday.mov "$stored" came-back.mov; do
    printf '   %s  %12s bytes  %s\n' "$(digest "$file")" "$(stat -c %s "$file")" "${file/$scratch\//}"
done
cmp holiday.mov "$stored"
cmp holiday.mov came-back.mov
say "Every byte the same."
[ "$(stat -c %Y holiday.mov)" = "$(stat -c %Y came-back.mov)" ] || die "the modification time was lost"
say "The modification time went there and back: $(date -u -d @"$(stat -c %Y came-back.mov)" '+%F %T') UTC."

step "The same over plain HTTP, a small file"
printf 'Dear Bob,\n' >letter.txt
shown torvi put letter.txt /home/ --no-tls --port "$http_port" --quiet
shown torvi get /home/letter.txt letter-back.txt --no-tls --port "$http_port" --quiet
cmp letter.txt letter-back.txt
say "Every byte the same."

step "What refusals look like: a file that isn't there, and one that is there already"
refused 5 torvi get /home/nowhere.txt
refused 10 torvi put letter.txt /home/

step "Log out; then the NAS goes away, and the library's log on stderr says what happened"
shown torvi logout
requests=$(grep -c 'cgi-bin' "$nas_log" || true)
stop_nas
refused 3 torvi version --server 127.0.0.1 --port "$http_port" -v

printf '\n%sDone.%s %s requests over TLS and HTTP; 2 x %s MiB moved, and every byte was the same.\n' \
    "$bold" "$plain" "$requests" "$megabytes"
