"""A server that speaks raw GIOP, with no ORB, and misbehaves by a script.

    with Peer({"CRB_Register": [trickle(0.2)], "CRB_Unregister": close_orderly}) as peer: ...

A peer is a naming service, a SystemConfiguration and a UsersManager at once: it dispatches by the
operation's name alone, and resolve() gives a reference to whatever the script's user chose. A script
maps an operation to an *act*, or to a list of acts, one for each request in turn; whatever has no act
is answered as a good server answers. An act is a function of the Call; it sends what it likes and
returns whether the connection stays open.

The peer counts per operation the requests that it has received whole, those among them that came
unencrypted, and its connections.
"""

import collections
import contextlib
import os
import socket
import struct
import threading
import time

TYPES = {"UsersManager": "IDL:QCSCorbaUsersManager:1.0",
         "SystemConfiguration": "IDL:VQCorbaSystemConfiguration:1.0",
         "Authorization": "IDL:QCSCorbaAuthorization:1.0",
         "NameService": "IDL:omg.org/CosNaming/NamingContext:1.0"}
REQUEST, REPLY, LOCATE_REQUEST, LOCATE_REPLY, CLOSE, ERROR, FRAGMENT = 0, 1, 3, 4, 5, 6, 7
NO_EXCEPTION, USER_EXCEPTION, SYSTEM_EXCEPTION, FORWARD = range(4)
YES, NO, MAYBE = range(3)
CODE_SETS = 1  # the service context with the code sets of what is sent, and the component of those offered
LATIN1, UTF8 = 0x00010001, 0x05010001


class Out:
    """CDR, little endian. What is written begins at a multiple of 8 of the message."""

    def __init__(self, data=b""):
        self.data = bytearray(data)

    def _put(self, form, size, value):
        self.data += bytes(-len(self.data) % size) + struct.pack("<" + form, value)
        return self

    def octet(self, value):
        return self._put("B", 1, value)

    def short(self, value):
        return self._put("H", 2, value)

    def long(self, value):
        return self._put("I", 4, value & 0xFFFFFFFF)

    def octets(self, value):
        self.long(len(value))
        self.data += value
        return self

    def text(self, value):
        return self.octets(value.encode() + b"\0")

    def enclosed(self, other):
        """An encapsulation: its own byte order first."""
        return self.octets(bytes(other.data))

    def reference(self, kind, places, extra=(), alternates=(), version=2):
        """An object reference with one profile of IIOP 1.`version` a place, each with the same extra
        components."""
        self.text(TYPES.get(kind, kind)).long(len(places))
        for host, port, tls in places:
            profile = Out().octet(1).octet(1).octet(version).text(host).short(0 if tls else port)
            profile.octets(kind.encode())
            components = list(extra)
            if tls:  # TAG_SSL_SEC_TRANS
                components.append((20, Out().octet(1).short(0x66).short(0x06).short(port)))
            components += [(3, Out().octet(1).text(other[0]).short(other[1]))
                           for other in alternates]  # TAG_ALTERNATE_IIOP_ADDRESS
            if version > 0:
                profile.long(len(components))
                for tag, content in components:
                    profile.long(tag).enclosed(content)
            self.long(0).enclosed(profile)
        return self


class In:
    def __init__(self, data, little):
        self.data, self.at, self.order = data, 0, "<" if little else ">"

    def _get(self, form, size):
        self.at += -self.at % size
        value = struct.unpack_from(self.order + form, self.data, self.at)[0]
        self.at += size
        return value

    def octet(self):
        return self._get("B", 1)

    def short(self):
        return self._get("H", 2)

    def long(self):
        return self._get("I", 4)

    def octets(self):
        size = self.long()
        self.at += size
        return self.data[self.at - size:self.at]

    def text(self):
        return self.octets()[:-1].decode("latin1")

    def contexts(self):
        """The service contexts of a request: id -> content."""
        return {self.long(): self.octets() for _ in range(self.long())}


def message(kind, body, version=2, flags=1, size=None):
    return (b"GIOP" + bytes((1, version, flags, kind)) +
            struct.pack("<I", len(body) if size is None else size) + bytes(body))


