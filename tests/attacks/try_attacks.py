#!/usr/bin/env python3
"""try_attacks.py PRODUCT VQCLIENT [NAME...]

Attacks on remote calls: vqclient against hostile peers, one row an attack. A row has to end with its
results, for its cause, and in its time; no operation may be received more often than in a session
that nothing disturbs, save where the row says so; and with TLS nothing but look-ups arrives
unencrypted. NAME runs the rows whose names contain it, and prints the client's log.
"""

import contextlib
import dataclasses
import os
import re
import resource
import socket
import ssl
import subprocess
import sys
import tempfile
import time
import warnings
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import hostile_peer as h

TIME_OUT = 2.0  # of connections and of calls
# What a busy machine takes for all else: less than another time-out, but for a sanitized client.
SLACK = float(os.environ.get("VQ_ATTACK_SLACK", 1.7))
PASSWORD = "never-in-the-clear"
LOOK_UPS = {"resolve", "_non_existent", "_is_a"}
CHALLENGE, REGISTER, UNREGISTER, ALIVE = ("CRB_AquireChallenge", "CRB_Register", "CRB_Unregister",
                                          "CRB_ClientKeepAlive")


@dataclasses.dataclass
class Row:
    name: str
    script: dict = dataclasses.field(default_factory=dict)  # the server's
    results: tuple = (0,)  # of the login; or of login, keep-alives and logout in a session
    logged: str = ""  # what log or output has to hold, a regular expression; places as <name>
    limit: float = 0  # time-outs that may pass
    more: dict = dataclasses.field(default_factory=dict)  # requests beyond the undisturbed session's
    naming: dict = dataclasses.field(default_factory=dict)  # the naming service's script
    instead: bytes = None  # what it sends while it does not read the name of a server, which is long
    second: dict = dataclasses.field(default_factory=dict)  # another server's, the place "second"
    greeting: object = None  # of the server's connections
    profiles: tuple = ("server",)  # the places in the server's reference
    alternates: tuple = ()  # places that are its alternate addresses
    root: tuple = ("naming",)  # the places in the naming service's address
    tls: str = ""  # the server's context; "none": TLS is on and the server has none
    naming_tls: str = ""
    own_port: bool = False  # the client listens at the place "client"
    own_tls: bool = False  # there, with a certificate
    version: int = 2  # of GIOP, in the references and in the naming service's address
    arguments: tuple = ()
    keep_alives: int = 0  # more than 0: a session
    user: bytes = b"alice"
    offered: tuple = ()  # components of the server's reference
    code_set: object = None  # that the user's name has to arrive in
    tao: object = dataclasses.field(default_factory=dict)  # the fields that differ with TAO; None
                                                           # where docs/orb-products.md says why


def lost(name, script, **keywords):
    """A server that costs a login one call, and one time-out at most."""
    return Row(name, script, **({"limit": 1} | keywords))


def greeted(data):
    def greeting(peer, connection):
        connection.sendall(data)
        peer.wait(3 * TIME_OUT)
        return False
    return greeting


def greeted_for_ever(data):
    def greeting(peer, connection):
        connection.recv(4096)
        while True:  # until the client closes
            connection.sendall(data * 1000)
    return greeting


