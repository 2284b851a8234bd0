#!/usr/bin/env python3
"""check_pages.py DOXYGEN DOXYFILE EXPORTED-NAMES

Makes the pages of the public headers, which must raise no warning, and looks for every exported
name on them. A header with a function that has no comment must raise one.
"""

import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent / "symbols"))
from check_symbols import read_names  # noqa: E402


def make(doxygen, configuration, changes=""):
    """Returns what Doxygen has to say against the headers."""
    run = subprocess.run([doxygen, "-"], input=configuration + changes, text=True,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if run.returncode == 0 or "error:" in run.stdout:
        return [line for line in run.stdout.splitlines() if "error:" in line]
    return [f"status {run.returncode}", run.stdout]


def names_of(tags):
    """Every name that has a place on the pages: classes, functions, objects, with their scope."""
    names = set()
    for compound in ElementTree.parse(tags).getroot():
        scope = compound.findtext("name")
        if compound.get("kind") in ("class", "struct"):
            names.add(scope)
        outer = scope + "::" if compound.get("kind") == "namespace" else ""
        names |= {outer + member.findtext("name") for member in compound.findall("member")}
    return names


def main():
    doxygen, doxyfile, exported = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    configuration = doxyfile.read_text()
    errors = make(doxygen, configuration)
    told = names_of(doxyfile.parent / "names.xml")
    exported_names = {name.split("(")[0] for name in read_names(exported)}
    errors += [f"{name} is exported and stands on no page" for name in exported_names - told]
    with tempfile.TemporaryDirectory() as work:
        header = Path(work) / "bare.h"
        header.write_text("// A banner.\nint Told();  // told\nint Untold();\n")
        found = make(doxygen, configuration, f"\nINPUT={header}\nOUTPUT_DIRECTORY={work}\n"
                     f"GENERATE_TAGFILE={work}/names.xml\nUSE_MDFILE_AS_MAINPAGE=\nGENERATE_HTML=NO\n")
        if len(found) != 1 or "Untold()" not in found[0]:
            errors.append(f"a function without a comment gives {found}")
    print("\n".join(errors))
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
