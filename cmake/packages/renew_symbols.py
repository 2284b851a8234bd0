#!/usr/bin/env python3
"""renew_symbols.py LIBRARY PACKAGE SYMBOLS-FILE VERSION

Brings the symbols file that dpkg reads up to the library: a symbol that it has keeps the version that
it came with, a new one gets VERSION, one that is gone is reported and left out. Symbols that each
program carries itself (weak, of inline functions) depend on the optimiser and stay out.
"""

import subprocess
import sys
from pathlib import Path


def main():
    library, package, file, version = sys.argv[1], sys.argv[2], Path(sys.argv[3]), sys.argv[4]
    lines = file.read_text().splitlines() if file.exists() else []
    known = dict(line.split() for line in lines if line.startswith(" "))
    soname = subprocess.run(["objdump", "-p", library], check=True, capture_output=True,
                            text=True).stdout.partition("SONAME")[2].split()[0]
    listed = subprocess.run(["nm", "-DP", "--defined-only", library], check=True,
                            capture_output=True, text=True).stdout
    now = {f"{name}@Base" for name, kind, *_ in map(str.split, listed.splitlines())
           if kind not in "Wu"}
    for symbol in sorted(known.keys() - now):
        print(f"gone, and a program that uses it starts no more: {symbol}")
    development = package.rstrip("0123456789") + "-dev"
    file.write_text(f"{soname} {package} #MINVER#\n* Build-Depends-Package: {development}\n" + "".join(
        f" {symbol} {known.get(symbol, version)}\n" for symbol in sorted(now)))
    return 0


if __name__ == "__main__":
    sys.exit(main())
