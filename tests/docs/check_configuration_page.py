#!/usr/bin/env python3
"""Compares docs/configuration.md with what the library's sources read, in both directions.

Each row of KINDS names a table of the page (by its heading), the pattern of the source lines that
read something of that kind (its group is the name), and the pattern of every call that reads one.
A call with a name that is no literal hides from this check, so WRAPPERS lists the few that wrap
another call, and any other one is an error.

Run with a second argument "--self-test", it changes the page and the sources in memory and expects
an error from each change.
"""

import re
import sys
from pathlib import Path

SOURCES = ("support", "vq_client_common")
ENVIRONMENT = r"\b(?:getenv|secure_getenv|GetEnv|GetEnvOr|UserDirectory)\("
KINDS = (
    ("Environment variables", ENVIRONMENT + r'\s*"(\w+)"', ENVIRONMENT),
    ("Files", r'"[^"\n]*?([\w-]+\.(?:ini|txt|xml))"', None),
    ("Client properties", r'\bGet(?:Int|String)Value\(\s*"(\w+)"', None),
    ("Profile settings", r'\bGetProfileInt\w+\(\s*"\w*",\s*"[\w ]+",\s*"(\w+)"',
     r"\bGetProfileInt\w+\("),
    ("Command line", r'\bparam\(\s*"(\w+)"', None),
    ("ORB settings", r'"(-(?:ORB|SSL|Prefer|BiDir)\w+)"', None),
    ("Server parameters",
     r"\b(?:GetSystemParameter\(\s*|IsMandatory\(\s*\"\w+\",\s*|ReadParameter\(\s*diag,\s*"
     r'|ReadLength\(\s*diag,\s*)"(\w+)"',
     r"\b(?:GetSystemParameter|IsMandatory|ReadParameter|ReadLength)\("),
)
WRAPPERS = {
    "support/foundations/Environment": r"GetEnv(Or)?\(const char\* name|secure_getenv\(name",
    "support/foundations/Locations": r"GetEnvOr\(variable|UserDirectory\(const char\* variable",
    "support/foundations/IniFile": r"GetProfileIntFromCurrentUserOrLocalMachine\(",
    # shows what others read
    "vq_client_common/session/SettingsReport": r"GetEnvOr\(variable|GetEnv\(name",
    "vq_client_common/session/Session": r"GetSystemParameter\(name",
    "vq_client_common/session/internal/Collaborators": r"GetSystemParameter\(const std",
    "vq_client_common/session/SystemParameterHandler":
        r"GetSystemParameter\((name|const std)|IsMandatory\(const char\*",
    "vq_client_common/session/PasswordPolicy":
        r"GetSystemParameter\(name|ReadParameter\(diag, name|Read\w+\(const TDiagFunc",
}


def read_sources(root):
    paths = [p for top in SOURCES for ext in ("*.h", "*.cpp") for p in (root / top).rglob(ext)]
    # An ORB product's own options are no settings of ours.
    return {p.relative_to(root).as_posix(): re.sub(r"^\s*//.*$", "", p.read_text(), flags=re.M)
            for p in sorted(paths) if p.name not in ("TaoOptions.cpp", "TaoOrb.cpp", "TaoServer.cpp")}


def rows_of(page, heading):
    """The cells of the rows of the table below a heading, by the name in the first one."""
    section = re.search(rf"^## {heading}\n(.*?)(?=^## |\Z)", page, flags=re.M | re.S)
    rows = re.findall(r"^\| `([^`]+)`(.*)", section[1], flags=re.M) if section else []
    return {name: [cell.strip(" `|") for cell in rest.split(" | ")] for name, rest in rows}


def check_kind(page, sources, heading, reads, calls):
    read = {}
    for path, text in sources.items():
        for name in re.findall(reads, text):
            read.setdefault(name, path)
        for call in re.finditer(calls, text) if calls else ():
            code = text[call.start():]
            wrapper = WRAPPERS.get(path.rsplit(".", 1)[0], "$.")
            if not re.match(reads, code) and not re.match(wrapper, " ".join(code[:80].split())):
                yield f"{path}: {code[:60]} reads a name that is no literal; list it or make it one"
    told = set(rows_of(page, heading))
    if not read:
        yield f"nothing in the sources is read as the page's '{heading}' says"
    yield from (f"{read[n]} reads {n}, '{heading}' lacks it" for n in sorted(set(read) - told))
    yield from (f"'{heading}' tells of {n}, nothing reads it" for n in sorted(told - set(read)))


def check_built_in_values(page, sources):
    text = sources["support/orb/OrbSettings.cpp"]
    names = dict(re.findall(r'char\* (\w+) = "(-\w+)"', sources["support/orb/OrbSettings.h"]))
    known = re.findall(r'KnownSetting\{(\w+), "([^"]*)"\}', text)
    built_in = {names[key]: value for key, value in known}
    if not built_in:
        yield "no built-in values found in support/orb/OrbSettings.cpp"
    for name, cells in rows_of(page, "ORB settings").items():
        if cells[2] != (built_in.get(name) or "none"):
            yield f"the built-in value of {name} is {built_in.get(name)}, the page says {cells[2]}"


def check(page, sources):
    errors = [error for kind in KINDS for error in check_kind(page, sources, *kind)]
    return errors + list(check_built_in_values(page, sources))


def self_test(page, sources):
    """Errors for every change that the check does not notice."""
    first = {heading: sorted(rows_of(page, heading))[0] for heading, *_ in KINDS}
    pages = [page.replace(f"| `{name}`", "| `Other`") for name in first.values()]
    pages.append(page.replace("`60000`", "`60001`"))
    additions = ('std::getenv("VQ_NEW")', "vq::GetEnv(name.c_str())",
                 'GetSystemParameter("New", value, "general", E_GSR)',
                 'constexpr char kFile[] = "new.ini";',
                 'constexpr std::string_view kNew = "-ORBNew";')
    return ([f"page {i} is taken" for i, changed in enumerate(pages) if not check(changed, sources)]
            + [f"not noticed: {code}" for code in additions
               if not check(page, sources | {"support/new.cpp": code})])


def main():
    root = Path(sys.argv[1])
    page = (root / "docs" / "configuration.md").read_text()
    errors = (self_test if sys.argv[2:] == ["--self-test"] else check)(page, read_sources(root))
    print("\n".join(errors))
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
