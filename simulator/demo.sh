#!/usr/bin/env bash
# Whole sessions between real processes: a naming service, a simulated central server and vqclient,
# on free loopback ports and in a temporary directory that is gone afterwards.
#
#   simulator/demo.sh BUILD_DIRECTORY
set -euo pipefail
source_directory=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$(cd "$1" && pwd)
client=$build/client/vqclient
work=$(mktemp -d -t vq-demo-XXXXXX)
naming_pid='' server_pid=''

# It reads no files of the account or the host, and leaves none behind.
export HOME=$work VQ_HOME=$work/root OMNIORB_CONFIG=/dev/null
unset VQ_DATA VQ_CONFIG_DOMAINS VQ_CONFIG_DOMAIN XDG_DATA_HOME XDG_CONFIG_HOME

stop() { [ -z "$1" ] || kill "$1" 2>/dev/null && wait "$1" 2>/dev/null || true; }
trap 'stop "$server_pid"; stop "$naming_pid"; rm -rf "$work"' EXIT

die() { printf '\ndemo: %s\n' "$*" >&2; cat "$work"/*.out >&2; exit 1; }
free_port() {
  python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}
await() { # await SECONDS COMMAND... : until the command succeeds
  local end=$((SECONDS + $1))
  shift
  until "$@" 2>/dev/null; do
    [ $SECONDS -lt $end ] || return 1
    sleep 0.05
  done
}
listens() { (exec 3<>"/dev/tcp/127.0.0.1/$1"); }

title() { printf '\n\033[1m%s\033[0m\n' "$*"; }
# expect CODE TITLE PASSWORD ARGUMENT... : runs vqclient with the password on stdin, and fails on
# another exit code.
expect() {
  local code=$1 title=$2 password=$3 result=0
  shift 3
  title "$title"
  printf '$ vqclient %s\n' "$*"
  printf '%s\n' "$password" |
    "$client" "$@" --server central --naming "127.0.0.1:$naming_port" 2>&1 || result=$?
  [ "$result" -eq "$code" ] || die "exit code $result instead of $code"
  [ "$code" -eq 0 ] || printf '(exit code %s, as expected)\n' "$code"
}

mkdir -p "$work/root" "$work/naming"
printf '[NFT]\nversion = 8.0.00\npatches = PATCH.001\n' >"$work/root/installed-products.ini"

naming_port=$(free_port)
"$build/naming-service" 127.0.0.1 "$naming_port" "$work/naming" >"$work/naming.out" 2>&1 &
naming_pid=$!
await 20 listens "$naming_port" || die "the naming service does not start"

start_server() {
  "$build/simulator/vq_simulator" --site "$source_directory/site.json" --server central --kind GSR \
    --naming "corbaloc:iiop:127.0.0.1:$naming_port/NameService" \
    --log "$work/calls.jsonl" --ready-file "$work/ready.json" >"$work/server.out" 2>&1 &
  server_pid=$!
  await 20 test -e "$work/ready.json" || die "the server does not start"
}
start_server
title "A naming service on port $naming_port, and server 'central' with the site simulator/site.json"

expect 0 'A user logs in by challenge and response' ann-secret login --user ann
expect 1 'A wrong password' guess login --user ann
expect 48 'An expired password' expired-secret login --user expired
expect 0 'It is changed: the old password, then the new one twice' \
  $'expired-secret\nnew-secret-8\nnew-secret-8' passwd --user expired
expect 49 'A locked account' locked-secret login --user locked
expect 0 'A password that is about to expire' soon-secret login --user soon
expect 0 'Versions of client and server' ann-secret version --user ann
expect 0 'A parameter of the server' ann-secret param get general Language --user ann
expect 0 'A whole session: login, authorizations, two keep-alives, logout' ann-secret \
  session --user ann --interval 1 --count 2

title 'The same on the wire, as the server logged it'
python3 - "$work/calls.jsonl" <<'PYTHON'
import json, sys
calls = [json.loads(line) for line in open(sys.argv[1])]
calls = [c for c in calls if c["event"] == "call"]
last = max(i for i, c in enumerate(calls) if c["operation"] == "CRB_Register")
for call in calls[max(0, last - 4):]:
    values = ", ".join(f"{k}={v}" for k, v in call["arguments"].items())
    print(f'  {call["operation"]}({values[:90]})')
PYTHON

kill -9 "$server_pid" && wait "$server_pid" 2>/dev/null || true
rm -f "$work/ready.json"
expect 54 'The server dies; the client reports its address' ann-secret login --user ann
start_server
expect 0 'It is back' ann-secret login --user ann

title 'Done.'
