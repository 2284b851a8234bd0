#!/usr/bin/env bash
# check_firewall.sh NAMING-SERVICE SIMULATOR CLIENT
#
# Client and server in two networks with a firewall between them: the server cannot open a connection
# to the client, and calls it back over the client's own one. Each network is a namespace that ends
# with its processes; nothing of the host's own network is touched. Exits with 77 where that is not
# allowed.
set -euo pipefail

for tool in ip nft; do
  command -v $tool >/dev/null || { echo "$tool is missing"; exit 77; }
done
if [ -z "${VQ_OWN_NETWORK:-}" ]; then
  unshare --net true || { echo "network namespaces are not allowed here"; exit 77; }
  VQ_OWN_NETWORK=1 exec unshare --net "$0" "$@"
fi
naming_service=$1 simulator=$2 client=$3
here=10.77.0.1 there=10.77.0.2
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null; wait; rm -rf "$work"' EXIT
export HOME=$work VQ_HOME=$work OMNIORB_CONFIG=/dev/null
mkdir "$work/naming" "$work/config"
echo '<domain/>' >"$work/config/vq.xml"
touch "$work/locale.ini"
echo '{"users": {"alice": {"password": "secret"}}}' >"$work/site.json"

soon() { # soon COMMAND... : tries it for half a minute
  for _ in {1..600}; do
    "$@" 2>/dev/null && return
    sleep 0.05
  done
  echo "never: $*"
  cat "$work/output"
  exit 1
}
unshare --net sleep 300 &
other=$!
server="nsenter --net --target $other"  # no function: of one in the background the shell alone ends
has_left() { [ "$(readlink "/proc/$other/ns/net")" != "$(readlink /proc/self/ns/net)" ]; }
soon has_left
ip link add vqclient type veth peer name vqserver netns "$other"
ip address add $here/24 dev vqclient
$server ip address add $there/24 dev vqserver
for device in lo vqclient; do ip link set $device up; done
for device in lo vqserver; do $server ip link set $device up; done

$server "$naming_service" $there 2809 "$work/naming" >"$work/output" 2>&1 &
soon $server bash -c "true </dev/tcp/$there/2809"
$server "$simulator" --site "$work/site.json" --server central --endpoint iiop://$there:5000 \
  --naming corbaloc:iiop:$there:2809/NameService --ready-file "$work/ready" >>"$work/output" 2>&1 &
soon test -e "$work/ready"

expect() { # expect TEXT... : each stands in what the doctor finds
  echo secret | "$client" doctor -s central -u alice -n $there:2809 | tee "$work/found"
  for text in "$@"; do grep -qF "$text" "$work/found" || { echo "no '$text'"; exit 1; }; done
}
expect "[good] callback to $here" "[good] callback over the client's connection"

# It drops what opens a connection towards the client; connections that are open go on.
$server nft "add table inet vq;
  add chain inet vq out { type filter hook output priority 0 ; };
  add rule inet vq out ip daddr $here tcp flags & (syn|ack) == syn drop" ||
  { echo "nft does not work here"; exit 77; }
expect "[note] callback to $here" "[good] callback over the client's connection"
