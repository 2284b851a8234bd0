#!/usr/bin/env python3
"""try_first_client.py BUILD SOURCE COMPILER

Takes the files, the command and the answer from docs/first-client.md, and has them built and run as
an example against a copy that is installed for it.
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path


def main():
    build, source, compiler = sys.argv[1:4]
    page = (Path(source) / "docs" / "first-client.md").read_text()
    files = dict(re.findall(r"`first_client/(\S+)`:\n\n```\w*\n(.*?)```", page, re.S))
    command = re.search(r"^printf '(.*)\\n' \| build/first_client (.*)$", page, re.M)
    answer = re.search(r"^It prints:\n\n```\n(.*?)```", page, re.M | re.S)
    files["input.txt"] = command[1] + "\n"
    files["arguments.txt"] = "\n".join(
        re.sub(r"corbaloc:\S+", "@NAMING@", word) for word in command[2].split()) + "\n"
    files["expected.txt"] = "".join(re.escape(line) + "\n" for line in answer[1].splitlines())

    with tempfile.TemporaryDirectory(prefix="vq-first-client-") as work:
        prefix, folder = Path(work) / "prefix", Path(work) / "examples" / "first_client"
        subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL)
        folder.mkdir(parents=True)
        for name, text in files.items():
            (folder / name).write_text(text)
        return subprocess.run([Path(source) / "tests" / "packages" / "try_examples.py", prefix,
                               folder.parent, compiler, "first_client"]).returncode


if __name__ == "__main__":
    sys.exit(main())