class Call:
    """One request, and the ways to reply to it."""

    def __init__(self, peer, connection, version, little, body):
        self.peer, self.connection, self.version = peer, connection, version
        read = In(bytes(12) + body, little)  # positions count from the message's beginning
        read.at = 12
        if version < 2:
            contexts = read.contexts()
            self.id = read.long()
            read.octet()
            read.octets()
            self.operation = read.text()
            read.octets()
        else:
            self.id = read.long()
            read.octet()
            read.at += 3
            form = read.short()  # of the address: a key, a profile, or a reference and an index
            if form == 2:
                read.long(), read.text()
            for _ in range(read.long() if form == 2 else 1):
                if form != 0:
                    read.long()
                read.octets()
            self.operation = read.text()
            contexts = read.contexts()
            read.at += -read.at % 8
        self.arguments = read
        if CODE_SETS in contexts:  # once a connection, for all that follows on it
            content = contexts[CODE_SETS]
            peer.code_sets[connection] = In(content[4:], content[0]).long()

    def reply(self, status=NO_EXCEPTION, body=b"", version=None):
        """The reply as bytes, not yet sent."""
        version = self.version if version is None else version
        head = Out()
        if version < 2:
            head.long(0).long(self.id).long(status)
        else:
            head.long(self.id).long(status).long(0)
        return message(REPLY, bytes(head.data) + bytes(body), version)

    def answer(self):
        """The reply of a good server."""
        return self.reply(NO_EXCEPTION, self.peer.results(self))

    def send(self, data):
        self.connection.sendall(data)
        return True


# ---------------------------------------------------------------- acts

def answered(call):
    return call.send(call.answer())


def silent(_):
    return True


def closed(_):
    return False


def reset(call):
    call.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    return False


def close_orderly(call):
    """CloseConnection: by it a server states that it has not processed the request."""
    call.send(message(CLOSE, b"", call.version))
    return False


def then(first, second, after=0.0):
    """One act, and another a while later, when the connection is idle."""
    def act(call):
        if not first(call):
            return False
        time.sleep(after)
        return second(call)
    return act


def late(seconds):
    def act(call):
        call.peer.wait(seconds)
        return answered(call)
    return act


def trickle(pause, piece=1, most=10):
    """Never more than a piece at a time; ends after `most` seconds or when the client has closed."""
    def act(call):
        return drip(call, call.answer(), pause, piece, most)
    return act


def drip(call, data, pause, piece, most):
    end = time.monotonic() + most
    for at in range(0, len(data), piece):
        if time.monotonic() > end:
            return True
        call.send(data[at:at + piece])
        call.peer.wait(pause)
    return True


def fragments(pause=0.05, most=10, numbered=True, size=8, between=b""):
    """The beginning of a long text, and fragments of it without end, or without their request's id."""
    def act(call):
        begin = call.reply(NO_EXCEPTION, Out().long(1).long(0).long(1 << 24).data)
        call.send(begin[:6] + bytes((begin[6] | 2,)) + begin[7:])
        end = time.monotonic() + most
        while time.monotonic() < end:
            piece = struct.pack("<I", call.id) + bytes(size) if numbered else b""
            call.send(message(FRAGMENT, piece, call.version, 3) + between)
            call.peer.wait(pause)
        return False
    return act


def raised(name, completed=YES, minor=0):
    def act(call):
        body = Out().text(f"IDL:omg.org/CORBA/{name}:1.0").long(minor).long(completed)
        return call.send(call.reply(SYSTEM_EXCEPTION, body.data))
    return act


def forwarded(*names, status=FORWARD):
    """A LOCATION_FORWARD to a reference with these places of the peer's `places`."""
    def act(call):
        body = Out().reference("UsersManager", [call.peer.places[name] for name in names])
        return call.send(call.reply(status, body.data))
    return act


def other_form(kind):
    """NEEDS_ADDRESSING_MODE: the request is to be sent again, with another form of address."""
    def act(call):
        return call.send(call.reply(5, Out().short(kind).data))
    return act


def half_stray(call):
    """A part of a long reply to another request, before GIOP 1.2."""
    return call.send(message(REPLY, struct.pack("<3I", 0, call.id + 99, 0) + bytes(9000),
                             call.version, size=20000))


def among_strays(call):
    """The answer, replies to requests that are still to come, and CloseConnection, all at once."""
    answer = call.answer()
    strays = b"".join(message(REPLY, Out().long(call.id + 99 + i).long(0).long(0).data,
                              call.version) for i in range(20))
    call.connection.sendall(answer + strays + message(CLOSE, b"", call.version))
    return False


def begun(size):
    """The first fragment of the reply, of `size` bytes, then CloseConnection."""
    def act(call):
        call.send(message(REPLY, call.answer()[12:12 + size], call.version, 3))
        return close_orderly(call)
    return act


def flood(kind, most=10):
    """Messages for another request, as fast as they go."""
    def act(call):
        body = Out().long(call.id + 1001).long(0).long(0)
        many = message(kind, body.data, call.version, 3 if kind == FRAGMENT else 1) * 200
        end = time.monotonic() + most
        while time.monotonic() < end:
            call.send(many)
        return False
    return act


def raw(data):
    def act(call):
        return call.send(data)
    return act


def own_call(number, flags=1):
    """A request of the peer's own; with the flags 3 its beginning."""
    body = Out().long(number).long(3).long(0).octets(b"key").text("CRB_Ping").long(0)
    body.data += bytes(-(12 + len(body.data)) % 8)  # as every fragment but the last has to end
    return message(REQUEST, body.data, flags=flags)


