#!/usr/bin/env python3
"""Compares docs/errors.md with the texts in the library's sources.

- Every line of the log up to level 5 has a row, and every row a line: its level, and its form, which
  is the statement's texts with "..." for what is put in between.
- Every other text of two words and more stands somewhere on the page, but for those that are no
  message, which NO_MESSAGE lists.
- The codes of the table of codes are those that the sources name.
- The headings of "Lines of the log" name every module that logs such a line, and only modules.

Run with "--rows" it prints the rows that the sources have; with "--self-test" it changes the sources
in memory and expects an error from each change.
"""

import re
import sys
from pathlib import Path

STRING = r'"(?:[^"\\\n]|\\.)*"'
CHARACTER = r"'(?:[^'\\\n]|\\.)+'"
LOG = re.compile(r"\bVQ_LOG\(\s*\w+,\s*([^)]*?)\)\s*<<(.*?);", re.S)
ROW = re.compile(r"^\| ([0-5]) \| `(.*?)` \|", re.M)
# Names and labels, prompts, and texts that go into another one.
NO_MESSAGE = {
    "support/diagnostics/ConsoleInput.cpp": r"User name:",
    "support/orb/omniorb/OmniOrbTransport.cpp": r"SSL transport disabled",
    "support/orb/omniorb/OmniOrbServer.cpp": r"SSL transport disabled",
    "support/orb/tao/TaoOptions.cpp": r".*",
    "support/selection/SelectionMatching.h": r"NOT LIKE",
    "vq_client_common/datacenters/TDC.cpp": r"[A-Z]\w+ [A-Z]\w+",
    "vq_client_common/session/ConnectionSettings.cpp": r".*",
    "vq_client_common/session/SettingsReport.cpp": r".*",
    "vq_client_common/session/SystemParameterHandler.cpp": r"Orb Parameters",
    "support/configuration/ConfigDocument.cpp": r"<\?xml .*",
}


def plain(text):
    """A literal as a reader sees it, on one line."""
    text = re.sub(r"\\(.)", r"\1", re.sub(r"\\[ntr]", " ", text))
    return " ".join(re.sub(r"%[sd]|\{[:\w]*\}", "...", text).split())  # what is put in


def read_sources(root):
    def without_comments(text):
        text = re.sub(rf"({STRING}|{CHARACTER})|//[^\n]*", lambda m: m[1] or "", text)
        return re.sub(r"^\s*#.*$", "", text, flags=re.M)

    paths = [p for top in ("support", "vq_client_common") for p in (root / top).rglob("*")]
    names = dict(re.findall(r'char\* (\w+) = ("-\w+")',
                            (root / "support/orb/OrbSettings.h").read_text()))

    def with_settings(text):  # a text may hold the name of a setting
        return re.sub(r"(?:\w+::)*\b(k\w+)", lambda m: names.get(m[1], m[0]), text)

    return {p.relative_to(root).as_posix(): with_settings(without_comments(p.read_text()))
            for p in sorted(paths) if p.suffix in (".h", ".cpp")}


def form_of(statement):
    """The texts of a log statement, with "..." for everything between them."""
    strings = []
    statement = re.sub(f"{STRING}|{CHARACTER}",
                       lambda m: strings.append(m[0][1:-1]) or f"\x01{len(strings) - 1}\x02", statement)
    pieces = []
    for operand in statement.split("<<"):
        if re.fullmatch(r"\s*(\x01\d+\x02\s*)+", operand):
            pieces += [strings[int(i)] for i in re.findall(r"\d+", operand)]
        elif pieces[-1:] != ["..."]:
            pieces.append("...")
    return plain("".join(pieces))


def log_lines(sources):
    """(level, form) of every statement whose text is more than what is put in, and its file."""
    found = [((level, form_of(statement)), path) for path, text in sources.items()
             for level, statement in LOG.findall(text) if level <= "5"]
    return {line: path for line, path in reversed(found) if re.search(r"[A-Za-z]{2}", line[1])}


def texts(sources):
    """Every other text of two words and more, and its file."""
    found = [(plain("".join(s[1:-1] for s in re.findall(STRING, match[0]))), path)
             for path, text in sources.items()
             for match in re.finditer(rf"(?:{STRING}\s*)+", LOG.sub("", text))]
    return {text: path for text, path in reversed(found)
            if re.search(r"[A-Za-z]{2,}\W* +\W*[A-Za-z]{2,}", text)
            and not re.fullmatch(NO_MESSAGE.get(path, ""), text)}


def codes(sources):
    """The numbers that the exceptions and the functions of the session return."""
    text = "".join(t for p, t in sources.items() if p.startswith("vq_client_common/"))
    named = "".join(re.findall(r"enum class LoginResult\b[^}]*", text))
    return set(re.findall(r"\bk\w+ = (\d+)", named)
               + re.findall(r"\bkSystemException\s*= (\d+)", text))


def modules(sources, paths):
    """The modules of the log that these files register."""
    return {name for path in paths
            for name in re.findall(r'^TDiagRegister \w+\("(\w+)"\);', sources[path], re.M)}


def check(page, sources):
    told = " ".join(page.replace("\\|", "|").split())
    lines, rows = log_lines(sources), set(ROW.findall(page.replace("\\|", "|")))
    errors = [f"{lines[row]}: no row for level {row[0]}: {row[1]}" for row in set(lines) - rows]
    errors += [f"nothing logs level {level}: {form}" for level, form in sorted(rows - set(lines))]
    errors += [f"{path}: the page lacks: {text}" for text, path in texts(sources).items()
               if not re.search(r"[^|]+?".join(map(re.escape, text.split("..."))), told)]
    section = page.split("## Lines of the log")[-1]
    headings = set(re.findall(r"\w+(?=[,:])", "".join(
        f"{heading}:" for heading in re.findall(r"^### ([\w, ]+)", section, re.M))))
    errors += [f"no heading names the module {name}"
               for name in sorted(modules(sources, lines.values()) - headings)]
    errors += [f"there is no module {name}" for name in sorted(headings - modules(sources, sources))]
    table = set(re.findall(r"^\| (\d+) \|", page.split("## Codes")[-1].split("\n## ")[0], re.M))
    errors += [f"the code {code} is not in the table" for code in sorted(codes(sources) - table)]
    if min(len(lines), len(texts(sources)), len(codes(sources))) < 5:
        errors.append("hardly anything is found in the sources")
    return errors


def self_test(page, sources):
    row = ROW.search(page)[2]
    unnoticed = [] if check(page.replace(row, row + " more", 1), sources) else ["a row too many"]
    if not check(page.replace("### TLS", "### Tls"), sources):
        unnoticed.append("not noticed: a heading without a module")
    for code in ('VQ_LOG(diag, 1) << "It is new " << name;', 'throw Error("a new text");',
                 "enum class LoginResult { kNew = 77 };"):
        if not check(page, sources | {"vq_client_common/new.cpp": code}):
            unnoticed.append(f"not noticed: {code}")
    return unnoticed


def main():
    root = Path(sys.argv[1])
    sources = read_sources(root)
    if sys.argv[2:] == ["--rows"]:
        print(*(f"{path}\t{level}\t{form}" for (level, form), path in log_lines(sources).items()),
              sep="\n")
        return 0
    errors = (self_test if sys.argv[2:] == ["--self-test"] else check)(
        (root / "docs" / "errors.md").read_text(), sources)
    print("\n".join(errors))
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
