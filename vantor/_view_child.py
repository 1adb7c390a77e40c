"""The process that renders for a view, as its server sees it."""

import asyncio
import os
import signal

from ._children import ConnectedChild
from ._view_process import serve

_STOP = 0.02  # seconds between signals to a child that still renders what nobody wants any more


class Child:
    """The process that renders. take(kind, value) is called with what it sends; kind "ended" comes
    last, with how."""

    def __init__(self, build, take):
        self._take = take
        self._loop = asyncio.get_running_loop()
        self._child = ConnectedChild(serve, build)
        self._connection = self._child.connection
        self.pid = self._child.pid
        self._unheard = 0
        self._stopping = None
        self._loop.add_reader(self._connection.fileno(), self._read)

    def ask(self, asked):
        """Sends a Request, a Pick, a Save, or None: nothing more is wanted."""
        try:
            self._connection.send(asked)
        except OSError:
            return  # it has ended, which is read next
        self._unheard += 1
        if self._stopping is None:
            self._stop_pass()

    def _stop_pass(self):
        """Signals until it has heard: one that comes before a pass has begun is forgotten."""
        self._stopping = None
        if self._unheard:
            os.kill(self.pid, signal.SIGINT)
            self._stopping = self._loop.call_later(_STOP, self._stop_pass)

    def _read(self):
        try:
            while self._connection.poll():
                kind, value = self._connection.recv()
                if kind == "heard":
                    self._unheard -= 1
                else:
                    self._take(kind, value)
        except (EOFError, OSError):
            self._forget()
            self._take("ended", self._child.end_of_itself())

    def _forget(self):
        self._unheard = 0
        if self._stopping:
            self._stopping.cancel()
        self._loop.remove_reader(self._connection.fileno())
        self._connection.close()

    def end(self):
        if self._child.is_alive:
            self._forget()
            self._child.end()
