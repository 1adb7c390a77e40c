"""Render process: on a farm's worker, the child that builds scenes and renders parts of them.

A pass keeps the interpreter to itself until it is over. So it runs in a child, and the worker goes
on to answer its scheduler. The child lives on for a while: the next part of the same scene finds
the scene as it is, with all that the renderer has prepared.
"""

import collections
import os
import pickle
import tempfile
import threading
import traceback
import warnings

from ._children import ConnectedChild
from ._files import temporary_place
from ._messages import Place, SceneError, SceneWarning

# After so many seconds without work the child is ended, and its memory is free.
IDLE_SECONDS = 60

# How often, in seconds, a worker looks whether what it renders is still wanted.
_INTERVAL = 0.05

# What a worker is asked for. frame is for the source, or None; size is (width, height, samples);
# window x0 y0 x1 y1 in fractions; options are further arguments of render(); place the script's
# file and line; file is None, or the ending, exposure and display of a file to make.
Piece = collections.namedtuple("Piece", "frame size window options place file")

# What comes of it: the layers of a picture, by name, or the bytes of a file; the messages, each
# with file and line; a Failure instead. worker is who has made it.
Reply = collections.namedtuple("Reply", "layers file said failure worker")

# An exception of another process, pickled if it can be, and its traceback as a text.
Failure = collections.namedtuple("Failure", "pickled text")


class RenderProcess:
    """A child that renders pieces of one source, one after another."""

    def __init__(self, pickled_source):
        self._child = ConnectedChild(_serve, pickled_source)

    @property
    def pid(self):
        return self._child.pid

    def render(self, piece, is_wanted):
        """The Reply; None if it is not wanted any more: the child can be asked no more then."""
        connection = self._child.connection
        try:
            connection.send(piece)
            while not connection.poll(_INTERVAL):
                if not is_wanted():
                    self._child.end()
                    return None
            return connection.recv()
        except (EOFError, OSError):
            text = "the process that renders on a worker has ended " + self._child.end_of_itself()
            return Reply(None, None, [], Failure(None, text), None)

    def end(self):
        self._child.end()


class Renderer:
    """What a worker has: at most one RenderProcess, as a pass uses all cores."""

    def __init__(self):
        self._turn = threading.Lock()
        self._token = None
        self._process = None
        self._idle = None  # the timer that ends the process

    def render(self, token, pickled_source, piece, is_wanted):
        """The Reply to a piece of the source, which the token names; None if it is not wanted."""
        with self._turn:
            if self._idle:
                self._idle.cancel()
            reply = None
            while reply is None and is_wanted():
                if self._token != token or self._process is None:
                    self.end()
                    self._process = RenderProcess(pickled_source)
                    self._token = token
                reply = self._process.render(piece, is_wanted)
                if reply is None or reply.failure and reply.failure.pickled is None:
                    self.end()
            self._idle = threading.Timer(IDLE_SECONDS, self._end_idle)
            self._idle.daemon = True
            self._idle.start()
            return reply

    def _end_idle(self):
        with self._turn:
            if self._idle is threading.current_thread():  # nothing has come meanwhile
                self.end()

    def end(self):
        if self._process:
            self._process.end()
        self._process = None


def _serve(connection, pickled_source):
    """What the child does until it is ended."""
    server = _Server(pickled_source)
    while True:
        connection.send(server.reply(connection.recv()))


class _Server:
    def __init__(self, pickled_source):
        self._pickled = pickled_source
        self._source = None
        self._scene = None
        self._frame = None

    def reply(self, piece):
        said = []
        try:
            with collecting(said):
                return Reply(*self._made(piece), said, None, None)
        except BaseException as error:
            self._scene = None
            return Reply(None, None, said, failure_of(error), None)

    def _made(self, piece):
        self._source = self._source or pickle.loads(self._pickled)
        if self._scene is None or self._frame != piece.frame:
            self._scene = None  # two at once may be too large
            self._scene, self._frame = self._source.build(piece.frame), piece.frame
        place = Place(*piece.place, "__main__", {})
        picture = self._scene.render_for(place, *piece.size, window=piece.window, with_files=False,
                                         **piece.options)
        if piece.file is None:
            return picture.layers(), None
        return None, encoded(picture, *piece.file)


def encoded(picture, ending, exposure, display, name="color"):
    """The bytes of a picture's file."""
    with tempfile.TemporaryDirectory(prefix="vantor-farm-", dir=temporary_place()) as folder:
        path = os.path.join(folder, "picture" + ending)
        picture.save(path, exposure, display, name)
        with open(path, "rb") as file:
            return file.read()


class collecting(warnings.catch_warnings):
    """While it is open, messages are appended to a list, with file and line. All of them: which are
    shown is for the filters of the script to decide."""

    def __init__(self, said):
        super().__init__()
        self._said = said

    def __enter__(self):
        super().__enter__()
        warnings.simplefilter("always", SceneWarning)
        show_others = warnings.showwarning

        def show(message, category, filename, lineno, file=None, line=None):
            if issubclass(category, SceneWarning):
                self._said.append((str(message), filename, lineno))
            else:
                show_others(message, category, filename, lineno, file, line)

        warnings.showwarning = show


def failure_of(error):
    """An exception, ready to travel."""
    try:
        pickled = pickle.dumps(error)
        pickle.loads(pickled)
    except Exception:  # some cannot be pickled, others not made again
        pickled = pickle.dumps(SceneError("{}: {}".format(type(error).__name__, error)))
    return Failure(pickled, "".join(traceback.format_exception(type(error), error,
                                                               error.__traceback__)))
