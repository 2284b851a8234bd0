#!/usr/bin/env python3
"""try_first_client.py BUILD SOURCE COMPILER

Takes the files, the command and the answer from docs/first-client.md, and has them built and run as
an example against a copy that is installed for it; and so the program of README.md.
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
    naming = ["-ORBInitRef", "NameService=@NAMING@"]  # in place of what the reader has stored
    files["arguments.txt"] = "\n".join(command[2].split() + naming) + "\n"
    files["expected.txt"] = "".join(re.escape(line) + "\n" for line in answer[1].splitlines())

    readme = re.search(r"```cpp\n(#include.*?)```", (Path(source) / "README.md").read_text(), re.S)
    examples = {"first_client": files, "readme": {
        "CMakeLists.txt": files["CMakeLists.txt"].replace("first_client", "readme"),
        "main.cpp": readme[1], "input.txt": files["input.txt"],
        "arguments.txt": "\n".join(naming) + "\n",
        "expected.txt": "".join(files["expected.txt"].splitlines(True)[1:3])}}

    with tempfile.TemporaryDirectory(prefix="vq-first-client-") as work:
        prefix, folder = Path(work) / "prefix", Path(work) / "examples"
        subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL)
        for example, texts in examples.items():
            (folder / example).mkdir(parents=True)
            for name, text in texts.items():
                (folder / example / name).write_text(text)
        return subprocess.run([Path(source) / "tests" / "packages" / "try_examples.py", prefix,
                               folder, compiler, *examples]).returncode


if __name__ == "__main__":
    sys.exit(main())
