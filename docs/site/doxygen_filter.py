#!/usr/bin/env python3
"""doxygen_filter.py HEADER: prints a public header with Doxygen comments.

The headers have plain comments. These rules turn them into Doxygen comments:

- The comment at the top of the file belongs to the file. Its first paragraph is also the purpose of
  the class that has the file's name.
- A comment directly before a declaration belongs to it, and to the declarations that follow without
  a blank line or another comment.
- A comment that begins with "----" belongs to all declarations up to the next such comment, except
  those with their own.
- A comment behind a declaration belongs to it.
- Indented lines of a comment are an example.
- Copying, moving, assigning and destroying get a standard comment where they have none.
"""

import itertools
import re
import sys
from pathlib import Path

COMMENT = re.compile(r"^(\s*)//(?: (.*)|)$")
SCOPE = re.compile(r"^\s*(?:template\s*<.*>\s*)?(?:inline\s+)?(class|struct|enum|namespace|union)\b")
LABEL = re.compile(r"^\s*(public|protected|private)\s*:")
# A text that ends with a backslash, which Sphinx cannot read.
INITIALIZER = re.compile(r' = ".*\\\\"(?=;)')
# A function that returns a pointer to a function, which Doxygen takes for a variable.
RETURNS_POINTER = re.compile(r"(\w+) \(\*(\w+)\((.*)\)\)\((.*)\);", re.S)
STANDARD = (
    (re.compile(r"(?:virtual )?~\w+\("), "Destroys the object."),
    (re.compile(r"(\w+)\((?:const )?\1&[^,]*\) = delete"), "An object is not copied."),
    (re.compile(r"(\w+)& operator=\((?:const )?\1&[^,]*\) = delete"), "An object is not assigned."),
    (re.compile(r"(\w+)\(\1&&[^,]*\)"), "Moves the object."),
    (re.compile(r"(\w+)\((?:const )?\1&[^,]*\)"), "Copies the object."),
    (re.compile(r"(\w+)& operator=\((?:const )?\1&&?[^,]*\)"), "Assigns the object."),
)


def escaped(text):
    """Text must not look like a command or a tag; Doxygen leaves quotes and backticks alone."""
    parts = re.split(r'("[^"]*"|`[^`]*`)', text)
    for i in range(0, len(parts), 2):
        parts[i] = re.sub(r"[\\@#%&]", lambda m: "\\" + m[0], parts[i])
        parts[i] = parts[i].replace("<", "&lt;").replace(">::", "&gt;\\::").replace(">", "&gt;")
    return "".join(parts)


def documented(lines, first=""):
    """A comment's text as the lines of a Doxygen comment; the samples in it as code or verbatim."""
    result, in_code, in_item, end = [], False, False, ""
    for i, line in enumerate(lines):
        if line.startswith("- "):
            in_item = True
        elif not line.startswith("  "):
            in_item = False
        sample = line.startswith("  ") and not in_item
        if in_code and not sample and any(later.startswith("  ") for later in lines[i:]) and not line:
            following = next(later for later in lines[i:] if later)
            sample = following.startswith("  ")  # a blank line inside an example
        if sample and not in_code:
            block = itertools.takewhile(lambda later: later.startswith("  ") or not later, lines[i:])
            is_code = any(re.search(r"[^\s;].*[;{]\s*(//.*)?$|^  #", later) for later in block)
            end = "@endcode" if is_code else "@endverbatim"
        if sample != in_code:
            result.append(("@code{.cpp}" if is_code else "@verbatim") if sample else end)
            in_code = sample
        result.append(line[2:] if sample else escaped(line))
    if in_code:
        result.append(end)
    return [first] + result if first else result


