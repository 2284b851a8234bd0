#!/usr/bin/env python3
"""Checks which folder includes which: the arrows of ARCHITECTURE.md.

Checks also that a public header includes public headers only, and that the header of all headers
brings every one of the library.

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

MAY_INCLUDE = {
    "support/os_toolkit": set(),
    "support/security": set(),
    "support/selection": set(),
    "support/diagnostics": BASE,
    "support/foundations": BASE,
    "support/configuration": KIT,
    "support/orb": SUPPORT | WIRE,
    "vq_client_common/text": SUPPORT,
    "vq_client_common/time": SUPPORT | WIRE,
    "vq_client_common/datacenters": SUPPORT | WIRE,
    "vq_client_common/environment": SUPPORT,
    "vq_client_common/session": SUPPORT
    | WIRE
    | {"vq_client_common/text", "vq_client_common/environment"},
    "vq_client_common/authorizations": SUPPORT | WIRE | {"vq_client_common/session"},
    "vq_client_common/connectivity": SUPPORT | WIRE | {"vq_client_common/session"},
    "simulator": SUPPORT | WIRE,
}
# Clients see what is installed: the public headers, and through them the log and the wire types.
PUBLIC_ONLY = {"client", "examples"}

ONLY_IN = {
    r"omniORB4/|tao/|orbsvcs/": {"support/orb"},
    r"xercesc/": {"support/configuration", "vq_client_common/environment"},
    r"spdlog/": {"support/diagnostics"},
    r"openssl/": {"support/security", "support/foundations", "support/orb", "simulator"},
    r"ace/": {"support/orb", "vq_client_common/connectivity"},
    r"CLI/": {"client", "simulator"},
}

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]')


def folder_of(path):
    """The folder of the table that a header belongs to, or None for a foreign one."""
    parts = path.split("/")
    if parts[0] in ("support", LIBRARY):
        return "/".join(parts[:2]) if len(parts) > 2 else None
    return "vq_idl" if parts[0] == "vq_idl" else None


def public_headers(root):
    """Headers that the CMake files list as installed."""
    headers = set()
    for cmake in list(root.glob("support/*/CMakeLists.txt")) + list(
        root.glob(f"{LIBRARY}/*/CMakeLists.txt")
    ):
        text = cmake.read_text()
        match = re.search(r"HEADERS\s(.*?)(?:LINK|\))", text, re.S)
        names = match.group(1).split() if match else []
        headers |= {f"{cmake.parent.relative_to(root)}/{name}" for name in names}
    return headers | {f"{LIBRARY}/Export.h", f"{LIBRARY}/vq_client_common.h", "support/Export.h"}


def check_public(root, public):
    """What is installed must be whole: nothing in it may name a header that stays behind."""
    errors = []
    for name in sorted(public):
        for line in (root / name).read_text().splitlines():
            match = INCLUDE.match(line)
            header = match.group(1) if match else ""
            if folder_of(header) not in (None, "vq_idl") and header not in public:
                errors.append(f"{name}: {header} is not installed")
    everything = (root / LIBRARY / f"{LIBRARY}.h").read_text()
    for name in sorted(public):
        if name.startswith(LIBRARY) and name.count("/") > 1 and f"<{name}>" not in everything:
            errors.append(f"{LIBRARY}/{LIBRARY}.h does not bring {name}")
    return errors


def check(root):
    errors = []
    files = 0
    public = public_headers(root)
    errors += check_public(root, public)
    for folder in list(MAY_INCLUDE) + sorted(PUBLIC_ONLY):
        for source in sorted(p for p in (root / folder).rglob("*") if p.suffix in (".h", ".cpp")):
            files += 1
            name = source.relative_to(root)
            for number, line in enumerate(source.read_text().splitlines(), 1):
                match = INCLUDE.match(line)
                if not match:
                    continue
                header = match.group(1)
                place = f"{name}:{number}: {header}"
                for pattern, allowed in ONLY_IN.items():
                    if re.match(pattern, header) and folder not in allowed:
                        errors.append(f"{place} belongs to {', '.join(sorted(allowed))} alone")
                target = folder_of(header)
                if target is None or target == folder:
                    continue
                if folder in PUBLIC_ONLY:
                    if target != "vq_idl" and header not in public:
                        errors.append(f"{place} is not a public header")
                elif target not in MAY_INCLUDE[folder]:
                    errors.append(f"{place}: {folder} may not include {target}")
    if files < 50:
        errors.append(f"only {files} files were found; this check has looked at the wrong place")
    return errors, files


def main():
    errors, files = check(Path(sys.argv[1]).resolve())
    print("\n".join(errors) or f"{files} files keep to the arrows")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
