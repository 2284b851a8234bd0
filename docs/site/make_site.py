#!/usr/bin/env python3
"""make_site.py DOXYGEN SPHINX-BUILD SOURCE OUTPUT: makes OUTPUT/html, one site of guides, examples
and reference, by OUTPUT/Doxyfile.

Doxygen reads the headers, Sphinx makes the pages: the guides by MyST, the reference by Breathe. Every
file of the tree has its page under its own path, so that links between files work as they are. Exits
with 1 when Doxygen or Sphinx has a warning.
"""

import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

TOCTREE = "\n```{{toctree}}\n:hidden:\n:caption: {}\n\n{}\n```\n"
SECTIONS = {"enum": "enum", "typedef": "typedef", "variable": "var", "function": "func"}


def titled(title, *blocks):
    return "\n\n".join((f"{title}\n{'=' * len(title)}", *blocks)) + "\n"


def brief(node):
    text = " ".join("".join(node.find("briefdescription").itertext()).split())
    return re.sub(r"([\\*`_|<])", r"\\\1", text)


def read_headers(xml):
    """The compounds of the headers by path; what namespaces contain is moved there with its full name."""
    files = {path: ElementTree.parse(path) for path in sorted(xml.glob("*_8h.xml"))}
    headers = {tree.getroot()[0].find("location").get("file"): tree.getroot()[0]
               for tree in files.values()}
    for header in headers.values():
        for inner in header.findall("innernamespace"):
            header.remove(inner)
    for path in sorted(xml.glob("namespace*.xml")):
        namespace = ElementTree.parse(path).getroot()[0]
        for member in namespace.iter("memberdef"):
            member.find("name").text = f"{namespace.findtext('compoundname')}::{member.findtext('name')}"
            header = headers[member.find("location").get("file")]
            kind = SECTIONS[member.get("kind")]
            section = header.find(f"sectiondef[@kind='{kind}']")
            if section is None:
                section = ElementTree.Element("sectiondef", kind=kind)
                header.insert(list(header).index(header.find("briefdescription")), section)
            section.append(member)
    for path, tree in files.items():
        tree.write(path)
    return headers


def name_enums(xml):
    """Gives enumerations without a name one that Sphinx shows as anonymous."""
    for path in xml.glob("class*.xml"):
        tree = ElementTree.parse(path)
        nameless = [enum for enum in tree.iterfind(".//memberdef[@kind='enum']") if not enum.findtext("name")]
        for enum in nameless:
            enum.find("name").text = "@" + enum.findtext("enumvalue/name")
        if nameless:
            tree.write(path)


def entries(header, xml):
    """(role and name, purpose) of the classes and functions of a header."""
    for inner in header.findall("innerclass"):
        compound = ElementTree.parse(xml / (inner.get("refid") + ".xml")).getroot()[0]
        yield f":cpp:any:`{inner.text}`", brief(compound)
    functions = header.findall("sectiondef[@kind='func']/memberdef")
    # Of overloads the first one counts.
    yield from {f":cpp:func:`{member.findtext('name')}`": brief(member)
                for member in reversed(functions)}.items()


def reference(headers, xml):
    """The index of classes and functions, by folder."""
    folders = {}
    for path, header in headers.items():
        folders.setdefault(str(Path(path).parent), []).extend(entries(header, xml))
    blocks = []
    for folder in sorted(folders, key=lambda name: (name.startswith("support"), name)):
        rows = "\n".join(f"   * - {name}\n     - {purpose}" for name, purpose in
                         sorted(folders[folder], key=lambda entry: entry[0].lower().strip("`")))
        if rows:
            blocks += [f"{folder}\n{'-' * len(folder)}",
                       f".. list-table::\n   :widths: 35 65\n\n{rows}"]
    tree = "\n".join("   " + path[:-2] for path in sorted(headers, key=lambda path: Path(path).name.lower()))
    return titled("Classes and functions", *blocks, f".. toctree::\n   :hidden:\n\n{tree}")


def write_source(source, folder, xml):
    def put(path, text):
        (folder / path).parent.mkdir(parents=True, exist_ok=True)
        (folder / path).write_text(text)

    headers = read_headers(xml)
    name_enums(xml)
    for path in headers:
        put(path, titled(Path(path).name, f".. code-block:: cpp\n\n   #include <{path}>",
                         f".. doxygenfile:: {path}"))
    put("reference.rst", reference(headers, xml))

    examples = sorted(path.relative_to(source) for path in source.glob("examples/*/main.cpp"))
    for path in examples:
        code = "".join("   " + line for line in (source / path).read_text().splitlines(True))
        put(path, titled(path.parent.name, f".. code-block:: cpp\n\n{code}"))

    pages = [path.relative_to(source) for top in (".", "docs", "docs/decisions", "examples")
             for path in sorted((source / top).glob("*.md"))]
    texts = {str(path): (source / path).read_text().replace("](../README.md", "](../index.md")
             for path in pages}
    guides = re.findall(r"\]\(([\w-]+)\.md\)", texts["docs/README.md"])
    texts["index.md"] = "".join((
        texts.pop("README.md"), TOCTREE.format("Guides", "\n".join(f"docs/{name}" for name in guides)),
        TOCTREE.format("Reference", "reference\nexamples/README"),
        TOCTREE.format("Project", "\n".join(
            ["docs/README", *(str(path.with_suffix("")) for path in pages
                              if len(path.parts) == 1 and path.stem != "README")]))))
    texts["docs/README.md"] += TOCTREE.format("Decisions", "decisions/*").replace(
        ":hidden:", ":hidden:\n:glob:")
    texts["examples/README.md"] += TOCTREE.format("Examples", "\n".join(
        str(path.relative_to("examples").with_suffix("")) for path in examples))
    for path, text in texts.items():
        put(path, text)
    for path in ("LICENSE", "docs/site/conf.py", "docs/site/site.css"):
        shutil.copy(source / path, folder)


def bundle_script(html):
    """The script of Debian 12's Furo imports another file, which a browser refuses outside of modules:
    puts that file in its place."""
    script = html / "_static" / "scripts" / "furo.js"
    script.write_text(re.sub(r'^import \w+ from "./([\w.-]+)";$',
                             lambda found: (script.parent / found[1]).read_text(),
                             script.read_text(), flags=re.M))


def main(doxygen, sphinx, source, output):
    output = Path(output)
    for made in ("xml", "source", "html"):
        shutil.rmtree(output / made, ignore_errors=True)
    read = subprocess.run([doxygen, output / "Doxyfile"])
    write_source(Path(source), output / "source", output / "xml")
    made = subprocess.run([sphinx, "-q", "-W", "--keep-going", "-E", "-d", output / "doctrees",
                           output / "source", output / "html"])
    bundle_script(output / "html")
    (output / "html" / ".buildinfo").unlink(missing_ok=True)  # has paths of this host
    return 1 if read.returncode or made.returncode else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