BINDINGS = 3  # that a login tries: for two parameters and for the registration
ROWS = [
    Row("undisturbed", results=(1,)),
    Row("an undisturbed session", results=(1, 1, 1, 1), keep_alives=2),

    # Names arrive as the bytes that they are, whatever code sets a server takes. With TAO no code
    # set is named.
    *(Row(f"code sets: {user!r} to {' and '.join(map(hex, sets)) or 'none'}", results=(1,),
          user=user, offered=(h.offering(*sets),) if sets else (),
          code_set=sets[0] if sets else None, tao={"code_set": None})
      for user in ("\u0142\u00e9".encode(), b"ren\xe9")
      for sets in ((), (h.UTF8,), (h.UTF8, h.LATIN1), (h.LATIN1, h.UTF8), (h.LATIN1,))),

    # It ends.
    lost("no reply", {REGISTER: h.silent}, logged="TIMEOUT"),
    lost("a reply byte by byte", {REGISTER: h.trickle(0.3)}, logged="TIMEOUT"),
    lost("a reply byte by byte, fast", {REGISTER: h.trickle(0.05)}, logged="TIMEOUT"),
    *(Row(f"a reply in small pieces{word}", {REGISTER: h.trickle(0.02, 5)}, results=(1,), tls=tls)
      for word, tls in (("", ""), (", over TLS", "good"))),
    lost("a reply byte by byte, over TLS", {REGISTER: h.trickle(0.3)}, logged="TIMEOUT", tls="good"),
    lost("fragments without end", {REGISTER: h.fragments()}, logged="TIMEOUT"),
    lost("many fragments without end", {REGISTER: h.fragments(0.001)}, logged="TIMEOUT"),
    lost("a late reply", {REGISTER: h.late(3)}, logged="TIMEOUT"),
    lost("a reply to another request", {REGISTER: lambda call: call.send(
        call.answer()[:12] + b"\x99\x99\x99\x09" + call.answer()[16:])}),
    lost("the challenge late", {CHALLENGE: h.late(3)}, logged="TIMEOUT"),
    Row("a connection that is never served", profiles=("silent",), results=(54,), limit=BINDINGS,
        logged="TIMEOUT"),
    Row("an address where no connection completes", profiles=("hole",), results=(54,),
        limit=BINDINGS, logged="TIMEOUT"),
    Row("a server that is gone", profiles=("dead",), results=(54,), logged="TRANSIENT"),
    lost("a naming service that is silent", root=("silent",), script={}, results=(55,),
         logged="naming service does not answer.*TIMEOUT"),
    lost("a naming service where no connection completes", root=("hole",), script={}, results=(55,),
         logged="naming service does not answer"),
    Row("a naming service that is gone", root=("dead",), results=(55,),
        logged="naming service does not answer.*TRANSIENT"),
    lost("forwarded to itself", {REGISTER: h.forwarded("server")}, more={REGISTER: 30}),
    lost("forwarded to itself, and omniORB renews the time", {REGISTER: h.forwarded("server")},
         more={REGISTER: 30}, arguments=("-ORBresetTimeOutOnRetries", "1"), tao=None),
    lost("bidirectional, and omniORB may not use GIOP 1.2", {}, results=(1,), tao=None,
         arguments=("-BiDirPolicy", "1", "-ORBmaxGIOPVersion", "1.1")),
    lost("forwarded to each other", {REGISTER: h.forwarded("second")},
         second={REGISTER: h.forwarded("server")}, more={REGISTER: 30}),
    lost("forwarded to a dead address", {REGISTER: h.forwarded("dead")},
         logged="refused at <dead>", tao={"logged": ""}),
    Row("the naming service is dead, and another silent", root=("dead", "silent"), results=(55,),
        limit=1, logged="no answer from <silent>", tao={"logged": ""}),
    Row("a keep-alive forwarded to no address", {ALIVE: [h.forwarded()]}, results=(1, 54, 1),
        keep_alives=2),
    Row("a keep-alive forwarded to a dead address for good",
        {ALIVE: [h.forwarded("dead", status=4)]}, results=(1, 54, 1), keep_alives=2, tao=None),
    Row("a keep-alive forwarded to a server of another product, which has no such object",
        {ALIVE: [h.forwarded("second")]}, results=(1, 54, 1), keep_alives=2,
        second={ALIVE: h.raised("OBJECT_NOT_EXIST", h.NO, minor=0x4A430001)}, more={ALIVE: 1}),
    Row("a keep-alive whose reply asks for another form of address", {ALIVE: [h.other_form(99)]},
        results=(1, 54, 1), keep_alives=2),
    lost("forwarded to many dead addresses", {REGISTER: h.forwarded(*["dead"] * 40)}),
    lost("forwarded to a silent address", {REGISTER: h.forwarded("silent")},
         logged="no answer from <silent>", tao={"logged": ""}),
    lost("forwarded to many silent addresses", {REGISTER: h.forwarded(*["silent"] * 20)}),
    lost("forwarded to where no connection completes", {REGISTER: h.forwarded("hole")}),
    lost("forwarded to many such addresses", {REGISTER: h.forwarded(*["hole"] * 20)}),
    Row("the naming service forwards to itself", naming={"resolve": h.forwarded("naming")},
        results=(54,), limit=BINDINGS),
    # Each look-up has its own time, and the text of code 54 needs one more.
    Row("a naming service whose replies come byte by byte", naming={"resolve": h.trickle(0.3)},
        results=(54,), limit=BINDINGS + 1, logged="TIMEOUT"),

    Row("a whole login under one deadline", profiles=("silent",), results=(54,), limit=1,
        arguments=("--max-time", str(int(TIME_OUT)))),

    # Before GIOP 1.2 the caller reads, also with bidirectional IIOP.
    *(lost(f"no reply, GIOP 1.{version}, bidirectional", {REGISTER: h.silent}, logged="TIMEOUT",
           version=version, arguments=("-BiDirPolicy", "1")) for version in (0, 1)),
    *(Row(f"half a reply to another request, GIOP 1.{version}", version=version, results=(55,),
          naming={"_non_existent": h.half_stray}, limit=1) for version in (0, 1)),
    Row("a naming service stops to read, and sends half a call, bidirectional", results=(54,),
        instead=h.HALF_TO_PROFILE, arguments=("-BiDirPolicy", "1"), limit=BINDINGS + 1,
        logged="TIMEOUT"),

    Row("programs that call the client and do not read", {UNREGISTER: h.deaf(4)}, own_port=True,
        keep_alives=1, results=(1, 1, 1), limit=0.7, tao=None),

    # The time is over while a thread of the ORB's adds to the reply.
    Row("a large reply bit by bit, bidirectional",
        {ALIVE: [lambda call: h.drip(call, call.reply(body=bytes(1 << 19)), 0.005, 400, 3)],
         UNREGISTER: h.late(0.5)}, results=(1, 54, 1), keep_alives=2, limit=1.5,
        arguments=("-BiDirPolicy", "1"),
        tao={"results": (1, 54, 54)}),  # it keeps the connection on which the reply is missing

    # It runs at most once.
    Row("closed after the request", {REGISTER: h.closed}, logged="COMM_FAILURE"),
    Row("reset after the request", {REGISTER: h.reset}, logged="COMM_FAILURE"),
    Row("half a reply", {REGISTER: lambda call: call.send(call.answer()[:30]) and False},
        logged="COMM_FAILURE"),
    Row("half a header", {REGISTER: lambda call: call.send(call.answer()[:7]) and False},
        logged="COMM_FAILURE"),
    Row("CloseConnection for the first request", {REGISTER: [h.close_orderly]}, results=(1,),
        more={REGISTER: 1}),
    Row("TLS, CloseConnection for one request", {REGISTER: [h.close_orderly]}, results=(1,),
        more={REGISTER: 1}, tls="good"),
    Row("CloseConnection for each request", {REGISTER: h.close_orderly}, more={REGISTER: 1}),
    Row("CloseConnection behind the beginning of a reply, GIOP 1.1", {REGISTER: h.begun(8)},
        version=1),
    Row("CloseConnection, then closed", {REGISTER: [h.close_orderly, h.closed]},
        more={REGISTER: 1}),
    # TAO asks the next address, where the server states that it has not processed the request.
    *(Row(f"{name} with COMPLETED_{word}", {REGISTER: h.raised(name, completed)}, logged=name,
          profiles=("server", "second"),
          tao={"results": (1,), "more": {REGISTER: 1}, "logged": ""}
          if completed == h.NO and name != "OBJECT_NOT_EXIST" else {})
      for name in ("TRANSIENT", "COMM_FAILURE", "OBJECT_NOT_EXIST")
      for word, completed in (("YES", h.YES), ("NO", h.NO), ("MAYBE", h.MAYBE))),
    *(Row(f"forwarded to one that {word}", {REGISTER: h.forwarded("second")},
          second={REGISTER: act}, more={REGISTER: 1})
      for word, act in (("closes", h.closed), ("resets", h.reset),
                        ("raises TRANSIENT", h.raised("TRANSIENT", h.YES)))),
    *(Row(f"another form of address, {word}", {REGISTER: act}, tao={"more": {REGISTER: 1}})
      for word, act in (("for ever", h.other_form(2)), ("of no known kind", h.other_form(99)))),
    Row("forwarded to another", {REGISTER: h.forwarded("second")}, results=(1,),
        more={REGISTER: 1}),
    Row("several addresses, and the first closes", {REGISTER: h.closed},
        profiles=("server", "second")),

    # Connections that died while idle.
    *(Row(name, {ALIVE: [h.then(h.answered, act, wait)]}, results=(1, 1, 1, 1), keep_alives=2)
      for name, act, wait in (("closed while idle", h.closed, 0.2), ("reset while idle", h.reset, 0.2),
                              ("CloseConnection while idle", h.close_orderly, 0.2),
                              ("closed right behind the reply", h.closed, 0),
                              ("reset right behind the reply", h.reset, 0),
                              ("CloseConnection right behind the reply", h.close_orderly, 0))),
    Row("a reply, unrequested replies and CloseConnection, bidirectional",
        {op: h.among_strays for op in ("CRB_GetSystemParameterValue", CHALLENGE, REGISTER)},
        results=(1,), arguments=("-BiDirPolicy", "1")),
    Row("CloseConnection after each answer", {op: h.then(h.answered, h.close_orderly) for op in (
        "_non_existent", "CRB_GetSystemParameterValue", CHALLENGE, REGISTER)}, results=(1,)),
    Row("the naming service closes after each answer",
        naming={op: h.then(h.answered, h.close_orderly) for op in LOOK_UPS}, results=(1,)),

    # Several addresses.
    *(lost(f"the first address is {word}, the second is not", {}, profiles=(word, "server"),
           results=(1,)) for word in ("dead", "hole")),
    # It may have read the request.
    Row("the first address is silent", profiles=("silent", "server"), results=(54,), limit=BINDINGS,
        logged="TIMEOUT"),
    *(lost(f"the address is {word}, the alternate is not", {}, profiles=(word,),
           alternates=("server",), results=(1,), tao={"limit": 4}) for word in ("dead", "hole")),
    *(lost(f"the first naming service is {word}, the second is not", {}, root=(word, "naming"),
           results=(1,)) for word in ("dead", "hole", "silent")),
    Row("the last address is dead", profiles=("server", "dead"), results=(1,)),
    Row("the alternates do not resolve", alternates=["unknown"] * 50, results=(1,)),
    lost("very many alternates", {}, alternates=["dead"] * 40_000, results=(1,), tao=None),

    # Replies that make no sense.
    *(lost(f"{word} without end", {REGISTER: h.flood(kind)}) for word, kind in (
        ("replies to other requests", h.REPLY), ("LocateReplies", h.LOCATE_REPLY),
        ("fragments of nothing", h.FRAGMENT))),
    Row("text in place of a reply", {REGISTER: h.raw(b"HTTP/1.1 400 Bad Request\r\n\r\n")},
        logged="COMM_FAILURE|MARSHAL"),
    Row("closed behind two unfinished calls, bidirectional",
        {op: h.then(h.half_calls, h.closed) for op in ("CRB_GetSystemParameterValue", REGISTER)},
        arguments=("-BiDirPolicy", "1")),
    Row("a call with the highest number, bidirectional", {ALIVE: h.calling(0xFFFFFFFF)},
        results=(1, 1, 1, 1), keep_alives=2, arguments=("-BiDirPolicy", "1")),
    Row("MessageError", {REGISTER: lambda call: call.send(h.message(h.ERROR, b"")) and False},
        logged="COMM_FAILURE|MARSHAL"),
    *(lost(f"a reply that announces {size} bytes", {REGISTER: h.announcing(size)})
      for size in (0, 1 << 20, 0x7FFFFFFF, 0xFFFFFFFF)),
    *(lost(f"a reply that ends where 32 bits do{word}", {REGISTER: h.announcing(0xFFFFFFF4, first=first)},
           logged="is refused", tls=tls, tao={"logged": "larger than the setting"})
      for word, first, tls in (("", 0, ""), (", its header in pieces", 7, ""),
                               (", over TLS", 0, "good"), (", so over TLS", 7, "good"))),
    Row("a fragment without its request's id", {REGISTER: h.fragments(numbered=False)},
        logged="is refused", tao={"logged": ""}),
    lost("fragments larger than a message may be, with others between, bidirectional",
         {REGISTER: h.fragments(0.01, size=8192, between=h.message(h.REPLY, bytes(12)))},
         logged="is refused", arguments=("-BiDirPolicy", "1", "-ORBMaxMessageSize", "65536"),
         tao=None),
    Row("a text of 4 GiB", {REGISTER: h.giving(1, 0, -1)}, logged="MARSHAL"),
    Row("a list of 4 GiB", {REGISTER: h.giving(1, -1)}, logged="MARSHAL"),
    Row("a list that would take 4 GiB of memory", logged="MARSHAL", tao=None,
        script={REGISTER: h.announcing(0x0FF00000, 1, 0x0FE00000, *[0] * 4096)}),
    Row("a challenge that does not end", {CHALLENGE: h.giving(1, 4)}, logged="MARSHAL"),

    # TLS means TLS.
    Row("TLS undisturbed", tls="good", results=(1,)),
    Row("TLS, and the naming service names itself", tls="none", profiles=("naming",),
        results=(54,), logged="would be unencrypted",
        naming={"CRB_GetSystemParameterValue": h.parameter("PasswordEncode", h.giving("0"))}),
    Row("TLS, and the naming service names an unencrypted server", tls="none", results=(54,),
        logged="would be unencrypted"),
    Row("TLS, forwarded to an unencrypted server", {REGISTER: h.forwarded("second")}, tls="good",
        logged="would be unencrypted"),
    Row("TLS, forwarded to the naming service", {REGISTER: h.forwarded("naming")}, tls="good",
        logged="would be unencrypted"),
    Row("TLS, and the server answers in plain text", tls="good", results=(54,), limit=BINDINGS,
        logged="L1 TLS: .*does not speak TLS",
        greeting=greeted(b"220 mail.site ESMTP ready\r\n" * 20)),
    Row("TLS, and the server is silent", tls="good", results=(54,), limit=BINDINGS,
        logged="L1 TLS: .*did not answer in time", greeting=greeted(b"")),
    Row("TLS, and the server ends the handshake in order", tls="good", results=(54,),
        logged="L1 TLS: .*closed the connection",
        greeting=greeted(b"\x15\x03\x03\x00\x02\x01\x00")),
    Row("TLS, and the server closes at once", tls="good", results=(54,),
        logged="L1 TLS: .*(closed the connection|reset)", greeting=lambda peer, connection: False),
    Row("TLS, and the server sends HelloRequests without end", tls="good", results=(54,),
        limit=BINDINGS, logged="L1 TLS: .*sends messages without end", greeting=greeted_for_ever(
            b"\x16\x03\x03\x00\x04" + bytes(4))),
    Row("TLS, half handshakes at the client's own port",
        {UNREGISTER: h.then(h.half_handshakes, h.answered, 0.1)}, tls="good", own_tls=True,
        keep_alives=1, results=(1, 1, 1)),
    Row("TLS ended with each answer, bidirectional", {op: h.answered_and_ended for op in (
        "_non_existent", "CRB_GetSystemParameterValue", CHALLENGE, REGISTER)}, results=(1,),
        tls="good", arguments=("-BiDirPolicy", "1")),
    *(Row(f"TLS, and an unencrypted answer{words}", {REGISTER: h.answered_unencrypted}, tls="good",
          arguments=arguments, tao={"logged": "", "limit": 1},
          logged="Cause: The TLS connection with <server> failed: "
                 "(wrong version number|bad record type)")  # the second by OpenSSL 3.5
      for words, arguments in (("", ()), (", bidirectional", ("-BiDirPolicy", "1")))),
    Row("TLS, closed while idle", {ALIVE: [h.then(h.answered, h.closed, 0.2)]}, tls="good",
        results=(1, 1, 1, 1), keep_alives=2),
    Row("TLS 1.1", tls="TLS 1.1", results=(54,), logged="L1 TLS: .*no TLS version"),
    Row("TLS 1.3", tls="TLS 1.3", results=(1,)),
    # A thread of the ORB's would read its session tickets while another writes.
    Row("TLS 1.3, and bidirectional", tls="TLS 1.3", results=(54,),
        arguments=("-BiDirPolicy", "1"), logged="L1 TLS: .*no TLS version"),
    Row("TLS 1.2, and the server requires a certificate", tls="strict 1.2", results=(54,),
        logged="L1 TLS: .*requires a certificate"),
    Row("TLS 1.3, and the server requires a certificate", tls="strict", results=(54,)),
    Row("TLS, a keep-alive forwarded to an unencrypted server", {ALIVE: [h.forwarded("second")]},
        tls="good", results=(1, 54, 1), keep_alives=2, logged="would be unencrypted"),
    Row("TLS, and the look-up is forwarded to an unencrypted server", tls="good", results=(54,),
        naming={"resolve": h.forwarded("second")}, logged="would be unencrypted|forwarded it"),
    Row("TLS, and the naming service names another host of the same CA", tls="good", results=(54,),
        arguments=("-SSLServerNames", "*.right.site"), logged="none of its names"),
    Row("TLS, and the naming service calls back", tls="good", naming={"resolve": h.calling(7)},
        results=(1,), arguments=("-BiDirPolicy", "1"), logged="came over an unencrypted",
        tao={"logged": ""}),
    Row("TLS, and the naming service offers none where it has to", tls="good", results=(55,),
        arguments=("-SSLEncryptLookups", "1"), logged="-SSLEncryptLookups is 1"),
    Row("TLS to the naming service where it has to be", tls="good", naming_tls="good",
        results=(1,), arguments=("-SSLEncryptLookups", "1")),
    Row("TLS to the naming service, too", tls="good", naming_tls="good", results=(1,)),
    Row("TLS, and the first naming service is dead", root=("dead", "naming"), tls="good",
        results=(1,)),
    Row("TLS, and the second naming service is dead", root=("naming", "dead"), tls="good",
        results=(1,)),
]
# With bidirectional connections a thread of the ORB's reads.
ROWS += [dataclasses.replace(row, name=f"{row.name}, bidirectional",
                             arguments=("-BiDirPolicy", "1"),
                             tao={"results": (0,), "more": {}} if "first request" in row.name
                             else row.tao)
         for row in ROWS if row.name in {
             "undisturbed", "no reply", "a reply byte by byte", "fragments without end",
             "forwarded to itself", "closed after the request", "half a reply",
             "CloseConnection for the first request", "CloseConnection for each request",
             "CloseConnection right behind the reply", "closed right behind the reply",
             "reset right behind the reply",
             "closed while idle", "reset while idle", "CloseConnection while idle",
             "TLS, closed while idle",
             "another form of address, for ever", "another form of address, of no known kind",
             "the first address is hole, the second is not"}]


