#!/usr/bin/env python3
"""try_examples.py PREFIX EXAMPLES COMPILER [NAME...]

Builds the examples (all, or those named) against the library that is installed below PREFIX, each
once by CMake's find_package and once by pkg-config, and runs every program against a naming service
and a simulator of its own. The simulator is the one below PREFIX. examples/README.md tells which
files of an example say how it is run and what it must answer.
"""

import os
import re
import socket
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

TIMEOUT = 120  # seconds that a step may take


def run(command, **keywords):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          timeout=TIMEOUT, **keywords)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}: status {done.returncode}\n{done.stdout}")
    return done.stdout


def lines_of(file):
    return file.read_text().splitlines() if file.exists() else []


class Servers:
    """A naming service and a simulator on free loopback ports, for as long as a `with` lasts."""

    def __init__(self, simulator, site, environment, work, *arguments):
        self.command = [simulator, *(["--site", site] if site else []), "--server", "central", *arguments]
        self.site = site or simulator.resolve().parents[1] / "share/vq/simulator/site.json"
        self.environment, self.work, self.processes = environment, work, []

    def start(self, ready, out, *command):
        with open(out, "wb") as file:
            process = subprocess.Popen(command, stdout=file, stderr=file, env=self.environment)
        self.processes.append(process)
        end = time.monotonic() + TIMEOUT
        while process.poll() is None and time.monotonic() < end:
            if ready():
                return True
            time.sleep(0.02)
        return False

    def __enter__(self):
        for _ in range(20):  # somebody else may take the port in between
            with socket.create_server(("127.0.0.1", 0)) as probe:
                port = probe.getsockname()[1]
            names = Path(tempfile.mkdtemp(dir=self.work))
            own = os.environ.get("VQ_NAMING_SERVICE")  # of a build tree, for its ORB product
            command = ([own, "127.0.0.1", str(port), names] if own else
                       ["omniNames", "-start", str(port), "-always", "-datadir", names,
                        "-ORBendPoint", f"giop:tcp:127.0.0.1:{port}"])
            if self.start(lambda: listens(port), names / "naming.out", *command):
                break
        self.naming = f"corbaloc:iiop:127.0.0.1:{port}/NameService"
        said = names / "server.out"
        # Who can log in; a user whose password has expired or who is locked cannot.
        ready = re.compile(f"vq_simulator is ready: server central \\(GSR\\), naming service {self.naming}; "
                           f"users: (admin, ann, soon|alice); passwords: {self.site}\n")
        if not self.start(lambda: ready.fullmatch(said.read_text()), said, *self.command,
                          "--naming", self.naming):
            self.__exit__()
            raise RuntimeError("no servers: " + said.read_text())
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.terminate()
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()


def listens(port):
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


def build(prefix, example, compiler, work):
    """Builds in both ways; returns the two programs."""
    tree, program = work / example.name, work / (example.name + "-by-pkg-config")
    run(["cmake", "-S", example, "-B", tree, f"-DCMAKE_PREFIX_PATH={prefix}",
         f"-DCMAKE_CXX_COMPILER={compiler}"])
    run(["cmake", "--build", tree])
    search = next(prefix.glob("lib/**/pkgconfig"))
    flags = run(["pkg-config", "--cflags", "--libs", "vq_client_common"],
                env=os.environ | {"PKG_CONFIG_PATH": str(search)}).split()
    run([compiler, "-std=c++20", "-Wall", "-Wextra", "-Werror", *sorted(example.glob("*.cpp")),
         "-o", program, *flags])
    return [tree / example.name, program]


def complaint(prefix, example, program, work):
    """Runs one program; returns what is wrong with its answer, or nothing."""
    home = Path(tempfile.mkdtemp(dir=work))
    environment = {name: value for name, value in os.environ.items()
                   if not name.startswith(("VQ_", "ORB", "LC_"))}
    environment |= {"HOME": str(home), "VQ_HOME": str(home / "root"), "LC_ALL": "C.UTF-8",
                    "OMNIORB_CONFIG": "/dev/null",
                    "LD_LIBRARY_PATH": ":".join([  # the ORB product's may lie anywhere
                        str(next(prefix.glob("lib/**/libvq_client_common.so")).parent),
                        *filter(None, [os.environ.get("VQ_ORB_LIBRARIES")])])}
    with Servers(prefix / "bin/vq_simulator", None, environment, work) as servers:
        arguments = [line.replace("@NAMING@", servers.naming)
                     for line in lines_of(example / "arguments.txt")]
        given = example / "input.txt"
        done = subprocess.run([program, *arguments], env=environment, cwd=home, timeout=TIMEOUT,
                              input=given.read_text() if given.exists() else "",
                              capture_output=True, text=True)
    expected, answer = lines_of(example / "expected.txt"), done.stdout.splitlines()
    if not expected:
        return f"{example}/expected.txt expects nothing"
    if done.returncode == 0 and len(answer) == len(expected) and all(
            map(re.fullmatch, expected, answer)):
        return None
    return (f"{program.name}: status {done.returncode}, expected\n" + "\n".join(expected)
            + f"\ngot\n{done.stdout}and on the standard error stream\n{done.stderr}")


def main():
    prefix, folder, compiler = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3]
    names = sys.argv[4:] or sorted(file.parent.name for file in folder.glob("*/CMakeLists.txt"))
    with tempfile.TemporaryDirectory(prefix="vq-examples-") as work, ThreadPoolExecutor(2) as pool:
        def try_one(name):
            programs = build(prefix, folder / name, compiler, Path(work))
            return [complaint(prefix, folder / name, program, Path(work)) for program in programs]

        complaints = sum(pool.map(try_one, names), [])
    found = [text for text in complaints if text]
    print(*found, f"{len(names)} examples, each built in two ways: {len(complaints) - len(found)} of "
          f"{len(complaints)} programs answer as expected", sep="\n")
    return 1 if found or not names else 0


if __name__ == "__main__":
    sys.exit(main())