def calling(number):
    """Before the answer, a request of the peer's own over the client's connection."""
    return lambda call: call.send(own_call(number) + call.answer())


def half_calls(call):
    """The beginnings of two requests of the peer's own over the client's connection."""
    return call.send(own_call(5, 3) + own_call(7, 3))


# The beginning of a call whose target is a profile in place of a key.
HALF_TO_PROFILE = message(REQUEST, Out().long(5).long(3).short(1).long(0).octets(
    b"\1\1\2").text("CRB_Ping").long(0).data + bytes(8), flags=3)


def answered_unencrypted(call):
    os.write(call.connection.fileno(), call.answer())
    return True


def answered_and_ended(call):
    """The answer and the end of TLS at once, on a connection that stays open for a moment."""
    call.connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_CORK, 1)
    answered(call)
    call.connection.settimeout(0.05)
    with contextlib.suppress(OSError, ValueError):
        call.connection.unwrap()
    call.connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_CORK, 0)
    call.peer.wait(0.3)
    return False


def deaf(count):
    """Programs at the client's own port that call it and do not read; then the answer."""
    calls = b"".join(own_call(number) for number in range(1, 6000, 2))

    def fill(call, end):
        connection = socket.socket()
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 2048)
        connection.connect(call.peer.places["client"][:2])
        connection.settimeout(0.4)
        rest = b""
        with call.peer.lock:
            call.peer.open.append(connection)
        with contextlib.suppress(OSError):
            while time.monotonic() < end:
                rest = rest or calls
                rest = rest[connection.send(rest):]

    def act(call):
        end = time.monotonic() + 1.5
        fillers = [threading.Thread(target=fill, args=(call, end)) for _ in range(count)]
        for filler in fillers:
            filler.start()
        for filler in fillers:
            filler.join()
        return answered(call)
    return act


def half_handshakes(call):
    """Beginnings of TLS handshakes at the client's own port."""
    with call.peer.lock:
        for _ in range(12):
            call.peer.open.append(socket.create_connection(call.peer.places["client"][:2]))
            call.peer.open[-1].sendall(b"\x16\x03\x01\x02\x00\x01\x00")
    return True


def announcing(size, *values, first=0):
    """A reply whose header announces more than is sent: a valid reply, or one with these numbers. The
    first bytes of it, as many as `first`, are sent 0.1 s before the rest."""
    def act(call):
        answer = call.answer()
        if values:
            answer = call.reply(NO_EXCEPTION, struct.pack(f"<{len(values)}I", *values))
        answer = answer[:8] + struct.pack("<I", size) + answer[12:]
        if first:
            call.send(answer[:first])
            call.peer.wait(0.1)
        return call.send(answer[first:])
    return act


def offering(native, *others):
    """A component of a reference: the code sets of characters that its server takes."""
    body = Out().octet(1).long(native).long(len(others))
    for other in others:
        body.long(other)
    return CODE_SETS, body.long(0).long(0)


def giving(*values):
    """A reply with other results: numbers and texts, in order."""
    def act(call):
        body = Out()
        for value in values:
            body.text(value) if isinstance(value, str) else body.long(value)
        return call.send(call.reply(NO_EXCEPTION, body.data))
    return act


def parameter(name, act):
    """The act for the read of one system parameter."""
    def chosen(call):
        at = call.arguments.at
        call.arguments.text()
        mine = call.arguments.text() == name
        call.arguments.at = at
        return act(call) if mine else answered(call)
    return chosen


# ---------------------------------------------------------------- the peer

class BlackHole:
    """A place that completes no connection: its listener's queue is full."""

    def __init__(self):
        self.sockets = [socket.socket() for _ in range(5)]
        self.sockets[0].bind(("127.0.0.1", 0))
        self.sockets[0].listen(0)
        self.place = (*self.sockets[0].getsockname(), False)
        for filler in self.sockets[1:]:
            filler.setblocking(False)
            filler.connect_ex(self.place[:2])

    def close(self):
        for each in self.sockets:
            each.close()


