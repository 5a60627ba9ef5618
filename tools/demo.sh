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

fill_nas() {
    mkdir -p "$nas_root/Photos" "$nas_root/homes/alice"
    for i in $(seq 23); do
        picture=$nas_root/Photos/IMG_$((4700 + i)).jpg
        head -c $((i * 40000)) /dev/zero >"$picture"
        touch -d "2023-06-01 12:$((i + 10)):00 UTC" "$picture"
    done
}

# A NAS on free ports with these options, those of its users left out where they are shown.
start_nas() {
    typed "torvi-nas --root nas --user alice:... --user bob:... --user carol:... $* &"
    "$bin/torvi-nas" --root "$nas_root" --user alice:wonderland --user bob:builder --user carol:singer \
        --port 0 --tls-port 0 "$@" >"$nas_log" 2>&1 </dev/null &
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
fill_nas
# One upload in slices will break off; jobs take a while, so that there is something to see.
start_nas --team alice:/home/Archive:bob --quota carol:5000000 --second-factor carol:code=271828 --job-delay 1500 \
    --fail "cut-upload,match=chunked_upload,bytes=$((megabytes * 400000))"

step "Who is there? The questions that need no login"
shown torvi probe --server 127.0.0.1 --port "$http_port"
shown torvi version --server 127.0.0.1 --port "$tls_port" --tls

step "Log in over TLS: first with a wrong password and the library's log on stderr, then with the right one"
export TORVI_PASSWORD=guess
refused 4 torvi login --server 127.0.0.1 --port "$tls_port" --tls --user alice -v
export TORVI_PASSWORD=wonderland
shown torvi login --server 127.0.0.1 --port "$tls_port" --tls --user alice

say "From here on no command needs the password:"
unset TORVI_PASSWORD

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

step "The same in slices, as files from 256 MiB on go by themselves. The server cuts the connection in the middle"
refused 8 torvi put holiday.mov /home/film.mov --resume
say "The id of the upload is kept for the next run, in a file of its own:"
find "$XDG_STATE_HOME/torvi/uploads" -type f -exec grep -h uploadId {} + | sed 's/^ */   /'
shown torvi put holiday.mov /home/film.mov --resume
cmp holiday.mov "$nas_root/homes/alice/film.mov"
say "Sent in two runs, and every byte the same."

step "Make folders, rename, and move a folder: a job on the server, watched from the side"
shown torvi mkdir -p /home/Trips/2024/Iceland
shown torvi mv /home/film.mov /home/iceland.mov
shown torvi mv /home/iceland.mov /home/Trips/2024/Iceland/
typed "torvi mv --check /home/Trips /home/Archive/ &"
torvi mv --check /home/Trips /home/Archive/ --quiet &
move=$!
until job=$(grep -m 1 -o 'func=move .*(Trips as job [0-9]*)' "$nas_log" | sed 's/.* //; s/)//') && [ -n "$job" ]; do
    sleep 0.05
done
for _ in 1 2; do
    shown torvi jobs "$job" || true
    sleep 0.3
done
wait "$move" || die "the move failed"
shown torvi ls /home/Archive/Trips/2024/Iceland

step "Many small files in one request"
for note in one two three four; do printf 'Note %s\n' "$note" >"$note.txt"; done
shown torvi put --batch one.txt two.txt three.txt four.txt /home/Archive
say "What the server saw:"
grep 'upload.php' "$nas_log" | tail -n 1 | sed 's/^/   /'

step "Remove a folder: first only look, then for real; find it in the trash, and bring something back"
shown torvi rm -r /home/Archive/Trips --dry-run
shown torvi rm -r /home/Archive/Trips
shown torvi trash
shown torvi restore /home/Archive/Trips/2024/Iceland/iceland.mov
cmp holiday.mov "$nas_root/homes/alice/Archive/Trips/2024/Iceland/iceland.mov"
say "Every byte the same."

step "A new version of a file, under a lock"
shown torvi version-probe
shown torvi version-lock /home/Archive/one.txt
printf 'Note one, second thoughts\n' >one.txt
shown torvi put one.txt /home/Archive/ --overwrite --quiet
shown torvi version-commit /home/Archive/one.txt
shown torvi version-unlock /home/Archive/one.txt
version=$(torvi ls /home/@Versions --json | sed -n 's/.*"name": "\([0-9a-f]*\)".*/\1/p' | head -n 1)
shown torvi get "/home/@Versions/$version/content" before.txt --quiet
say "before: $(cat before.txt)"
say "now:    $(cat one.txt)"

step "A team folder: alice shares /home/Archive, bob sees it as /home/.Torvi/Archive"
as_bob=(--user bob --team /home/.Torvi/Archive=vtf://alice-Archive)
export TORVI_PASSWORD=builder
printf 'From Bob\n' >greeting.txt
shown torvi put greeting.txt /home/.Torvi/Archive/ --quiet "${as_bob[@]}"
shown torvi ls /home/.Torvi/Archive "${as_bob[@]}"
unset TORVI_PASSWORD
shown torvi stat /home/Archive/greeting.txt

step "What the server recorded of it: the last changes, with what made them"
shown torvi log --last 8

step "An account with a second factor: refused without the code, then let in with it"
export TORVI_PASSWORD=singer
refused 4 torvi quota --user carol
shown torvi quota --user carol --code 271828

step "The same over plain HTTP, a small file"
export TORVI_PASSWORD=wonderland
printf 'Dear Bob,\n' >letter.txt
shown torvi put letter.txt /home/ --no-tls --port "$http_port" --quiet
shown torvi get /home/letter.txt letter-back.txt --no-tls --port "$http_port" --quiet
cmp letter.txt letter-back.txt
say "Every byte the same."

step "What refusals look like: a file that isn't there, and one that is there already"
refused 5 torvi get /home/nowhere.txt
refused 10 torvi put letter.txt /home/

step "Log out: the session ends on the server, too"
shown torvi logout
requests=$(grep -c 'cgi-bin' "$nas_log" || true)
stop_nas

step "The same folder on an old server: the older service is found by itself"
nas_log=$scratch/old-nas.log
start_nas --no-sync-service
shown torvi login --server 127.0.0.1 --port "$http_port" --user alice
shown torvi ls /home/Archive

step "The NAS goes away, and the library's log on stderr says what happened"
requests=$((requests + $(grep -c 'cgi-bin' "$nas_log" || true)))
stop_nas
refused 3 torvi version --server 127.0.0.1 --port "$http_port" -v

printf '\n%sDone.%s %s requests over TLS and HTTP; 3 x %s MiB sent and read, and every byte was the same.\n' \
    "$bold" "$plain" "$requests" "$megabytes"
