#!/usr/bin/env python3
"""check_canary.py CANARY-CLIENT SIMULATOR

A password that nobody else has, looked for wherever a process leaves traces: its log at every
level, its memory, which is what a core holds, its command line and environment, and the server's
log.
"""

import base64
import hashlib
import json
import os
import random
import string
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent / "packages"))
from try_examples import Servers  # noqa: E402


def encoded(password):
    return base64.urlsafe_b64encode(hashlib.sha256(password.encode()).digest())[:8].decode()


def counts(pid, secrets):
    """How often each occurs in the memory of a process."""
    found = dict.fromkeys(secrets, 0)
    with open(f"/proc/{pid}/maps") as maps, open(f"/proc/{pid}/mem", "rb", 0) as memory:
        for line in maps:
            place, access = line.split()[:2]
            start, end = (int(address, 16) for address in place.split("-"))
            if not access.startswith("rw"):
                continue  # what was written to lies in no other
            try:
                memory.seek(start)
                piece = memory.read(end - start)
            except OSError:
                continue
            for secret in secrets:
                found[secret] += piece.count(secret.encode())
    return found


def try_client(program, simulator, encode, work):
    password, fresh = ("Canary" + "".join(random.choices(string.ascii_letters, k=18)) for _ in "12")
    secrets = [password, fresh, encoded(password), encoded(fresh)]
    # Without encoding it travels as it is, and omniORB does not wipe its buffers.
    most = 0 if encode == "1" else 1
    site, log, calls = work / "site.json", work / "log", work / "calls"
    site.write_text(json.dumps({"users": {"alice": {"password": password}},
                                "parameters": {"general": {"PasswordEncode": encode}}}))
    environment = os.environ | {"HOME": f"{work}", "VQ_HOME": f"{work}", "OMNIORB_CONFIG": "/dev/null"}
    (work / "locale.ini").touch()
    with Servers(simulator, site, environment, work, "--log", calls) as servers, \
            open(work / "errors", "w") as errors, subprocess.Popen(
                [program, servers.naming, log], env=environment, text=True, bufsize=1,
                stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=errors) as client:

        def tell(command, when):
            client.stdin.write(command + "\n")
            answer = client.stdout.readline().strip()
            assert answer == "1", f"{when}: {answer}\n{(work / 'errors').read_text()}"
            found = counts(client.pid, secrets)
            print(f"PasswordEncode {encode}, {when}: plain and encoded", *found.values(), "times")
            return found

        found = tell("login\n" + password, "in the session")
        assert found[password] >= 1, "it is kept for logging in again"
        found = tell("change\n" + fresh, "after the change")
        assert found[password] <= most, "the former password stays"
        process = Path(f"/proc/{client.pid}")
        traces = (process / "cmdline").read_text() + (process / "environ").read_text()
        found = tell("logout", "at the end")
        assert max(found.values()) <= most, "something stays in memory"
    assert "Changed User name to: alice" in log.read_text(), "the log is off"
    for text in (log.read_text(), (work / "errors").read_text(), traces, calls.read_text()):
        assert not any(secret in text for secret in secrets), "a trace"


if __name__ == "__main__":
    for parameter in ("1", "0"):
        with tempfile.TemporaryDirectory(prefix="vq-canary-") as directory:
            try_client(sys.argv[1], sys.argv[2], parameter, Path(directory))
