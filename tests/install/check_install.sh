#!/usr/bin/env bash
# check_install.sh SOURCE BUILD COMPILER
set -euo pipefail
source=$1 build=$2 compiler=$3
work=$(mktemp -d -t vq-install-XXXXXX)
naming='' server=''
stop() { [ -z "$1" ] || { kill "$1" && wait "$1"; } 2>/dev/null || true; }
trap 'stop "$server"; stop "$naming"; rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/usr" >"$work/install.out"
prefix=$work/usr
library_directory=$(dirname "$(find "$prefix" -name libvq_client_common.so)")

# CMake's package.
cmake -S "$source/examples/login" -B "$work/login" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$compiler" >"$work/cmake.out" || { cat "$work/cmake.out"; exit 1; }
cmake --build "$work/login"

# pkg-config. The prefix is not the one that the file was made for.
export PKG_CONFIG_PATH=$library_directory/pkgconfig
flags=$(pkg-config --define-variable=prefix="$prefix" --cflags --libs vq_client_common)
# shellcheck disable=SC2086
"$compiler" -std=c++20 -Wall -Wextra -Werror "$source/examples/login/main.cpp" -o "$work/login-pc" \
  $flags

# Both programs log in.
export HOME=$work VQ_HOME=$work/root OMNIORB_CONFIG=/dev/null LD_LIBRARY_PATH=$library_directory
port=$(python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
mkdir "$work/names"
omniNames -start "$port" -always -datadir "$work/names" \
  -ORBendPoint "giop:tcp:127.0.0.1:$port" >"$work/names.out" 2>&1 &
naming=$!
reference=corbaloc:iiop:127.0.0.1:$port/NameService
until (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do sleep 0.05; kill -0 "$naming"; done
"$prefix/bin/vq_simulator" --site "$prefix/share/vq/simulator/site.json" --server central \
  --naming "$reference" --ready-file "$work/ready" &
server=$!
until [ -e "$work/ready" ]; do sleep 0.05; kill -0 "$server"; done

for program in "$work/login/login" "$work/login-pc"; do
  answer=$("$program" central admin -ORBInitRef "NameService=$reference" <<<admin-secret)
  [ "$answer" = 'Logged in as admin, an administrator.' ] || { echo "got: $answer"; exit 1; }
done
echo "installed, built in two ways, logged in twice"