class Identities:
    """A CA and a server's certificate of it."""

    def __init__(self, work):
        self.work, self.contexts = work, {}
        self.make("ca")
        self.make("server", "-CA", "ca.pem", "-CAkey", "ca.key", "-addext",
                  "basicConstraints=critical,CA:FALSE", "-addext", "subjectAltName=IP:127.0.0.1")
        for name in ("good", "strict", "strict 1.2", "TLS 1.1", "TLS 1.3"):
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(work / "server.pem", work / "server.key")
            if name.startswith("strict"):
                context.verify_mode = ssl.CERT_REQUIRED
                context.load_verify_locations(work / "ca.pem")
            if name.endswith("1.2"):
                context.maximum_version = ssl.TLSVersion.TLSv1_2
            if name == "TLS 1.3":
                context.minimum_version = ssl.TLSVersion.TLSv1_3
            if name == "TLS 1.1":
                context.set_ciphers("ALL:@SECLEVEL=0")
                warnings.simplefilter("ignore", DeprecationWarning)
                context.minimum_version = context.maximum_version = ssl.TLSVersion.TLSv1_1
            self.contexts[name] = context

    def make(self, name, *arguments):
        subprocess.run(("openssl", "req", "-x509", "-days", "1", "-subj", f"/CN={name}", "-newkey",
                        "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-keyout",
                        f"{name}.key", "-out", f"{name}.pem", *arguments),
                       cwd=self.work, check=True, capture_output=True)


