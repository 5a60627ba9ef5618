#!/usr/bin/env bash
# The library's main job shown on a scratch NAS: demo.sh BIN-FOLDER [MiB]. ./dev demo builds and calls it.
set -euo pipefail
export LC_ALL=C.UTF-8

bin=$(readlink -f "$1")
megabytes=${2:-200}
scratch=$(mktemp -d)
nas_root=$scratch/nas
nginx_template=$(dirname "$(readlink -f "$0")")/nas/nginx-cluster.conf.in
nas_log=$scratch/nas.log
local_files=$scratch/mine
nas=
cloud=
cluster=()

stop_nas() {
    [ -n "$nas" ] || return 0
    kill "$nas" 2>/dev/null || true
    wait "$nas" 2>/dev/null || true
    nas=
}

stop_cluster() {
    [ ${#cluster[@]} -gt 0 ] || return 0
    kill "${cluster[@]}" 2>/dev/null || true
    wait "${cluster[@]}" 2>/dev/null || true
    cluster=()
}

stop_cloud() {
    [ -n "$cloud" ] || return 0
    kill "$cloud" 2>/dev/null || true
    wait "$cloud" 2>/dev/null || true
    cloud=
}

clean_up() {
    local status=$?
    trap - EXIT
    stop_nas
    stop_cluster
    stop_cloud
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
    local ready
    ready=$(ready_line "$nas_log" "$nas")
    http_port=$(sed -n 's/.* http=[^ ]*:\([0-9]*\).*/\1/p' <<<"$ready")
    tls_port=$(sed -n 's/.* tls=[^ ]*:\([0-9]*\).*/\1/p' <<<"$ready")
    printf '%s\n' "${ready/$nas_root/nas}"
}

# What the NAS of that log and process says once it takes requests.
ready_line() {
    local ready=
    for _ in $(seq 200); do
        ready=$(grep -m 1 '^torvi-[a-z]* ready' "$1" || true)
        [ -z "$ready" ] || break
        kill -0 "$2" 2>/dev/null || break
        sleep 0.05
    done
    [ -n "$ready" ] || { cat "$1" >&2; die "the NAS did not start"; }
    printf '%s\n' "$ready"
}

# A node of a cluster; its port becomes node_port.
start_node() {
    typed "torvi-nas --root $1 --slave-id $1 --session-dir common --user alice:... --user bob:... &"
    "$bin/torvi-nas" --root "$scratch/$1" --slave-id "$1" --session-dir "$scratch/common" --user alice:wonderland \
        --user bob:builder --port 0 >"$scratch/$1.log" 2>&1 </dev/null &
    cluster+=($!)
    node_port=$(ready_line "$scratch/$1.log" $! | sed -n 's/.* http=[^ ]*:\([0-9]*\).*/\1/p')
}

# A cloud at the ports that its clients know, on a loopback address of its own: cloud_host. Returns 1 where the system
# keeps these ports for others; whatever else is wrong ends the demo.
start_cloud() {
    cloud_host=127.$((64 + RANDOM % 64)).$((RANDOM % 256)).$((1 + RANDOM % 254))
    typed "torvi-cloud --address $cloud_host --port 80 --tls-port 443 --app desk-app:... --user alice:... &"
    "$bin/torvi-cloud" --address "$cloud_host" --port 80 --tls-port 443 --app desk-app:desk-secret \
        --user alice:alice-refresh:alice@example.test:Alice >"$scratch/cloud.log" 2>&1 </dev/null &
    cloud=$!
    for _ in $(seq 200); do
        ! grep -m 1 '^torvi-cloud ready' "$scratch/cloud.log" || return 0
        kill -0 "$cloud" 2>/dev/null || break
        sleep 0.05
    done
    stop_cloud
    grep -q -e "cannot listen on $cloud_host:[0-9]*: Permission denied\$" \
        -e "cannot listen on $cloud_host:[0-9]*: Address already in use\$" "$scratch/cloud.log" ||
        { cat "$scratch/cloud.log" >&2; die "the cloud did not start"; }
    return 1
}

# nginx before the nodes at these ports, on a port that is free: front_port.
start_front_end() {
    local nginx
    nginx=$(PATH=$PATH:/usr/sbin command -v nginx)
    typed "nginx -c cluster.conf &"
    mkdir -p "$scratch/front"
    for _ in $(seq 20); do
        front_port=$((20000 + RANDOM % 12000))
        sed -e "s|@DIR@|$scratch/front|; s|@PORT@|$front_port|; s|@MASTER@|127.0.0.1:$1|; s|@MASTER_ID@|north|" \
            -e "s|@NODE@|127.0.0.1:$2|; s|@NODE_ID@|south|" "$nginx_template" >"$scratch/front/cluster.conf"
        "$nginx" -p "$scratch/front" -e stderr -c "$scratch/front/cluster.conf" 2>"$scratch/front.log" &
        local pid=$!
        while kill -0 "$pid" 2>/dev/null; do
            # The file is nginx's own word: at the port another program may answer.
            if grep -q -x "$pid" "$scratch/front/nginx.pid" 2>/dev/null &&
                (exec 3<>"/dev/tcp/127.0.0.1/$front_port") 2>/dev/null; then
                cluster+=("$pid")
                return
            fi
            sleep 0.05
        done
    done
    cat "$scratch/front.log" >&2
    die "nginx did not start"
}

digest() { sha256sum <"$1" | cut -d ' ' -f 1; }

# The profile and the sessions of the demo are its own.
export XDG_STATE_HOME=$scratch/state
mkdir -p "$local_files"
cd "$local_files"

step "A NAS: the stand-in server on a scratch folder, over HTTP and TLS"
fill_nas
# One upload in slices will break off; jobs take a while, so that there is something to see.
start_nas --mail-dir mails --quota carol:5000000 --second-factor carol:code=271828 --job-delay 1500 \
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
shown torvi mkdir /home/Archive
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

step "Two users: alice shares a folder, bob is asked, accepts, and works in it"
shown torvi users
shown torvi team share /home/Archive bob
export TORVI_PASSWORD=builder
shown torvi team list --user bob
shown torvi team accept Archive --user bob
as_bob=(--user bob --team /home/.Torvi/Archive=vtf://alice-Archive)
printf 'From Bob\n' >greeting.txt
shown torvi put greeting.txt /home/.Torvi/Archive/ --quiet "${as_bob[@]}"
shown torvi ls /home/.Torvi/Archive "${as_bob[@]}"
unset TORVI_PASSWORD
shown torvi stat /home/Archive/greeting.txt
say "Now bob may only read, and then not even that:"
shown torvi team set-member Archive bob=read
shown torvi team members Archive
TORVI_PASSWORD=builder refused 6 torvi rm /home/.Torvi/Archive/greeting.txt "${as_bob[@]}"
shown torvi team unshare Archive --dry-run
shown torvi team unshare Archive
TORVI_PASSWORD=builder refused 5 torvi ls /home/.Torvi/Archive "${as_bob[@]}"

step "A public link: whoever has the address and the code opens it, without an account"
visit() { curl --silent --insecure --noproxy '*' "$@"; }
# The HTTP status of the link.
must_be() {
    local code
    code=$(visit "$link" -o refusal.txt -w '%{http_code}')
    printf '%s\n' "$code"
    [ "$code" = "$1" ] || die "the link answered $code, not $1"
}
printf 'Come on Friday\n' >invitation.txt
shown torvi put invitation.txt /home/Archive/ --quiet
shown torvi link create /home/Archive/invitation.txt --code sesame --expires 7d
link=$(torvi link list --json | sed -n 's/.*"url": "\(.*\)".*/\1/p')
say "Without the code, then with it:"
typed "curl -k '$link' -w '%{http_code}'"
must_be 403
typed "curl -k '$link&access_code=sesame'"
visit "$link&access_code=sesame" | tee from-the-link.txt
cmp invitation.txt from-the-link.txt
shown torvi link mail "$link" --to dora@example.test --text 'You are invited:' --code sesame
say "What the server mailed:"
sed -n '/^To:/p; /^Subject:/p; /^\r*$/,$p' mails/0001.eml | tr -d '\r' | sed 's/^/   /'
shown torvi link update "$link" --no-code --expires 2001-01-01
typed "curl -k '$link' -w '%{http_code}'"
must_be 410
shown torvi link delete "$link"
typed "curl -k '$link' -w '%{http_code}'"
must_be 404

step "What a user can set of sharing"
shown torvi settings
shown torvi settings policy accept

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

step "Two nodes of a cluster: what alice shares on one of them, bob receives by way of the other"
mkdir -p "$scratch/north" "$scratch/south/homes/alice/Harvest"
printf 'Apples, pears\n' >"$scratch/south/homes/alice/Harvest/list.txt"
start_node north
north_port=$node_port
start_node south
south_port=$node_port
start_front_end "$north_port" "$south_port"
say "alice talks to south itself, bob to the front end, which asks north unless a node is named:"
export TORVI_SERVER=127.0.0.1 TORVI_PASSWORD=wonderland
shown torvi team share /home/Harvest bob --port "$south_port" --user alice
export TORVI_PASSWORD=builder
shown torvi team accept Harvest --port "$front_port" --user bob
shown torvi get /home/.Torvi/Harvest/list.txt --port "$front_port" --user bob --quiet \
    --team /home/.Torvi/Harvest=vtf://alice-Harvest@south
cmp list.txt "$scratch/south/homes/alice/Harvest/list.txt"
say "The bytes came from the other node:"
grep 'func=download' "$scratch/south.log" | tail -n 1 | sed 's/^/   /'
shown torvi team leave Harvest --port "$front_port" --user bob
unset TORVI_SERVER
export TORVI_PASSWORD=wonderland
requests=$((requests + $(cat "$scratch/north.log" "$scratch/south.log" | grep -c 'cgi-bin' || true)))
stop_cluster

step "The same folder on an old server: the older service is found by itself"
nas_log=$scratch/old-nas.log
start_nas --no-sync-service
shown torvi login --server 127.0.0.1 --port "$http_port" --user alice
shown torvi ls /home/Archive

step "The NAS goes away, and the library's log on stderr says what happened"
requests=$((requests + $(grep -c 'cgi-bin' "$nas_log" || true)))
stop_nas
refused 3 torvi version --server 127.0.0.1 --port "$http_port" -v

step "The cloud knows where the NAS is: alice finds hers by it, and logs in over the address that came back"
# The secret of the application and the token that alice gave it: torvi never takes either as an argument.
export TORVI_CLIENT_SECRET=desk-secret
printf 'alice-refresh\n' >token
if start_cloud; then
    nas_log=$scratch/cloud-nas.log
    start_nas --cloud "http://$cloud_host" --cloud-user alice --device-name Cellar --device-id cellar-1 \
        --external-address 198.51.100.4 --external-port 8081 --ddns-name cellar.example
    shown torvi cloud signin --cloud "$cloud_host" --client-id desk-app --refresh-token-file token
    shown torvi cloud devices
    shown torvi cloud reach cellar-1
    address=$(torvi cloud reach cellar-1 --json | sed -n '/"lan": \[/{n; s/.*"\(.*\)".*/\1/p; q}')
    [ "$address" = "127.0.0.1:$http_port" ] || die "the cloud tells $address, and not where the NAS is"
    shown torvi login -s "$address" --user alice
    shown torvi get /home/letter.txt from-afar.txt --quiet
    cmp letter.txt from-afar.txt
    say "Every byte the same."
    shown torvi cloud signout
    shown torvi logout
    requests=$((requests + $(grep -c 'cgi-bin' "$nas_log" || true)))
    stop_nas
    stop_cloud
else
    say "Left out: the cloud's clients know the ports 80 and 443 only, and torvi-cloud can't have them here."
    sed 's/^/   /' "$scratch/cloud.log"
    say "Run it as root, or in a network of its own: unshare --user --map-root-user --net sh -c 'ip link set lo up; ...'"
fi

printf '\n%sDone.%s %s requests over TLS and HTTP; 3 x %s MiB sent and read, and every byte was the same.\n' \
    "$bold" "$plain" "$requests" "$megabytes"
