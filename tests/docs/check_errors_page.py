#!/usr/bin/env python3
"""Compares docs/errors.md with the texts in the library's sources.

- Every line of the log up to level 5 has a row, and every row a line: its level, and its form, which
  is the statement's texts with "..." for what is put in between.
- Every other text of two words and more stands somewhere on the page, but for those that are no
  message, which NO_MESSAGE lists.
- The codes of the table of codes are those that the sources name.

Run with "--rows" it prints the rows that the sources have; with "--self-test" it changes the sources
in memory and expects an error from each change.
"""

import re
import sys
from pathlib import Path

SOURCES = ("support", "vq_client_common")
STRING = r'"(?:[^"\\\n]|\\.)*"'
TOKEN = re.compile(STRING + r"|'(?:[^'\\\n]|\\.)+'|//[^\n]*", re.S)
LOG = re.compile(r"\bVQ_LOG\(\s*\w+,\s*([^)]*?)\)\s*<<(.*?);", re.S)
ROW = re.compile(r"^\| ([0-5]) \| `(.*?)` \|", re.M)
# Names and labels, prompts, and texts that go into another one.
NO_MESSAGE = {
    "support/diagnostics/ConsoleInput.cpp": (r"User name:",),
    "support/orb/OmniOrbTransport.cpp": (r"SSL transport disabled",),
    "support/orb/OmniOrbServer.cpp": (r"SSL transport disabled",),
    "support/orb/TaoOptions.cpp": (r".*",),
    "support/selection/SelectionMatching.h": (r"NOT LIKE",),
    "vq_client_common/datacenters/TDC.cpp": (r"[A-Z]\w+ [A-Z]\w+",),
    "vq_client_common/session/ServerId.cpp": (r"VELTRA-M/VQ .*",),
    "vq_client_common/session/internal/ClientTable.h": (r".*",),
    "vq_client_common/session/SettingsReport.cpp": (r".*",),
    "vq_client_common/session/GlobalFuncs.cpp": (r"Orb Parameters",),
    "support/configuration/ConfigDocument.cpp": (r"<\?xml .*",),
}


def plain(text):
    """A literal as a reader sees it, on one line."""
    text = re.sub(r"\\[ntr]", " ", text)
    text = re.sub(r"\\(.)", r"\1", text)
    text = re.sub(r"%[sd]|\{[:\w]*\}", "...", text)  # what is put in
    return " ".join(text.split())


def without_comments(text):
    text = TOKEN.sub(lambda m: "" if m[0].startswith("//") else m[0], text)
    return re.sub(r"^\s*#.*$", "", text, flags=re.M)


def read_sources(root):
    paths = [p for top in SOURCES for ext in ("*.h", "*.cpp") for p in (root / top).rglob(ext)]
    return {p.relative_to(root).as_posix(): without_comments(p.read_text()) for p in sorted(paths)}


def form_of(statement):
    """The texts of a log statement, with "..." for everything between them."""
    strings = []
    statement = re.sub(STRING + r"|'(?:[^'\\\n]|\\.)'",
                       lambda m: strings.append(m[0][1:-1]) or f"\x01{len(strings) - 1}\x02",
                       statement)
    pieces = []
    for operand in re.split(r"<<", statement):
        parts = re.findall(r"\x01(\d+)\x02", operand)
        if parts and not re.sub(r"\x01\d+\x02", "", operand).strip():
            pieces.append("".join(strings[int(i)] for i in parts))
        elif not (pieces and pieces[-1] == "..."):
            pieces.append("...")
    return plain("".join(pieces))


def log_lines(sources):
    """(level, form) of every statement whose text is more than what is put in."""
    found = {}
    for path, text in sources.items():
        for level, statement in LOG.findall(text):
            form = form_of(statement)
            if re.search(r"[A-Za-z]{2}", form) and level <= "5":
                found.setdefault((level, form), path)
    return found


def texts(sources):
    found = {}
    for path, text in sources.items():
        for match in re.finditer(rf"(?:{STRING}\s*)+", LOG.sub("", text)):
            literal = plain("".join(s[1:-1] for s in re.findall(STRING, match[0])))
            words = re.search(r"[A-Za-z]{2,}\W* +\W*[A-Za-z]{2,}", literal)
            ignored = any(re.fullmatch(form, literal) for form in NO_MESSAGE.get(path, ()))
            if words and not ignored:
                found.setdefault(literal, path)
    return found


def codes(sources):
    """The numbers that the exceptions and the functions of the session return."""
    session = "".join(t for p, t in sources.items() if p.startswith(f"{SOURCES[1]}/"))
    named = re.findall(r"BaseLoginEx\(.*?, (\d+), 600\d\d\)", session)
    named += re.findall(r"SetCodes\((\d+), 600\d\d\)", session)
    named += re.findall(r"\bk(?:NotAuthorized|RefusedByPolicy|SystemException|\w*Expire\w*)\s*= (\d+)",
                        session)
    return set(named)


def check(page, sources):
    told = " ".join(page.replace("\\|", "|").split())
    lines = log_lines(sources)
    rows = set(ROW.findall(page.replace("\\|", "|")))
    errors = [f"{lines[row]}: no row for level {row[0]}: {row[1]}" for row in lines if row not in rows]
    errors += [f"nothing logs level {level}: {form}" for level, form in sorted(rows - set(lines))]
    errors += [f"{path}: the page lacks: {text}" for text, path in texts(sources).items()
               if text not in told]
    table = set(re.findall(r"^\| (\d+) \|", page.split("## Codes")[-1].split("\n## ")[0], re.M))
    errors += [f"the code {code} is not in the table" for code in sorted(codes(sources) - table)]
    if min(len(lines), len(texts(sources)), len(codes(sources))) < 5:
        errors.append("hardly anything is found in the sources")
    return errors


def self_test(page, sources):
    unnoticed = []
    for code in ('VQ_LOG(diag, 1) << "It is new " << name;', 'throw Error("a new text");',
                 "BaseLoginEx(reason, 77, 60099)"):
        if not check(page, sources | {"vq_client_common/new.cpp": code}):
            unnoticed.append(f"not noticed: {code}")
    row = ROW.search(page)
    if not check(page.replace(row[2], row[2] + " more", 1), sources):
        unnoticed.append("not noticed: a row that nothing logs")
    return unnoticed


def main():
    root = Path(sys.argv[1])
    sources = read_sources(root)
    if sys.argv[2:] == ["--rows"]:
        for (level, form), path in log_lines(sources).items():
            print(f"{path}\t{level}\t{form}")
        return 0
    page = (root / "docs" / "errors.md").read_text()
    errors = self_test(page, sources) if sys.argv[2:] == ["--self-test"] else check(page, sources)
    print("\n".join(errors))
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
