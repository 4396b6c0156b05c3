#!/usr/bin/env python3
"""The end of the desktop's session while a script is open: session_end.py MORVANE_SCRIPT

Plays the session's manager (XSMP, by way of libSM) for the editor on a display: each case changes a script or not,
ends the session, answers the question with the keyboard, and looks at what the manager is told and at the file.
Once more with a signal in the place of the manager."""
import ctypes
import os
import select
import signal
import subprocess
import sys
import tempfile
import time

PATIENCE = 60  # seconds; a busy machine gets anything done in that time
SAVE_BOTH, INTERACT_ANY = 2, 2

ice = ctypes.CDLL("libICE.so.6")
sm = ctypes.CDLL("libSM.so.6")
P, I = ctypes.c_void_p, ctypes.c_int

CALLBACKS = ["register_client", "interact_request", "interact_done", "save_yourself_request", "phase2_request",
             "save_yourself_done", "close_connection", "set_properties", "delete_properties", "get_properties"]
ARGUMENTS = {"register_client": [P], "interact_request": [I], "interact_done": [I],
             "save_yourself_request": [I] * 5, "phase2_request": [], "save_yourself_done": [I],
             "close_connection": [I, P], "set_properties": [I, P], "delete_properties": [I, P],
             "get_properties": []}


def declare(function, result, *arguments):
    function.restype, function.argtypes = result, arguments
    return function


listener_number = declare(ice.IceGetListenConnectionNumber, I, P)
connection_number = declare(ice.IceConnectionNumber, I, P)


class Session:
    """A session with one client. What the client says is in `told`, in order."""

    def __init__(self):
        self.told = []
        self.connection = None
        # All callbacks live as long as the session.
        self.callbacks = [ctypes.CFUNCTYPE(I, P, P, *ARGUMENTS[name])(self.noting(name)) for name in CALLBACKS]
        self.new_client = ctypes.CFUNCTYPE(I, P, P, P, P, P)(self.take_client)
        # By default the library ends the program when a client goes.
        self.lost = ctypes.CFUNCTYPE(None, P)(lambda connection: None)
        declare(ice.IceSetIOErrorHandler, P, P)(ctypes.cast(self.lost, P))
        self.trust = ctypes.CFUNCTYPE(I, ctypes.c_char_p)(lambda host: 1)
        error = ctypes.create_string_buffer(256)
        if not sm.SmsInitialize(b"test", b"1", self.new_client, None, self.trust, 256, error):
            raise OSError(error.value)
        ice._IceTransNoListen(b"tcp")
        count, listeners = I(), ctypes.POINTER(P)()
        if not ice.IceListenForConnections(ctypes.byref(count), ctypes.byref(listeners), 256, error):
            raise OSError(error.value)
        self.listeners = [listeners[i] for i in range(count.value)]
        for listener in self.listeners:
            declare(ice.IceSetHostBasedAuthProc, None, P, P)(listener, ctypes.cast(self.trust, P))
        self.address = declare(ice.IceComposeNetworkIdList, ctypes.c_char_p, I, P)(count, listeners).decode()
        self.channels = []

    def noting(self, name):
        def note(client, _data, *arguments):
            self.told.append((name,) + arguments[:1] if name == "interact_done" else (name,))
            if name == "register_client":
                declare(sm.SmsRegisterClientReply, I, P, ctypes.c_char_p)(client, b"client")
            elif name == "interact_request":
                declare(sm.SmsInteract, None, P)(client)
            return 1
        return note

    def take_client(self, client, _data, mask, callbacks, _failure):
        self.connection = client
        ctypes.cast(mask, ctypes.POINTER(ctypes.c_ulong))[0] = (1 << len(CALLBACKS)) - 1
        table = ctypes.cast(callbacks, ctypes.POINTER(P))
        for i, callback in enumerate(self.callbacks):
            table[2 * i], table[2 * i + 1] = ctypes.cast(callback, P), None
        return 1

    def serve(self, seconds):
        sources = {listener_number(listener): listener for listener in self.listeners}
        channels = {connection_number(channel): channel for channel in self.channels}
        for ready in select.select(list(sources) + list(channels), [], [], seconds)[0]:
            if ready in sources:
                channel = declare(ice.IceAcceptConnection, P, P, P)(sources[ready], ctypes.byref(I()))
                self.channels.append(channel)
            elif declare(ice.IceProcessMessages, I, P, P, P)(channels[ready], None, None) != 0:
                self.channels.remove(channels[ready])

    def until(self, done, what):
        end = time.monotonic() + PATIENCE
        while not done():
            if time.monotonic() > end:
                raise TimeoutError(f"waited for {what}; told {self.told}")
            self.serve(0.05)

    def was_told(self, name):
        return any(entry[0] == name for entry in self.told)

    def end(self):
        declare(sm.SmsSaveYourself, None, P, I, I, I, I)(self.connection, SAVE_BOTH, 1, INTERACT_ANY, 0)

    def die(self):
        declare(sm.SmsDie, None, P)(self.connection)


def asked(*words):
    return subprocess.run(["xdotool", *words], capture_output=True, text=True).stdout


def shows(title):
    return asked("search", "--onlyvisible", "--name", title) != ""


def has_focus(title):
    return asked("getwindowfocus", "getwindowname").startswith(title)


def play(session, program, folder, by_signal, typed, answer, stays, content):
    session.told.clear()
    path = os.path.join(folder, "a.js")
    with open(path, "w") as script:
        script.write("a;\n")
    # The order of buttons is the desktop's; this is none.
    environment = {name: value for name, value in os.environ.items() if not name.startswith(("XDG_", "KDE_"))}
    environment.update(SESSION_MANAGER=session.address, XDG_RUNTIME_DIR=folder, XDG_CONFIG_HOME=folder)
    with subprocess.Popen([program, path], env=environment) as editor:
        try:
            session.until(lambda: session.was_told("register_client") and has_focus("a.js"), "the editor")
            for key in typed:
                asked("key", key)
                session.until(lambda: shows(r"^a\.js\*"), "the mark of a change")
            session.told.clear()
            if by_signal:
                editor.send_signal(signal.SIGTERM)
            else:
                session.end()
            for key in answer:
                session.until(lambda: has_focus("Javascript editor"), "the question")
                asked("key", key)
            if by_signal:
                session.until(lambda: not shows("^Javascript editor$"), "the answer")
            else:
                session.until(lambda: session.was_told("save_yourself_done"), "the answer")
                assert (("interact_done", 1) in session.told) == stays, session.told
                assert session.was_told("interact_request") == bool(answer), session.told
            if stays:
                assert editor.poll() is None
            else:
                if not by_signal:
                    session.die()
                session.until(lambda: editor.poll() is not None, "the end")
            with open(path) as script:
                assert script.read() == content
        finally:
            editor.kill()


session_of_all = Session()
with tempfile.TemporaryDirectory() as work:
    for by_signal in (False, True):
        for case in [([], [], False, "a;\n"),
                     (["x"], ["Return"], False, "xa;\n"),
                     (["x"], ["Tab", "space"], False, "a;\n"),
                     (["x"], ["Escape"], True, "a;\n")]:
            play(session_of_all, sys.argv[1], work, by_signal, *case)
            print("passed:", by_signal, *case[:3])
