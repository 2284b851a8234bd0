#!/usr/bin/env python3
"""check_examples.py SOURCE BUILD

The examples in the comments that open the headers of the umbrella header compile as pasted, behind
it. An example is indented by three columns and has a line that ends a statement or opens a block;
what is indented without such a line is a table or the content of a file. What is left to the reader
stands as /* ... */.
"""

import json
import re
import shlex
import subprocess
import sys
from pathlib import Path

UMBRELLA = "vq_client_common/vq_client_common.h"
# What an example takes from the program that it is pasted into. An example that needs more declares it.
PROGRAM = """
#include <iostream>
#include <list>
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


def blocks(text):
    """The examples of an opening comment: (line number, lines)."""
    found, block = [], []
    for number, line in enumerate(text.splitlines() + [""], 1):
        example = re.match(r"//   ( *\S.*)", line)
        if example:
            block.append((number, example[1]))
        elif block and re.fullmatch(r"//\s*", line):
            block.append((number, ""))
        else:
            if block:
                found.append(block)
            block = []
            if not line.startswith("//"):
                break
    return found


def is_code(block):
    lines = [re.sub(r"\s*//.*", "", line) for _, line in block]
    return any(re.search(r"[^\s;]+.*[;{]$|\) \.\.\.", line) for line in lines)


def translation_unit(headers, source):
    unit, count = [PROGRAM], 0
    for header in headers:
        for block in filter(is_code, blocks((source / header).read_text())):
            count += 1
            # An example with a function of its own stands outside functions.
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
    headers = re.findall(r"^#include <(.*)>", (source / UMBRELLA).read_text(), re.M)
    unit, count = translation_unit(headers, source)
    done = subprocess.run(command(Path(build)) + ["-I", source], input=unit, text=True)
    print(f"{count} examples")
    return done.returncode != 0 or count < 35


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
