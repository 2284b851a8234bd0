#!/usr/bin/env python3
"""Compares docs/configuration.md with what the library's sources read, in both directions.

Each Kind names a table of the page (by its heading) and the pattern of the source lines that read
something of that kind. The name is what the pattern's group captures. A call that reads a name which
is no literal hides from this check, so the few that wrap another call are listed, and any other one
is an error.

Run with a second argument "--self-test", it changes the page and the sources in memory and expects
an error from each change.
"""

import re
import sys
from pathlib import Path
from typing import NamedTuple

SOURCES = ("support", "vq_client_common")


class Kind(NamedTuple):
    heading: str
    reads: str  # the one group is the name
    calls: str = ""  # every call of the readers, literal or not
    wrappers: tuple = ()  # calls with a name that is no literal: "file: code"


KINDS = (
    Kind(
        "Environment variables",
        r'\b(?:getenv|secure_getenv|GetEnv|GetEnvOr|UserDirectory)\(\s*"(\w+)"',
        r"\b(?:getenv|secure_getenv|GetEnv|GetEnvOr|UserDirectory)\(",
        (
            "support/foundations/Environment.h: GetEnv(const char* name",
            "support/foundations/Environment.h: GetEnvOr(const char* name",
            "support/foundations/Environment.cpp: GetEnv(const char* name",
            "support/foundations/Environment.cpp: GetEnvOr(const char* name",
            "support/foundations/Environment.cpp: secure_getenv(name",
            "support/foundations/Locations.cpp: GetEnvOr(variable",
            "support/foundations/Locations.cpp: UserDirectory(const char* variable",
            # shows what others read
            "vq_client_common/session/SettingsReport.cpp: GetEnvOr(variable",
            "vq_client_common/session/SettingsReport.cpp: GetEnv(name",
        ),
    ),
    Kind("Files", r'"[^"\n]*?([\w-]+\.(?:ini|txt|xml))"'),
    Kind("Client properties", r'\bGet(?:Int|String)Value\(\s*"(\w+)"'),
    Kind(
        "Profile settings",
        r'\bGetProfileInt\w+\(\s*"\w*",\s*"[\w ]+",\s*"(\w+)"',
        r"\bGetProfileInt\w+\(",
        (
            "support/foundations/ProfileSettings.h: GetProfileIntFromCurrentUserOrLocalMachine(",
            "support/foundations/ProfileSettings.cpp: GetProfileIntFromCurrentUserOrLocalMachine(",
        ),
    ),
    Kind("Command line", r'\bparam\(\s*"(\w+)"'),
    Kind("ORB settings", r'"(-(?:ORB|SSL|Prefer|BiDir)\w+)"'),
    Kind(
        "Server parameters",
        r"\b(?:GetSystemParameter\(\s*|IsMandatory\(\s*\"\w+\",\s*|ReadParameter\(\s*diag,\s*"
        r'|ReadLength\(\s*diag,\s*)"(\w+)"',
        r"\b(?:GetSystemParameter|IsMandatory|ReadParameter|ReadLength)\(",
        (
            "vq_client_common/session/SystemParameterHandler.h: GetSystemParameter(",
            "vq_client_common/session/SystemParameterHandler.cpp: GetSystemParameter(name",
            "vq_client_common/session/SystemParameterHandler.cpp: GetSystemParameter(const std",
            "vq_client_common/session/SystemParameterHandler.cpp: IsMandatory(const char*",
            "vq_client_common/session/PasswordPolicy.cpp: GetSystemParameter(name",
            "vq_client_common/session/PasswordPolicy.cpp: ReadParameter(const TDiagFunc",
            "vq_client_common/session/PasswordPolicy.cpp: ReadParameter(diag, name",
            "vq_client_common/session/PasswordPolicy.cpp: ReadLength(const TDiagFunc",
        ),
    ),
)

KNOWN_SETTING = re.compile(r'KnownSetting\{(\w+), "([^"]*)"\}')
SETTING_NAME = re.compile(r'string_view (\w+) = "(-\w+)"')


