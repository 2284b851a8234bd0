#!/usr/bin/env python3
"""check_pages.py EXPORTED-NAMES OUTPUT MAKE-SITE...

Makes the site in OUTPUT, which must raise no warning; MAKE-SITE is the command. Then every exported
name has a place in the reference, and every link to a page or a heading of the site leads there. A header
with a function that has no comment must raise a warning.
"""

import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urldefrag

sys.path.insert(0, str(Path(__file__).parent.parent / "symbols"))
from check_symbols import read_names  # noqa: E402


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.links, self.ids = [], set()
        self.feed(path.read_text())

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name == "id":
                self.ids.add(value)
            elif name in ("href", "src"):
                self.links.append(value)


def dead_links(html):
    pages = {path.resolve(): Page(path) for path in html.rglob("*.html")}
    for path, page in pages.items():
        for link in page.links:
            if re.match(r"\w+:", link):
                continue
            target, anchor = urldefrag(unquote(link))
            target = (path.parent / target.split("?")[0]).resolve() if target else path
            if not target.exists() or anchor and target in pages and anchor not in pages[target].ids:
                yield f"{path.relative_to(html.resolve())}: {link}"


def names_of(tags):
    """Every name that has a place in the reference: classes, functions, objects, with their scope."""
    names = set()
    for compound in ElementTree.parse(tags).getroot():
        scope = compound.findtext("name")
        if compound.get("kind") in ("class", "struct"):
            names.add(scope)
        outer = scope + "::" if compound.get("kind") == "namespace" else ""
        names |= {outer + member.findtext("name") for member in compound.findall("member")}
    return names


def warnings_of_bare_function(doxygen, doxyfile):
    with tempfile.TemporaryDirectory() as work:
        header = Path(work) / "bare.h"
        header.write_text("// A banner.\nint Told();  // told\nint Untold();\n")
        changes = f"\nINPUT={header}\nOUTPUT_DIRECTORY={work}\nGENERATE_TAGFILE={work}/names.xml\n"
        run = subprocess.run([doxygen, "-"], input=doxyfile.read_text() + changes, text=True,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return [line for line in run.stdout.splitlines() if "error:" in line]


def main(exported, output, *make_site):
    output = Path(output)
    if subprocess.run(make_site).returncode:
        return 1
    named = names_of(output / "names.xml")
    exported_names = {name.split("(")[0] for name in read_names(Path(exported))}
    errors = [f"{name} is exported and is on no page" for name in exported_names - named]
    errors += dead_links(output / "html")
    found = warnings_of_bare_function(make_site[2], output / "Doxyfile")
    if len(found) != 1 or "Untold()" not in found[0]:
        errors.append(f"a function without a comment gives {found}")
    print("\n".join(errors))
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
