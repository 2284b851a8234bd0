#!/usr/bin/env bash
# check_prefix.sh BUILD TRY-EXAMPLES EXAMPLES COMPILER
# `cmake --install` into a directory that the build was not configured for.
set -euo pipefail
build=$1 try_examples=$2 examples=$3 compiler=$4
work=$(mktemp -d -t vq-install-XXXXXX)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/opt/vq" >"$work/install.out"
"$try_examples" "$work/opt/vq" "$examples" "$compiler" login
