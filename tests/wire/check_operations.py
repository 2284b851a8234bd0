#!/usr/bin/env python3
"""check_operations.py TABLE GENERATED

Pins what an interface offers: its bases, its operations in declared order, their arguments, results
and exceptions. Signatures come from the generated skeleton classes, order and wire names from the
generated dispatchers and calls, exceptions from the generated call descriptors, in the form that
omniORB's compiler gives them.
"""

import difflib
import itertools
import re
import sys
from pathlib import Path

BASIC = {"CORBA::Long": "long", "CORBA::ULong": "unsigned long", "CORBA::Boolean": "boolean",
         "CORBA::String": "string", "CORBA::Object": "Object", "char": "string"}
RAISES = {"AUTH": "USER_NOT_AUTHORIZED USER_NOT_FOUND", "USER": "USER_NOT_FOUND"}


def wire_type(name):
    return BASIC.get(name.removeprefix("::"), name.removeprefix("::"))


def wire_argument(argument):
    """"const ::X& name" is in X, "::X& name" inout X, "::X_out name" out X, "::X_ptr name" in X."""
    constant, name, ending = re.fullmatch(r"(const )?([\w:]+?)(&|_out|_ptr|\*|) \w+",
                                          argument).groups()
    if (name == "char") != (ending == "*"):
        return "unlike any: " + argument
    direction = "out" if ending == "_out" else "inout" if ending == "&" and not constant else "in"
    return direction + " " + wire_type(name)


def interfaces(header, source):
    """The lines of the table for each interface of one generated pair of files."""
    raised = {descriptor: sorted(re.findall(r"(\w+)::_PD_repoId", ids)) for descriptor, ids in
              re.findall(r"\nconst char\* const (\w+)::_user_exns\[\] = \{(.*?)\}", source, re.S)}
    for name, head, body in re.findall(r"\nclass _impl_(\w+) ([^;{]*)\{(.*?)\n\};", header, re.S):
        bases = re.findall(r"virtual _impl_(\w+)", head)
        lines = [f"interface {name}{': ' if bases else ''}{' '.join(bases)}"]
        operations = re.findall(r"virtual ([^\s*]+?)(?:\*|_ptr)? (\w+)\((.*)\) = 0;", body)
        for result, operation, arguments in operations:
            call = re.compile(r'\n  (\w+) _call_desc\(\w+, "(\w+)"').search(
                source, source.index(f"_objref_{name}::{operation}("))
            wired = [(argument, len(list(same))) for argument, same in itertools.groupby(
                map(wire_argument, arguments.split(", ") if arguments else []))]
            wired = ", ".join(name + (f"*{count}" if count > 1 else "") for name, count in wired)
            raises = " ".join(["", "raises", *raised[call[1]]] if raised.get(call[1]) else "")
            lines.append(f"  {wire_type(result)} {call[2]}({wired}){raises}")
        dispatch = re.search(rf"\n_impl_{name}::_dispatch\(.*?\n\}}\n", source, re.S)[0]
        names = re.findall(r'strMatch\(op, "(\w+)"', dispatch)
        if names != [operation for _, operation, _ in operations]:
            lines.append(f"dispatched are {names}")
        yield lines


def main():
    table, folder = Path(sys.argv[1]).read_text(), Path(sys.argv[2])
    table = re.sub(r"\n {6,}", " ", re.sub(r"^#.*\n", "", table, flags=re.M))
    table = re.sub(r"(?<= )(AUTH|USER)$", lambda short: RAISES[short[0]], table, flags=re.M)
    expected = [block.splitlines() for block in re.split(r"\n(?=interface)", table)]
    generated = [lines for file in folder.glob("*C.h") for lines in
                 interfaces(file.read_text(), file.with_suffix(".cpp").read_text())]
    print(*difflib.unified_diff(sum(sorted(expected), []), sum(sorted(generated), []), "the table",
                                "generated", n=50, lineterm=""), sep="\n")
    return 0 if len(expected) == 19 and sorted(expected) == sorted(generated) else 1


if __name__ == "__main__":
    sys.exit(main())
