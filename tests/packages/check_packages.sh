#!/usr/bin/env bash
# check_packages.sh BUILD TRY-EXAMPLES EXAMPLES COMPILER
# Makes the Debian packages of a build, has lintian look at them, installs them into an empty root,
# builds and runs every example against what is there, and removes them again.
set -euo pipefail
build=$1 try_examples=$2 examples=$3 compiler=$4
work=$(mktemp -d -t vq-packages-XXXXXX)
trap 'rm -rf "$work"' EXIT
fail() { printf 'check_packages: %s\n' "$*" >&2; exit 1; }
quietly() { "$@" >"$work/out" 2>&1 || { cat "$work/out"; fail "status $?: $*"; }; }

quietly cpack --config "$build/CPackConfig.cmake" -B "$work/packages" \
  -D CPACK_VQ_COMPRESSION=gzip # the quickest
packages=("$work"/packages/*.deb)
debug=("$work"/packages/*.ddeb)
[ ${#packages[@]} -eq 5 ] && [ ${#debug[@]} -eq 3 ] ||
  fail "expected 5 packages and 3 of debug symbols, got ${packages[*]} ${debug[*]}"

# There is no bug report to close in a changelog that is made from CHANGELOG.md. The site brings the
# scripts of its search, so that it can be copied anywhere.
lintian --fail-on error,warning \
  --suppress-tags initial-upload-closes-no-bugs,embedded-javascript-library "${packages[@]}" ||
  fail "lintian objects"

# The library's symbols come with the version that a program needs.
dpkg-deb --ctrl-tarfile "$work"/packages/libvq-client-common1_*.deb | tar -xO ./symbols >"$work/symbols"
grep -q "^ _Z9GL_LogOutb@Base 1\.0\.0$" "$work/symbols" || fail "the symbols file does not tell versions"
grep -q "^\* Build-Depends-Package: libvq-client-common-dev$" "$work/symbols" ||
  fail "the symbols file does not tell the development package"

# An empty root. Nothing in it could satisfy a dependency; what the packages contain is the same.
root=$work/root
mkdir -p "$root"/var/lib/dpkg/{info,updates}
touch "$root/var/lib/dpkg/status" "$root/var/lib/dpkg/available"
as_root=(env PATH="$PATH:/usr/sbin:/sbin")
[ "$(id -u)" -eq 0 ] || as_root+=(fakeroot)
in_root() {
  quietly "${as_root[@]}" dpkg --root="$root" --log=/dev/null --force-depends --force-not-root "$@"
}
in_root --install "${packages[@]}"
[ -z "$(dpkg --root="$root" --verify)" ] || fail "the installed files are not those of the packages"
"$try_examples" "$root/usr" "$examples" "$compiler"

python3 "$(dirname "$0")/../docs/check_links.py" "$root/usr/share/doc/libvq-client-common-doc" ||
  fail "the installed documents have dead links"

in_root --purge libvq-client-common1 libvq-client-common-dev vq-client-tools vq-simulator \
  libvq-client-common-doc
left=$(find "$root" -path "$root/var" -prune -o -type f -print)
[ -z "$left" ] || fail "left behind: $left"
