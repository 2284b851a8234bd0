#!/usr/bin/env python3
"""check_examples.py SOURCE BUILD

The examples in the comments of the installed headers compile as pasted, with the umbrella header and
the example's own header included. An example is indented by three columns and has a line that ends a
statement or opens a block; what is indented without such a line is a table or the content of a file.
/* ... */ is where a reader adds code.
"""

import json
import re
import shlex
import subprocess
import sys
from pathlib import Path

UMBRELLA = "vq_client_common/vq_client_common.h"
# The variables of the program that an example is pasted into. An example that needs more declares it.
PROGRAM = """
#include <iostream>
#include <list>
#include <memory>
#include <sstream>
#include <string>
#include <vector>
#include <%s>
#include <vq_idl/AdministrationRecordsC.h>

int argc;
char** argv;
std::string user, password, newPassword;
bool working;
void Show(const std::string&);
""" % UMBRELLA


def installed_headers(source):
    headers = []
    for top in ("support", "vq_client_common"):
        for cmake in sorted(source.glob(f"{top}/*/CMakeLists.txt")):
            listed = re.search(r"HEADERS\s(.*?)(?:LINK|\))", cmake.read_text(), re.S)
            headers += [f"{top}/{cmake.parent.name}/{name}"
                        for name in (listed[1].split() if listed else ())]
    return headers


def is_code(paragraph):
    lines = [re.sub(r"\s*//.*", "", line) for _, line in paragraph]
    return any(re.search(r"[^\s;]+.*[;{}]$|^#include|\) \.\.\.", line) for line in lines)


def examples(text):
    """The code in the indented parts of comments: [(line number, line), ...] for each part."""
    parts, part, paragraph = [], [], []
    for number, line in enumerate(text.splitlines() + [""], 1):
        if indented := re.match(r"\s*//   ( *\S.*)", line):
            paragraph.append((number, indented[1]))
            continue
        if is_code(paragraph):
            part += [*paragraph, (number, "")]
        paragraph = []
        if part and not re.fullmatch(r"\s*//\s*", line):
            parts.append(part)
            part = []
    return parts


def translation_unit(headers, source):
    unit, count = [PROGRAM, *(f"#include <{header}>" for header in headers)], 0
    for header in headers:
        for block in examples((source / header).read_text()):
            count += 1
            # An example with a function or a class of its own stands outside functions.
            outside = any(re.match(r"(namespace|void \w+\()", line) for _, line in block)
            unit += [line for _, line in block if line.startswith("#include")]
            block = [(at, "" if line.startswith("#include") else line) for at, line in block]
            unit.append(f"namespace example{count} {{" if outside else f"int example{count}() {{")
            unit += [f"#line {block[0][0]} \"{header}\"", *(line for _, line in block)]
            unit.append("}" if outside else "return 0; }")
    return "\n".join(unit) + "\n", count


def command(build):
    """The compiler with the flags of a program that uses the library."""
    entries = json.loads((build / "compile_commands.json").read_text())
    words = shlex.split(next(entry["command"] for entry in entries
                             if entry["file"].endswith("client/main.cpp")))
    flags = [word for at, word in enumerate(words)
             if word.startswith(("-I", "-D", "-std")) or "-isystem" in (word, words[at - 1])]
    compiler = next(word for word in words if "ccache" not in word)
    return [compiler, *flags, "-fsyntax-only", "-x", "c++", "-"]


def main(source, build):
    source = Path(source)
    unit, count = translation_unit(installed_headers(source), source)
    done = subprocess.run(command(Path(build)) + ["-I", source], input=unit, text=True)
    print(f"{count} examples")
    return done.returncode != 0 or count < 60


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
