#!/usr/bin/env python3
"""Checks what the library exports: exactly the names of exported_names.txt and the wire types.

A wire type is a name that idl/ declares, and what the C++ mapping makes of it (X_var, X_Helper,
POA_X, TypeCodes, insertion into and extraction from an Any).
"""

import re
import subprocess
import sys
from pathlib import Path

DECORATION = re.compile(
    r"^(vtable for|typeinfo for|typeinfo name for|VTT for|construction vtable for"
    r"|virtual thunk to|non-virtual thunk to|guard variable for) "
)
MAPPING_OPERATOR = re.compile(
    r"^operator(<<=|>>=|<<|>>)\((CORBA::Any|TAO_(Out|In)putCDR|\w+&?, cdrStream)"
)


def exported_symbols(library):
    """Pairs of the symbol as it is linked and as it reads."""
    def names(option):
        lines = subprocess.run(["nm", option, "--defined-only", library], check=True,
                               capture_output=True, text=True).stdout.splitlines()
        return [line.split(" ", 2)[2] for line in lines]

    return list(zip(names("-Dp"), names("-DCp")))


def read_names(list_file):
    text = re.sub(r"^#.*", "", list_file.read_text(), flags=re.M)
    return set(re.findall(r"[\w:]+(?:<<\(.*?\))?", text))


def wire_names(folder):
    """Every name that the interface definitions declare at the outermost scope."""
    names = set()
    for file in folder.glob("*.idl"):
        text = re.sub(r"//[^\n]*|/\*.*?\*/", "", file.read_text(), flags=re.S)
        names |= set(re.findall(r"\b(?:interface|struct|enum|exception)\s+(\w+)", text))
        names |= set(re.findall(r"\btypedef\b[^;]*?(\w+)\s*;", text))
    return names


def entity(symbol):
    """The qualified name of what a demangled symbol is of, without arguments and result type."""
    name = DECORATION.sub("", symbol)
    name = re.sub(r"\[abi:\w+\]", "", name)
    name = re.sub(r"^TAO::Objref_Traits<(\w+)>", r"\1", name)  # what a _var of it needs
    name = re.split(r"::operator|[(\[<]| const$", name)[0].strip()
    return name.split(" ")[-1]  # a template's symbol starts with its result type


def promise_of(symbol, promised):
    """The promised name that the demangled symbol belongs to, or nothing."""
    name = symbol if symbol in promised else entity(symbol)
    return next((p for p in promised if name == p or name.startswith(p + "::")), None)


def promised_symbols(library, promised):
    return [linked for linked, read in exported_symbols(library) if promise_of(read, promised)]


def main():
    library, list_file, idl = map(Path, sys.argv[1:4])
    promised, wire = read_names(list_file), wire_names(idl)
    seen, surplus = set(), set()
    for _, symbol in exported_symbols(library):
        found, outer = promise_of(symbol, promised), entity(symbol).split("::")[0]
        bare = re.sub(r"^(_objref_|_impl_|_pof_|POA_|_tc_|_omni_)|(_var|_out|_Helper|_forany)$", "",
                      outer)
        if MAPPING_OPERATOR.match(symbol):
            continue  # of a wire type by its own declaration, which is generated
        if found:
            seen.add(found)
        elif bare not in wire and outer not in wire:
            surplus.add(symbol)
    print(*(f"exported and not promised: {symbol}" for symbol in sorted(surplus)),
          *(f"promised and not exported: {name}" for name in sorted(promised - seen)),
          f"{len(seen)} promised names and {len(wire)} wire types looked at", sep="\n")
    return 1 if surplus or promised != seen or len(wire) < 50 else 0


if __name__ == "__main__":
    sys.exit(main())
