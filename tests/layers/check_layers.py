#!/usr/bin/env python3
"""Checks which folder includes which: the arrows of ARCHITECTURE.md.

Checks also the order of the files within session/, that a public header includes public headers
only, and that the header of all headers brings every one of the library.

Each row of MAY_INCLUDE names a folder of this tree and the folders whose headers it may include,
beside its own. ONLY_IN names third-party headers and the folders that may include them.
"""

import re
import sys
from pathlib import Path

BASE = {"support/os_toolkit", "support/security", "support/selection"}
KIT = BASE | {"support/diagnostics", "support/foundations"}
SUPPORT = KIT | {"support/configuration"}
WIRE = {"support/orb", "vq_idl"}
LIBRARY = "vq_client_common"
SESSION = f"{LIBRARY}/session"

MAY_INCLUDE = {
    "support/os_toolkit": set(),
    "support/security": set(),
    "support/selection": set(),
    "support/diagnostics": BASE,
    "support/foundations": BASE | {"support/diagnostics"},
    "support/configuration": KIT,
    "support/orb": SUPPORT | WIRE,
    "support/orb/omniorb": SUPPORT | WIRE,
    "support/orb/tao": SUPPORT | WIRE,
    "support/grants": BASE | {"support/diagnostics"} | WIRE,
    f"{LIBRARY}/text": SUPPORT,
    f"{LIBRARY}/time": SUPPORT | WIRE,
    f"{LIBRARY}/datacenters": SUPPORT | WIRE,
    f"{LIBRARY}/environment": SUPPORT,
    SESSION: SUPPORT | WIRE | {f"{LIBRARY}/text", f"{LIBRARY}/environment"},
    f"{LIBRARY}/authorizations": SUPPORT | WIRE | {SESSION, "support/grants"},
    f"{LIBRARY}/connectivity": SUPPORT | WIRE | {SESSION},
    "simulator": SUPPORT | WIRE,
    # Clients see what is installed: the public headers, and through them the log and the wire types.
    "client": None,
    "examples": None,
}
# Within session/ a file may include only files that stand further down in this list.
SESSION_ORDER = (
    "Session", "GlobalFuncs", "PasswordPolicy", "LoginHandler", "internal/VersionGate",
    "internal/Registrant", "LoginExceptions", "ServerLocale", "SettingsReport",
    "StoredSettings",
    "SystemParameterHandler", "internal/UsersManager",
    "CorbaGlobalFuncs", "internal/CorbaServerPackManager", "ConnectionSettings",
    "internal/Collaborators",
    "ClientId", "ServerId", "LoginResult", "CorbaCallbackCommand",
    "VQBaseException",
)
ONLY_IN = {
    r"omniORB4/": {"support/orb", "support/orb/omniorb"},
    r"tao/|orbsvcs/": {"support/orb", "support/orb/tao"},
    r"xercesc/": {"support/configuration", "vq_client_common/environment"},
    r"spdlog/": {"support/diagnostics"},
    r"openssl/": {"support/security", "support/foundations", "support/orb", "support/orb/omniorb",
                 "support/orb/tao", "simulator"},
    r"ace/": {"support/orb", "support/orb/tao", "vq_client_common/connectivity"},
    r"CLI/": {"client", "simulator"},
}


def folder_of(header):
    """The folder of the table that a header belongs to, or None for a foreign one."""
    match = re.match(rf"vq_idl(?=/)|support/orb/(omniorb|tao)(?=/)|(support|{LIBRARY})/[^/]+(?=/)",
                     header)
    return match and match[0]


def includes(file):
    return re.findall(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', file.read_text(), re.M)


def public_headers(root):
    """Headers that the CMake files list as installed."""
    headers = {f"{LIBRARY}/{LIBRARY}.h", "support/Export.h"}
    for top in ("support", LIBRARY):
        for cmake in root.glob(f"{top}/*/CMakeLists.txt"):
            listed = re.search(r"HEADERS\s(.*?)(?:LINK|\))", cmake.read_text(), re.S)
            headers |= {f"{top}/{cmake.parent.name}/{name}"
                        for name in (listed[1].split() if listed else ())}
    return headers


def check_session(root, files):
    """The files of session/ in one order, so that none includes another in a circle."""
    rank = {name: i for i, name in enumerate(SESSION_ORDER)}
    stem = re.compile(rf"{SESSION}/(.*)\.(?:h|cpp)$")
    for source in (source for folder, source in files if folder == SESSION):
        name = stem.fullmatch(str(source.relative_to(root)))[1]
        if name not in rank:
            yield f"{SESSION}/{name} is not in SESSION_ORDER"
            continue
        for header in filter(stem.fullmatch, includes(source)):
            other = stem.fullmatch(header)[1]
            if other != name and rank.get(other, -1) < rank[name]:
                yield f"{SESSION}/{name} may not include {other}, which is above it"


def check(root, public, files):
    yield from check_session(root, files)
    for name in sorted(public):
        # What is installed must be whole: nothing in it may name a header that stays behind.
        for header in includes(root / name):
            if folder_of(header) not in (None, "vq_idl") and header not in public:
                yield f"{name}: {header} is not installed"
        everything = includes(root / LIBRARY / f"{LIBRARY}.h")
        if name.startswith(LIBRARY) and name.count("/") > 1 and name not in everything:
            yield f"{LIBRARY}/{LIBRARY}.h does not bring {name}"
    for folder, source in files:
        for header in includes(source):
            place, target = f"{source.relative_to(root)}: {header}", folder_of(header)
            for pattern, allowed in ONLY_IN.items():
                if re.match(pattern, header) and folder not in allowed:
                    yield f"{place} belongs to {', '.join(sorted(allowed))} alone"
            if target in (None, folder):
                continue
            if MAY_INCLUDE[folder] is None:
                if target != "vq_idl" and header not in public:
                    yield f"{place} is not a public header"
            elif target not in MAY_INCLUDE[folder]:
                yield f"{place}: {folder} may not include {target}"
    if len(files) < 50:
        yield f"only {len(files)} files were found; this check has looked at the wrong place"


def main():
    root = Path(sys.argv[1]).resolve()
    files = [(folder, source) for folder in MAY_INCLUDE
             for source in sorted((root / folder).rglob("*")) if source.suffix in (".h", ".cpp")
             if folder_of(str(source.relative_to(root))) in (None, folder)]
    errors = list(check(root, public_headers(root), files))
    print("\n".join(errors) or f"{len(files)} files keep to the arrows")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