class Filter:
    def __init__(self, lines, name):
        self.lines = lines
        self.purpose = {}  # the first paragraph of the file's comment, by the name of its class
        self.name = name
        # Another header documents a function that is declared here only to be a friend.
        self.friends = re.findall(r"\bfriend \w+ ::(\w+)\(", "\n".join(lines))
        self.out = []
        self.pending = None  # the comment directly before
        self.shared = None  # the comment of the declarations up to the next blank line
        self.section = None  # the comment of those up to the next "----"
        self.i = 0

    def comment(self):
        """Takes a comment of whole lines."""
        block = []
        while self.i < len(self.lines) and (match := COMMENT.match(self.lines[self.i])):
            block.append(match[2] or "")
            self.i += 1
        return block

    def emit(self, indent, block):
        self.out += [f"{indent}/// {line}".rstrip() for line in documented(block)]

    def document(self, line, code, own_behind):
        indent = re.match(r"\s*", line)[0]
        block = self.pending
        if block is None and not own_behind:
            text = next((words for form, words in STANDARD if form.match(line.strip())), None)
            block = [text] if text else self.shared or self.section
        scope = re.match(r"(?:template\s*<.*>\s*)?(?:class|struct)\b.*?\b(\w+)\s*(?:final\s*)?(?::[^:].*)?\{", code)
        if scope and not indent:
            purpose = self.purpose.pop(scope[1], [])
            block = purpose + [""] * bool(purpose and block) + (block or [])
        if block and not re.match(r"\s*(#(?!\s*define)|namespace\b|\}|extern \"C\" \{)", line):
            self.emit(indent, block)

    def declaration(self):
        """Takes one declaration; the body of a function goes with it, that of a scope does not."""
        start = self.i
        depth = 0
        first = start
        while re.match(r"^\s*template\s*<.*>$", self.lines[first]):
            first += 1
        scope = SCOPE.match(self.lines[first])
        block = []
        while self.i < len(self.lines):
            line = self.lines[self.i]
            self.i += 1
            block.append(line)
            code = re.sub(r'"(?:[^"\\]|\\.)*"', '""', line).split("//")[0].rstrip()
            depth += code.count("{") - code.count("}") + code.count("(") - code.count(")")
            if block[0].lstrip().startswith("#"):
                if not line.endswith("\\"):
                    break
            elif scope and code.endswith("{"):
                break
            elif depth <= 0 and (code.endswith((";", "}", ":")) or (code.endswith(",") and "(" not in code)
                                 or re.match(r"^\s*\w+( = [^;]*)?$", code)):
                break
        return block, scope

    def behind(self, block):
        """Makes comments behind code Doxygen's."""
        result = []
        for line in block:
            match = re.match(r'^((?:[^"/]|"(?:[^"\\]|\\.)*"|/(?!/))*[^\s/"](?:"[^"]*")?\s*)// (.*)$', line)
            if match and re.match(r"\s*(class|struct) \w+;", match[1]):
                result.append(match[1].rstrip())
            elif match and not re.match(r"\s*[#}]", match[1]):
                result.append(f"{match[1]}/**< {escaped(match[2])}")
                while line is block[-1] and self.i < len(self.lines):  # what continues below
                    more = COMMENT.match(self.lines[self.i])
                    if not more or len(more[1]) != len(match[1]):
                        break
                    result.append(f"{more[1]}{escaped(more[2] or '')}")
                    self.i += 1
                result[-1] += " */"
            else:
                result.append(line)
        return result

    def run(self):
        while self.i < len(self.lines) and not COMMENT.match(self.lines[self.i]):
            self.i += 1
        banner = self.comment()
        self.purpose[self.name] = list(itertools.takewhile(bool, banner))
        self.out += ["/** @file"] + documented(banner) + ["*/"]
        while self.i < len(self.lines):
            line = self.lines[self.i]
            if not line.strip():
                self.pending = self.shared = None
                self.out.append(line)
                self.i += 1
            elif COMMENT.match(line):
                block = self.comment()
                if block[0].startswith("---- "):
                    self.section = [block[0][5:]] + block[1:]
                    self.pending = self.shared = None
                else:
                    self.pending, self.shared = block, None
            elif LABEL.match(line):
                self.section = self.pending = self.shared = None
                self.out.append(line)
                self.i += 1
            else:
                block, scope = self.declaration()
                if any(re.search(rf"[ :]{name}\(", line) for name in self.friends):
                    self.pending = None
                    continue
                # Doxygen 1.9.8 takes a member of this name for a C++20 module.
                block = [re.sub(r"\bmodule;", "module{};", text) for text in block]
                block = self.behind(INITIALIZER.sub("", RETURNS_POINTER.sub(
                    r"auto \2(\3) -> \1 (*)(\4);", "\n".join(block))).split("\n"))
                self.document(line, " ".join(block), any("/**<" in text for text in block))
                # A scope on one line is like any other declaration.
                is_open = scope and not block[-1].rstrip().endswith(";")
                self.shared = None if is_open else (self.pending or self.shared)
                self.pending = None
                if re.match(r"\s*\}", line):
                    self.section = self.shared = None
                self.out += block
        return self.out


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as header:
        print("\n".join(Filter(header.read().split("\n"), Path(sys.argv[1]).stem).run()))