def without_comments(text):
    return re.sub(r"^\s*//.*$", "", text, flags=re.M)


def read_sources(root):
    paths = [p for top in SOURCES for ext in ("*.h", "*.cpp") for p in (root / top).rglob(ext)]
    # An ORB product's own options are no settings of ours.
    return {p.relative_to(root).as_posix(): without_comments(p.read_text()) for p in sorted(paths)
            if p.name not in ("TaoOptions.cpp", "TaoServer.cpp")}


def rows_of(page, heading):
    """The cells of the rows of the table below a heading, without the table's own heading."""
    section = re.search(rf"^## {heading}\n(.*?)(?=^## |\Z)", page, flags=re.M | re.S)
    if not section:
        return []
    lines = [line for line in section[1].splitlines() if line.startswith("| `")]
    return [[cell.strip() for cell in line.strip("|").split(" | ")] for line in lines]


def names_of(page, heading):
    return {re.match(r"\|?\s*`([^`]+)`", row[0])[1] for row in rows_of(page, heading)}


def hidden_calls(kind, path, text):
    for call in re.finditer(kind.calls, text):
        if re.match(kind.reads, text[call.start() :]):
            continue
        code = " ".join(text[call.start() : call.start() + 80].split())
        if not any(f"{path}: {code}".startswith(wrapper) for wrapper in kind.wrappers):
            yield f"{path}: {code[:60]} reads a name that is no literal; list it or make it one"


def check_kind(kind, page, sources):
    read = {}
    errors = []
    for path, text in sources.items():
        for name in re.findall(kind.reads, text):
            read.setdefault(name, path)
        if kind.calls:
            errors += hidden_calls(kind, path, text)
    told = names_of(page, kind.heading)
    if not read:
        errors.append(f"nothing in the sources is read as the page's '{kind.heading}' says")
    errors += [f"{read[n]} reads {n}, '{kind.heading}' lacks it" for n in sorted(set(read) - told)]
    errors += [f"'{kind.heading}' tells of {n}, nothing reads it" for n in sorted(told - set(read))]
    return errors


def check_built_in_values(page, sources):
    text = sources["support/orb/OrbSettings.cpp"]
    names = dict(SETTING_NAME.findall(text))
    built_in = {names[key]: value for key, value in KNOWN_SETTING.findall(text)}
    errors = [] if built_in else ["no built-in values found in support/orb/OrbSettings.cpp"]
    for row in rows_of(page, "ORB settings"):
        name, told = row[0].strip("| `"), row[2].strip("`")
        real = built_in.get(name) or "none"
        if told != real:
            errors.append(f"the built-in value of {name} is {real}, the page says {told}")
    return errors


def check(page, sources):
    errors = [error for kind in KINDS for error in check_kind(kind, page, sources)]
    return errors + check_built_in_values(page, sources)


def self_test(page, sources):
    """Errors for every change that the check does not notice."""
    unnoticed = []
    for kind in KINDS:
        name = sorted(names_of(page, kind.heading))[0]
        if not check(page.replace(f"| `{name}`", "| `Other`"), sources):
            unnoticed.append(f"{name} gone from the page")
    additions = (
        'std::getenv("VQ_NEW")',
        "vq::GetEnv(name.c_str())",
        'GetSystemParameter("New", value, "general", E_GSR)',
        'constexpr char kFile[] = "new.ini";',
        'constexpr std::string_view kNew = "-ORBNew";',
    )
    for code in additions:
        if not check(page, sources | {"support/new.cpp": code}):
            unnoticed.append(f"{code} in a source")
    if not check(page.replace("`60000`", "`60001`"), sources):
        unnoticed.append("another built-in value")
    return [f"not noticed: {change}" for change in unnoticed]


def main():
    root = Path(sys.argv[1])
    page = (root / "docs" / "configuration.md").read_text()
    sources = read_sources(root)
    errors = self_test(page, sources) if sys.argv[2:] == ["--self-test"] else check(page, sources)
    for error in errors:
        print(error)
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