class Peer:
    def __init__(self, script=None, tls=None, greeting=None, host="127.0.0.1", port=0):
        """`greeting` is done to each connection first; false ends it. `tls`: an ssl.SSLContext."""
        self.script = {name: list(acts) if isinstance(acts, (list, tuple)) else acts
                       for name, acts in (script or {}).items()}
        self.tls, self.greeting = tls, greeting
        self.instead = None  # sent in place of reading a long request to its end
        self.places = {}   # of forwarded()
        self.refer = None  # kind -> the reference that resolve() gives; by default to the peer itself
        self.received, self.unencrypted = collections.Counter(), collections.Counter()
        self.user = None  # who registered: the bytes, and their code set
        self.connections, self.bytes = 0, bytearray()
        self.code_sets = {}  # connection -> the code set of its characters, once a client has named it
        self.lock, self.ended, self.open = threading.Lock(), threading.Event(), []
        self.listener = socket.create_server((host, port), backlog=128)
        self.place = (*self.listener.getsockname()[:2], tls is not None)

    def __enter__(self):
        if self.instead is not None:  # The system is not to take much of it.
            self.listener.setsockopt(socket.IPPROTO_TCP, socket.TCP_MAXSEG, 536)
            self.listener.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        threading.Thread(target=self.accept, daemon=True).start()
        return self

    def __exit__(self, *_):
        self.ended.set()
        with contextlib.suppress(OSError):
            self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()
        with self.lock:
            for connection in self.open:
                with contextlib.suppress(OSError):
                    connection.shutdown(socket.SHUT_RDWR)

    def wait(self, seconds):
        if self.ended.wait(seconds):
            raise OSError("the peer has ended")

    def accept(self):
        while not self.ended.is_set():
            try:
                connection = self.listener.accept()[0]
            except OSError:
                return
            connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            with self.lock:
                self.connections += 1
                self.open.append(connection)
            threading.Thread(target=self.serve, args=(connection,), daemon=True).start()

    def serve(self, connection):
        with contextlib.suppress(OSError, ValueError, struct.error):
            try:
                if self.greeting is not None and not self.greeting(self, connection):
                    return
                if self.tls is not None:
                    plain, connection = connection, self.tls.wrap_socket(connection, server_side=True)
                    with self.lock:
                        self.open[self.open.index(plain)] = connection
                while self.serve_one(connection):
                    pass
            finally:
                with self.lock:
                    if connection in self.open:
                        self.open.remove(connection)
                connection.close()

    def read(self, connection, size):
        data = bytearray()
        while len(data) < size:
            piece = connection.recv(size - len(data))
            if not piece:
                raise OSError("closed")
            data += piece
        return bytes(data)

    def serve_one(self, connection):
        """One message; whether the connection stays open."""
        header = self.read(connection, 12)
        little = header[6] & 1
        size = struct.unpack("<I" if little else ">I", header[8:])[0]
        if self.instead is not None and size > 50000:
            self.wait(1.5)
            connection.sendall(self.instead)
            self.wait(10)
        body = self.read(connection, size)
        self.bytes += header + body
        if header[7] == LOCATE_REQUEST:  # the object is here
            request = struct.unpack_from("<I" if little else ">I", body)[0]
            connection.sendall(message(LOCATE_REPLY, struct.pack("<II", request, 1), header[5]))
            return True
        if header[7] != REQUEST:
            return header[7] not in (CLOSE, ERROR)
        call = Call(self, connection, header[5], little, body)
        with self.lock:
            self.received[call.operation] += 1
            self.unencrypted[call.operation] += self.tls is None
            act = self.script.get(call.operation, answered)
            if isinstance(act, list):
                act = act.pop(0) if act else answered
        return act(call)

    def results(self, call):
        """What a good server answers."""
        body, operation = Out(), call.operation
        if operation in ("_non_existent", "_is_a"):
            body.octet(operation == "_is_a")
        elif operation == "resolve":
            kind = ""
            for _ in range(call.arguments.long()):
                kind = call.arguments.text()
                call.arguments.text()
            if self.refer is not None:
                return self.refer(kind).data
            body.reference(kind, [self.place])
        elif operation == "CRB_GetSystemParameterValue":
            call.arguments.text()
            body.text({"PasswordEncode": "1"}.get(call.arguments.text(), ""))
        elif operation == "CRB_VerifyClientServerVersion":
            body.long(1).text("8.0.05")
        elif operation == "CRB_AquireChallenge":
            body.long(1).text("first").text("second")
        elif operation == "CRB_Register":  # no messages of the day
            self.user = call.arguments.octets()[:-1], self.code_sets.get(call.connection)
            body.long(1).long(0).text("").text("token-1").text("dbo")
        elif operation == "CRB_GetMyAuthorizationsFromMemory":
            body.reference("Authorization", [self.place])
            body.long(0).long(0).text("").long(0)  # nothing allowed, no selection
            for _ in range(16):
                body.long(0)
            body.text("").octet(0).long(0).text("").text("").text("").long(0).long(0)
        elif operation in ("CRB_IsJobLevelAuthExist", "CRB_isAnnotationRequired"):
            body.octet(0)
        elif operation.startswith("CRB_"):  # CRB_ClientKeepAlive, CRB_ResetTimeout, CRB_Unregister
            body.long(1)
        else:
            raise ValueError(operation)
        return bytes(body.data)