class World:
    """The peers of one row for as long as a `with` lasts, and a client against them."""

    def __init__(self, row, identities):
        self.row, self.identities = row, identities

    def __enter__(self):
        self.stack, row = contextlib.ExitStack(), self.row
        contexts = self.identities.contexts
        self.naming = h.Peer(row.naming, contexts.get(row.naming_tls))
        self.server = h.Peer(row.script, contexts.get(row.tls), row.greeting)
        self.second = h.Peer(row.second)
        self.naming.instead = row.instead
        self.peers = {"naming": self.naming, "server": self.server, "second": self.second}
        hole = self.stack.enter_context(contextlib.closing(h.BlackHole()))
        silent = self.stack.enter_context(socket.create_server(("127.0.0.1", 0), backlog=128))
        dead = self.stack.enter_context(socket.socket())  # the port is nobody else's meanwhile
        dead.bind(("127.0.0.1", 0))
        with socket.create_server(("127.0.0.1", 0)) as free:
            self.own_place = free.getsockname()
        places = {name: peer.place for name, peer in self.peers.items()}
        places |= {"hole": hole.place, "silent": (*silent.getsockname(), False),
                   "dead": (*dead.getsockname(), False), "client": self.own_place,
                   "unknown": ("no-such-host.invalid", 1, False)}
        for peer in self.peers.values():
            peer.places = places
            self.stack.enter_context(peer)
        self.naming.refer = lambda kind: h.Out().reference(
            kind, [places[name] for name in row.profiles], row.offered,
            [places[name] for name in row.alternates], row.version)
        protocol = "ssliop:" if row.naming_tls else ":"
        self.root = "corbaloc:" + ",".join(
            f"{protocol}1.{row.version}@{places[name][0]}:{places[name][1]}" for name in row.root)
        return self

    def __exit__(self, *_):
        self.stack.close()

    def run(self, client):
        row, work = self.row, self.identities.work
        words = [client, "--json", "-v"]
        words += (["session", "-i", "1", "-c", str(row.keep_alives)] if row.keep_alives
                  else ["login"])
        words += ["-s", "central" if row.instead is None else "x" * 120_000,
                  "-f", work / f"password-{row.user.hex()}",
                  "-ORBInitRef", f"NameService={self.root}/NameService", "-ORBConnectTimeout",
                  str(int(TIME_OUT * 1000)), "-ORBCallTimeout", str(int(TIME_OUT * 1000)),
                  "-ORBListenEndpoints",
                  f"iiop://127.0.0.1:{self.own_place[1] if row.own_port or row.own_tls else ''}",
                  *row.arguments]
        if row.tls:
            words += ["-SSLCACertificate", work / "ca.pem"]
        if row.own_tls:
            words += ["-SSLCertificate", work / "server.pem", "-SSLPrivateKey", work / "server.key"]
        environment = {"HOME": str(work), "VQ_HOME": str(work), "OMNIORB_CONFIG": "/dev/null",
                       "PATH": os.environ["PATH"], "MALLOC_PERTURB_": "165"} | {
            name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
        start = time.monotonic()
        try:
            done = subprocess.run(words, env=environment, capture_output=True, text=True,
                                  errors="replace", timeout=15)
        except subprocess.TimeoutExpired as hung:
            return ["it does not end"], (hung.stderr or b"").decode(errors="replace")
        return list(self.judge(done, time.monotonic() - start)), done.stderr

    def judge(self, done, taken):
        row = self.row
        if done.returncode < 0 or "Sanitizer" in done.stderr:
            yield f"crashed, status {done.returncode}"
        results = tuple(map(int, re.findall(r'"result":\s*(-?\d+)', done.stdout)))
        if results != row.results:
            yield f"results {results}, not {row.results}"
        text = done.stderr + done.stdout
        for name, (host, port, *_) in self.server.places.items():
            text = text.replace(f"{host}:{port}", f"<{name}>")
        if not re.search(row.logged, text):
            yield f"no '{row.logged}' in the log"
        limit = row.limit * TIME_OUT + row.keep_alives + SLACK
        if taken > limit:
            yield f"{taken:.1f} s, and {limit:.1f} s are allowed"
        usual = USUAL["session" if row.keep_alives else "login"]
        for operation in {operation for peer in self.peers.values() for operation in peer.received}:
            count = sum(peer.received[operation] for peer in self.peers.values())
            most = usual.get(operation, 0) + row.more.get(operation, 0)
            least = most if row.results[0] == 1 and operation in (REGISTER, UNREGISTER) else 0
            if operation not in LOOK_UPS and not least <= count <= most:
                yield f"{operation} received {count} times, not {least} to {most}"
        if row.results[0] == 1 and not self.registered_and_ended():
            yield "the session was not ended at the server"
        if row.results[0] == 1 and self.server.user not in (None, (row.user, row.code_set)):
            yield f"the user arrives as {self.server.user}"
        if row.tls:
            for name, peer in self.peers.items():
                if clear := {op for op, count in peer.unencrypted.items() if count} - LOOK_UPS:
                    yield f"unencrypted at the {name}: {', '.join(clear)}"
        connections = sum(peer.connections for peer in self.peers.values())
        if connections > 40:
            yield f"{connections} connections"

    def registered_and_ended(self):
        return all(any(peer.received[operation] for peer in self.peers.values())
                   for operation in (REGISTER, UNREGISTER))


# How often each operation is received when nothing goes wrong.
LOGIN = {"CRB_GetSystemParameterValue": 2, CHALLENGE: 1, "CRB_VerifyClientServerVersion": 1,
         REGISTER: 1, UNREGISTER: 1}
USUAL = {"login": LOGIN, "session": LOGIN | {
    "CRB_GetMyAuthorizationsFromMemory": 1, "CRB_IsJobLevelAuthExist": 1, "CRB_ResetTimeout": 1,
    "CRB_GetSystemParameterValue": 7, ALIVE: 2}}


def main(product, client, *names):
    hard = resource.getrlimit(resource.RLIMIT_AS)[1]
    if hard == resource.RLIM_INFINITY and "VQ_ATTACK_SLACK" not in os.environ:
        resource.setrlimit(resource.RLIMIT_AS, (8 << 30, hard))  # A sanitized client reserves more.
    rows = [row for row in ROWS if not names or any(name in row.name for name in names)]
    if product == "TAO":
        rows = [dataclasses.replace(row, **row.tao) for row in rows if row.tao is not None]
    with tempfile.TemporaryDirectory(prefix="vq-attacks-") as directory:
        work = Path(directory)
        (work / "config").mkdir()
        (work / "locale.ini").touch()
        (work / "installed-products.ini").write_text("[NFT]\nversion = 8.0.05\npatches =\n")
        for user in {row.user for row in rows}:
            file = work / f"password-{user.hex()}"
            file.touch(0o600)
            file.write_bytes(b"user=%s\npassword=%s\n" % (user, PASSWORD.encode()))
        identities = Identities(work)

        def attempt(row):
            with World(row, identities) as world:
                return world.run(client)

        start = time.monotonic()
        with ThreadPoolExecutor(12) as executor:
            outcomes = list(executor.map(attempt, rows))
        failed = 0
        for row, (faults, log) in zip(rows, outcomes):
            # A busy machine may be late itself, but does not make a client crash.
            if faults and not names and not faults[0].startswith("crashed"):
                faults, log = attempt(row)
            failed += bool(faults)
            print(f"{'FAILED' if faults else 'ok':6} {row.name}", *faults, sep="\n         ")
            if names or faults:
                print(log)
        print(f"{len(rows)} attacks, {failed} failed, {time.monotonic() - start:.0f} s")
        return failed != 0 or not rows


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
