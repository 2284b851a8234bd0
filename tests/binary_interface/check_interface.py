#!/usr/bin/env python3
"""Compares the library's binary interface with the one that was recorded at the last release.

check_interface.py LIBRARY HEADERS COMPILER           compares; additions are allowed
check_interface.py LIBRARY HEADERS COMPILER --renew   records the library's interface

HEADERS is a file that lists the public headers, COMPILER is "ID VERSION ORB" as CMake names them. The
record, interface.abi, holds for one compiler and ORB product; under another the comparison is skipped
(status 77). The symbols compared are those of exported_names.txt. docs/binary-interface.md tells what
the finding costs.
"""

import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
RECORD = HERE / "interface.abi"
RECORDED_WITH = "GNU 12 omniORB"
SKIPPED = 77

sys.path.insert(0, str(HERE.parent / "symbols"))
from check_symbols import promised_symbols, read_names  # noqa: E402


def record(library, headers, file):
    """Writes the interface of the library's promised symbols, as its debug information tells it.

    Types that no public header declares are named in it without their insides. The stubs of the wire
    types are left out: they follow idl/, which the tests of the wire pin."""
    names = read_names(HERE.parent / "symbols/exported_names.txt")
    with tempfile.TemporaryDirectory() as directory:
        work = Path(directory)
        symbols, scope, public = work / "symbols", work / "scope.abignore", work / "headers"
        symbols.write_text("[abi_whitelist]\n" + "".join(
            f"  {symbol}\n" for symbol in sorted(promised_symbols(library, names))))
        scope.write_text("[suppress_function]\n  drop = yes\n"
                         "  source_location_not_regexp = (vq_client_common|support)/\n")
        public.mkdir()
        for header in Path(headers).read_text().split():
            (public / Path(header).name).touch()  # the name is all that is looked at
        subprocess.run(
            ["abidw", "--no-show-locs", "--no-comp-dir-path", "--no-corpus-path", "--no-elf-needed",
             "--drop-undefined-syms", "--no-parameter-names", "--exported-interfaces-only",
             "--drop-private-types", "--headers-dir", public, "--suppressions", scope,
             "--kmi-whitelist", symbols, "--out-file", file, library], check=True)
    place = str(HERE.parents[1]) + "/"  # of the tree, which is another one at the next release
    Path(file).write_bytes(Path(file).read_bytes().replace(place.encode(), b""))


def main():
    library, headers, compiler = sys.argv[1:4]
    family, version, orb = compiler.split()
    built_with = f"{family} {version.split('.')[0]} {orb}"
    if built_with != RECORDED_WITH:
        print(f"skipped: built with {built_with}, and the record holds for {RECORDED_WITH}")
        return SKIPPED
    if "--renew" in sys.argv:
        record(library, headers, RECORD)
        return 0
    with tempfile.NamedTemporaryFile(suffix=".abi") as now:
        record(library, headers, now.name)
        # Without the debug information there are symbols and nothing about their types.
        if b"<class-decl name='LoginHandler' size-in-bits" not in Path(now.name).read_bytes():
            print("the library carries no debug information to compare")
            return 1
        return subprocess.run(["abidiff", "--no-added-syms", RECORD, now.name]).returncode


if __name__ == "__main__":
    sys.exit(main())
