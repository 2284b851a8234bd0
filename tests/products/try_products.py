#!/usr/bin/env python3
"""Clients, servers and naming services of two builds against each other, in all combinations.

    tests/products/try_products.py BUILD_A BUILD_B

Each build is a directory where the whole tree was built (build/dev, build/tao). For every choice of
naming service, server and client among the two it starts a naming service and a simulated central
server on free loopback ports and runs vqclient through the scenarios below; twice the same build is
one combination. Prints a table and exits with 1 when anything in it failed. Nothing of the account is
read, and nothing is left behind.
"""

import itertools
import json
import os
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

SITE = Path(__file__).resolve().parents[2] / "simulator/site.json"
START_LIMIT = 60  # seconds
CALL_LIMIT = 120


class Failed(Exception):
    pass


class LeftOut(Exception):
    """docs/orb-products.md says that this differs."""


class Build:
    def __init__(self, directory):
        self.directory = Path(directory).resolve()
        cache = (self.directory / "CMakeCache.txt").read_text()
        self.product = re.search(r"^VQ_ORB:\w+=(.*)$", cache, re.M).group(1)
        self.naming = self.directory / "naming-service"
        self.server = self.directory / "simulator/vq_simulator"
        self.client = self.directory / "client/vqclient"
        for program in (self.naming, self.server, self.client):
            if not program.exists():
                sys.exit(f"{program} is missing: build the whole tree there first")


def listens(port):
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Site:
    """A naming service and a server for as long as a `with` lasts, and a client to call them."""

    def __init__(self, naming, server, client):
        self.naming, self.server, self.client = naming, server, client
        self.processes = []

    def __enter__(self):
        self.work = Path(tempfile.mkdtemp(prefix="vq-products-"))
        (self.work / "root/config").mkdir(parents=True)
        self.set_client({})
        hidden = re.compile("VQ_|XDG_|ORB|OMNIORB|SUPPORT_CJK$|ENABLE_TEST_CALLBACK$")
        self.environment = {name: value for name, value in os.environ.items()
                            if not hidden.match(name)}
        self.environment |= {"HOME": str(self.work), "VQ_HOME": str(self.work / "root"),
                             "OMNIORB_CONFIG": "/dev/null"}
        try:
            self.start_naming()
            self.start_server()
        except Exception:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.kill()
            process.wait()
        shutil.rmtree(self.work, ignore_errors=True)

    def start(self, ready, *command):
        with open(self.work / "out", "ab") as out:
            process = subprocess.Popen(command, stdout=out, stderr=out, env=self.environment)
        self.processes.append(process)
        end = time.monotonic() + START_LIMIT
        while process.poll() is None and time.monotonic() < end:
            if ready():
                return process
            time.sleep(0.02)
        raise Failed(f"{command[0]} does not start: {(self.work / 'out').read_text()}")

    def start_naming(self):
        for attempt in range(10):  # somebody else may take the port in between
            self.port = free_port()
            data = self.work / f"names-{attempt}"
            data.mkdir()
            try:
                self.start(lambda: listens(self.port), self.naming.naming, "127.0.0.1",
                           str(self.port), data)
                return
            except Failed as failure:
                last = failure
        raise last

    def start_server(self, *options):
        ready = self.work / "ready"
        ready.unlink(missing_ok=True)
        self.running = self.start(
            ready.exists, self.server.server, "--site", SITE, "--server", "central", "--kind", "GSR",
            "--naming", f"corbaloc:iiop:127.0.0.1:{self.port}/NameService",
            "--log", self.work / "calls", "--ready-file", ready, *options)

    def kill_server(self):
        self.running.send_signal(signal.SIGKILL)
        self.running.wait()

    def make_certificate(self, name):
        """One that is its own authority, for this host; the settings that show it."""
        certificate, key = (str(self.work / f"{name}.{end}") for end in ("pem", "key"))
        subprocess.run(
            ["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
             "-nodes", "-days", "2", "-subj", f"/CN={name}", "-addext",
             "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", certificate],
            capture_output=True, check=True)
        return {"-SSLCertificate": certificate, "-SSLPrivateKey": key}

    def set_client(self, settings):
        variables = "".join(f'<var name="{name}">{value}</var>' for name, value in settings.items())
        (self.work / "root/config/vq.xml").write_text(
            f'<domain><scope name="default">{variables}</scope></domain>')

    def operations(self):
        events = map(json.loads, (self.work / "calls").read_text().splitlines())
        return [event["operation"] for event in events if event["event"] == "call"]

    def call(self, code, *arguments, user="ann", password=None):
        """Runs vqclient, insists on its exit code, and returns what it printed."""
        done = subprocess.run(
            [self.client.client, *arguments, "--server", "central", "--user", user,
             "--naming", f"127.0.0.1:{self.port}"],
            input=(password or user + "-secret") + "\n", text=True, capture_output=True,
            timeout=CALL_LIMIT, env=self.environment, check=False)
        if done.returncode != code:
            raise Failed(f"vqclient {' '.join(arguments)}: exit code {done.returncode} instead of "
                         f"{code}\n{done.stdout}{done.stderr}")
        return done.stdout


