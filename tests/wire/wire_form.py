"""A back-end of omniidl: compares what the definitions put on the wire with a table.

    omniidl -pFOLDER -bwire_form -WbTABLE ALL.idl

What differs is printed as a difference of the two; a "+" is in the definitions.
"""

import difflib
import itertools
import sys
import textwrap
from pathlib import Path

from omniidl import idlast, idltype

BASIC = {getattr(idltype, name): name[3:] for name in dir(idltype) if name.startswith("tk_")}
DIRECTIONS = ("in", "out", "inout")


def of(kind):
    """The name of a type."""
    if isinstance(kind, idltype.Sequence):
        return f"sequence<{of(kind.seqType())}{f', {kind.bound()}' if kind.bound() else ''}>"
    if isinstance(kind, idltype.Declared):
        return kind.name()
    bound = kind.bound() if isinstance(kind, idltype.String) else 0
    return BASIC[kind.kind()] + (f"<{bound}>" if bound else "")


def grouped(pairs, separator):
    """("string", "a"), ("string", "b") as "string a, b"."""
    return "; ".join(f"{kind} {separator.join(name for _, name in group)}".rstrip()
                     for kind, group in itertools.groupby(pairs, lambda pair: pair[0]))


def members(declarations):
    return grouped([(of(member.memberType()), declarator.identifier() + "".join(
        f"[{size}]" for size in declarator.sizes())) for member in declarations
        for declarator in member.declarators()], ", ")


def operation(call):
    arguments = ", ".join(f"{DIRECTIONS[argument.direction()]} {of(argument.paramType())}"
                          for argument in call.parameters())
    raises = "".join(" " + one.identifier() for one in call.raises())
    return (f"  {'oneway ' * call.oneway()}{of(call.returnType())} {call.identifier()}({arguments})"
            + (f" raises{raises}" if raises else ""))


def lines(declarations):
    for one in declarations:
        known = one.repoId().removeprefix("IDL:").removesuffix(":1.0") if hasattr(
            one, "repoId") else ""
        if isinstance(one, idlast.Enum):
            yield f"enum {known} = " + " ".join(value.identifier() for value in one.enumerators())
        elif isinstance(one, (idlast.Struct, idlast.Exception)):
            kind = "struct" if isinstance(one, idlast.Struct) else "exception"
            yield f"{kind} {known} = {members(one.members())}".rstrip()
        elif isinstance(one, idlast.Typedef):
            for declarator in one.declarators():
                yield f"alias {declarator.identifier()} = {of(one.aliasType())}"
        elif isinstance(one, idlast.Interface):
            bases = "".join(" " + base.identifier() for base in one.inherits())
            yield f"interface {known}{':' * bool(bases)}{bases}"
            yield from map(operation, one.callables())
            yield from lines(one.declarations())
        elif not isinstance(one, idlast.Forward):
            yield f"unlike any: {one}"


def run(tree, arguments):
    table = Path(arguments[0])
    expected = [line for line in table.read_text().splitlines() if not line.startswith("#")]
    found = [part for line in lines(tree.declarations())
             for part in textwrap.wrap(line, 100, subsequent_indent=" " * 6)]
    print(*difflib.unified_diff(expected, found, table.name, "idl", n=3, lineterm=""), sep="\n")
    sys.exit(0 if expected == found and len(found) > 300 else 1)
