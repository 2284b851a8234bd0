#!/usr/bin/env python3
"""Pins the wire contract: the IDL compiler's view of idl/ is what types.txt and operations.txt say.

check_wire.py OMNIIDL runs the compiler on every file with this module as its back end, which prints
each declaration as the tables have it: types with their repository id, members and values in order,
and interfaces with their bases, operations, arguments and exceptions in order.
"""
import pathlib
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
IDL = HERE.parent.parent / "idl"


def type_name(of):
    from omniidl import idltype
    if isinstance(of, idltype.Sequence):
        return ("bounded " if of.bound() else "") + f"sequence<{type_name(of.seqType())}>"
    if isinstance(of, idltype.Declared):
        return of.name()
    name = {idltype.tk_long: "long", idltype.tk_ulong: "unsigned long", idltype.tk_void: "void",
            idltype.tk_boolean: "boolean", idltype.tk_octet: "octet",
            idltype.tk_string: "string"}[of.kind()]
    return ("bounded " if isinstance(of, idltype.String) and of.bound() else "") + name


def print_operation(operation):
    directions = {0: "in", 1: "out", 2: "inout"}
    arguments = ", ".join(f"{directions[a.direction()]} {type_name(a.paramType())}"
                          for a in operation.parameters())
    raised = sorted(exception.identifier() for exception in operation.raises())
    print(f"  {'oneway ' * operation.oneway()}{type_name(operation.returnType())} {operation.identifier()}({arguments})"
          + (" raises " + " ".join(raised) if raised else ""))


def print_declaration(declaration):
    from omniidl import idlast
    if isinstance(declaration, idlast.Forward):
        return
    if isinstance(declaration, idlast.Typedef):
        for one in declaration.declarators():
            print(f"alias {one.repoId()} = {type_name(declaration.aliasType())}")
    elif isinstance(declaration, idlast.Enum):
        print(f"enum {declaration.repoId()} = "
              + " ".join(value.identifier() for value in declaration.enumerators()))
    elif isinstance(declaration, (idlast.Struct, idlast.Exception)):
        kind = "struct" if isinstance(declaration, idlast.Struct) else "exception"
        members = "; ".join(f"{type_name(member.memberType())} {one.identifier()}"
                            for member in declaration.members() for one in member.declarators())
        print(f"{kind} {declaration.repoId()} = {members}".rstrip())
    elif isinstance(declaration, idlast.Interface):
        print(f"interface {declaration.repoId()}")
        for one in declaration.declarations():
            print_declaration(one)
        bases = " ".join(base.identifier() for base in declaration.inherits())
        print(f"interface {declaration.identifier()}" + (f": {bases}" if bases else ""))
        for operation in declaration.callables():
            print_operation(operation)
    else:
        print(f"unexpected: {declaration}")


def run(tree, _):
    """What the IDL compiler calls."""
    for declaration in tree.declarations():
        if declaration.mainFile():
            print_declaration(declaration)


def read_table(lines):
    """Types by themselves, and each interface with its operations."""
    joined = []
    for line in lines:
        if line.startswith(6 * " "):  # goes on with the one before
            joined[-1] += " " + line.strip()
        elif line.startswith("  "):
            joined[-1] += "\n" + line
        elif line and not line.startswith("#"):
            joined.append(line)
    return sorted(joined)


def main():
    actual = []
    for file in sorted(IDL.glob("*.idl")):
        actual += subprocess.run([sys.argv[1], f"-p{HERE}", "-bcheck_wire", f"-I{IDL}", str(file)],
                                 check=True, capture_output=True, text=True).stdout.splitlines()
    actual = read_table(actual)
    expected = read_table(line for table in ("types.txt", "operations.txt")
                          for line in (HERE / table).read_text().splitlines())
    for entry in actual + expected:
        if actual.count(entry) != expected.count(entry):
            print(("not in the tables: " if entry in actual else "not in idl/: ") + entry)
    sys.exit(actual != expected or len(actual) < 80)


if __name__ == "__main__":
    main()