def expect(condition, text):
    if not condition:
        raise Failed(text)


def login(site):
    site.call(0, "login")
    site.call(1, "login", password="guess")
    site.call(48, "login", user="expired")
    site.call(49, "login", user="locked")


def parameter(site):
    value = site.call(0, "param", "get", "general", "Language")
    expect(value.strip() == "ENG", f"the parameter is {value!r}")


def authorizations(site):
    shown = site.call(0, "--json", "auth")
    expect(json.loads(shown), f"no authorizations: {shown}")
    site.call(0, "auth", "check", "table", "TABLE=PAY01", "BROWSE_ACCESS")
    site.call(7, "auth", "check", "table", "TABLE=PAY01", "FULL_ACCESS")


def keep_alive(site):
    before = len(site.operations())
    site.call(0, "session", "--interval", "1", "--count", "2")
    calls = site.operations()[before:]
    expect(calls.count("CRB_Unregister") == 1, f"no logout among {calls}")
    expect(calls.count("CRB_ClientKeepAlive") == 2, f"no two keep-alives among {calls}")


def callback(site):
    """Over a connection of the server's."""
    expect("[good] callback to " in (shown := site.call(0, "doctor")), shown)


def bidirectional(site):
    """Over the client's own one."""
    if site.server.product == "TAO":  # where the client listens at the connection's address alone
        raise LeftOut
    shown = site.call(0, "doctor")
    expect("[good] callback over the client's connection" in shown, shown)


def server_dies(site):
    site.kill_server()
    site.call(54, "login")
    site.start_server()
    site.call(0, "login")


def tls(site):
    """Both show a certificate; then a server with another one, and a server that has no TLS."""
    # A thread of the ORB's may end after OpenSSL's exit handler, and then a sanitizer finds what
    # OpenSSL kept for it.
    (site.work / "known-leaks").write_text("leak:CRYPTO_zalloc\n")
    site.environment["LSAN_OPTIONS"] = f"suppressions={site.work / 'known-leaks'}"
    own, other, client = map(site.make_certificate, ("own", "other", "client"))
    site.set_client(client | {"-SSLCACertificate": own["-SSLCertificate"]})
    believes = ["-SSLCACertificate", client["-SSLCertificate"]]
    for code, options in ((0, own), (54, other), (54, None)):
        site.kill_server()
        site.start_server(*(itertools.chain(believes, *options.items()) if options else ()))
        site.call(code, "login")


SCENARIOS = [login, parameter, authorizations, keep_alive, callback, bidirectional, server_dies, tls]


def run(site, failures, place):
    results = []
    for scenario in SCENARIOS:
        try:
            scenario(site)
            results.append("ok")
        except LeftOut:
            results.append("-")
        except (Failed, subprocess.TimeoutExpired) as failure:
            results.append("FAILED")
            failures.append(f"{place}, {scenario.__name__}: {failure}")
    return results


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    builds = {letter: Build(directory) for letter, directory in zip("AB", sys.argv[1:])}
    for letter, build in builds.items():
        print(f"{letter}: {build.product}, {build.directory}")
    names = [scenario.__name__.replace("_", " ") for scenario in SCENARIOS]
    widths = [max(len(name), 6) for name in names]
    print("\nnaming server client  " + "  ".join(n.ljust(w) for n, w in zip(names, widths)))
    failures = []
    letters = "A" if builds["A"].directory == builds["B"].directory else "AB"
    for naming, server, client in itertools.product(letters, repeat=3):
        place = f"naming {naming}, server {server}, client {client}"
        try:
            with Site(builds[naming], builds[server], builds[client]) as site:
                results = run(site, failures, place)
        except Failed as failure:
            results = ["-"] * len(SCENARIOS)
            failures.append(f"{place}: {failure}")
        print(f"{naming:6} {server:6} {client:7} "
              + "  ".join(r.ljust(w) for r, w in zip(results, widths)), flush=True)
    for failure in failures:
        print(f"\n{failure}", file=sys.stderr)
    print(f"\n{len(failures)} failed" if failures else "\nall passed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
