"""A page in the browser in which a scene is looked at from all sides, while it refines."""

import asyncio
import html
import os
import socket
import threading

from . import _values
from ._models import load
from ._source import Source
from ._studio import scene_of_model
from ._view_server import EVERYWHERE, Server, web_library

_LAST_PORT = 65535


class View:
    """A page that shows a scene. It is there until close(), or until the script ends."""

    def __init__(self, build, watched=None, *, host="127.0.0.1", port=0):
        """build() makes the scene, in a child process. When the file that is watched changes, it is
        made anew."""
        web_library()
        if not isinstance(host, str):
            raise TypeError("host: expected a name or an address, got {!r}".format(host))
        if not 0 <= _values.integer(port) <= _LAST_PORT:
            raise ValueError("port: expected 0 to {}, got {}".format(_LAST_PORT, port))
        self._server = Server(build, watched, host)
        self._loop = asyncio.new_event_loop()
        self._thread = threading.Thread(target=self._loop.run_forever, name="vantor-view",
                                        daemon=True)
        self._thread.start()
        try:
            self.port = self._run(self._server.start(host, port))
        except BaseException:
            self._end_loop()
            raise
        name = socket.gethostname() if host in EVERYWHERE else host
        shown = "[{}]".format(name) if ":" in name else name
        #: The page's address, with the token that it wants.
        self.url = "http://{}:{}/?token={}".format(shown, self.port, self._server.token)

    @classmethod
    def of_scene(cls, scene, *, host="127.0.0.1", port=0):
        """Of a scene, as it is now."""
        return cls(lambda: scene, host=host, port=port)

    @classmethod
    def of_file(cls, path, *, host="127.0.0.1", port=0):
        """Of a script that makes a scene, or of a model."""
        path = os.path.abspath(path)
        with open(path, "rb"):
            pass  # what cannot be read is told here
        if path.endswith(".py"):
            return cls(lambda: Source(path).build(), path, host=host, port=port)
        return cls(lambda: scene_of_model(load(path), (4, 3)), path, host=host, port=port)

    def close(self):
        """Ends the page and what renders for it."""
        if self._thread.is_alive():
            self._run(self._server.stop())
            self._end_loop()

    def wait(self):
        """Until close(), or Ctrl-C."""
        while self._thread.is_alive():
            self._thread.join(0.5)

    def _run(self, work):
        return asyncio.run_coroutine_threadsafe(work, self._loop).result()

    def _end_loop(self):
        self._loop.call_soon_threadsafe(self._loop.stop)
        self._thread.join()
        self._loop.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def _repr_html_(self):
        return '<iframe src="{}" style="width: 100%; height: 640px; border: 0"></iframe>'.format(
            html.escape(self.url))

    def __repr__(self):
        return "<View {}>".format(self.url)
