"""Jobs of a farm: what a cluster works on while the script goes on."""

import asyncio
import concurrent.futures
import os
import pickle
import threading
import time
import uuid
import warnings
import weakref

from ._files import write_whole
from ._messages import SceneWarning
from ._progress import end_after, wait_with_bar
from ._render_process import Renderer
from ._windows import Canvas

_INTERVAL = 0.05  # seconds between looks at what has come

# What this process renders with, where it is a worker.
_renderer = Renderer()

# In which Python notes what warnings it has shown.
_shown: dict = {}


class FarmError(RuntimeError):
    """The farm has not made what it was asked for."""


class FarmJob:
    """Pieces that a cluster renders. One that nobody holds any more is cancelled."""

    def __init__(self, client, pickled_source, pieces):
        self._collector = self._new_collector(client, pickled_source, pieces)
        self._abandon = weakref.finalize(self, self._collector.cancel)
        self._collector.start()

    _new_collector = None  # each kind of job has its own

    @property
    def progress(self):
        """How much is done, 0 to 1, counted in pieces."""
        return self._collector.progress()

    @property
    def workers(self):
        """How many pieces each worker has made, by its address."""
        return dict(self._collector.workers)

    def done(self):
        """Whether it is over, be it with a result or not."""
        return not self._collector.is_alive()

    def cancel(self):
        """Stops all workers' pieces. What is finished by then is the result."""
        self._collector.cancel()

    def result(self, timeout=None, *, progress=False):
        """Waits for the result; with progress, under a bar of tqdm. Raises what the function or the
        script that builds the scene has raised, SceneError if there is no picture, FarmError for
        what went wrong on the way, CancelledError if it was cancelled before anything was finished,
        and TimeoutError after the timeout, in seconds; the job then goes on."""
        # Not for ever: on some systems Ctrl-C does not wake up who waits for a thread.
        end = end_after(timeout)
        if progress:
            wait_with_bar(self, "render", end)
        while not self.done():
            left = 1.0 if end is None else end - time.monotonic()
            if left <= 0:
                raise TimeoutError("the job is not done after {} s".format(timeout))
            self._collector.join(min(left, 1.0))
        return self._collector.result()

    def __await__(self):
        return self._wait().__await__()

    async def _wait(self):
        while not self.done():
            await asyncio.sleep(_INTERVAL)
        return self._collector.result()

    def __repr__(self):
        return "<{} {:.0%} done>".format(type(self).__name__, self.progress)


class FrameJob(FarmJob):
    """A frame that a cluster renders. Its result is the Picture."""

    def __init__(self, client, pickled_source, pieces, size, window, ranges):
        self._canvas = Canvas(size, window, ranges)
        super().__init__(client, pickled_source, pieces)

    def _new_collector(self, client, pickled_source, pieces):
        return _FrameCollector(client, pickled_source, pieces, self._canvas)

    def preview(self):
        """The Picture as far as it has come; the rest is black. None before the first piece."""
        return self._collector.preview()


class AnimationJob(FarmJob):
    """Frames that a cluster renders. Its result is the list of their files' paths, in order."""

    def __init__(self, client, pickled_source, pieces, finished):
        self._finished = finished
        super().__init__(client, pickled_source, pieces)

    def _new_collector(self, client, pickled_source, pieces):
        return _AnimationCollector(client, pickled_source, pieces, self._finished)


class _Collector(threading.Thread):
    """Hands the pieces to the cluster, and takes what comes back, as soon as it is there: what has
    arrived is lost with no worker. pieces are by what they are for: a window and its first sample,
    or a path."""

    def __init__(self, client, pickled_source, pieces):
        super().__init__(name="vantor-farm", daemon=True)
        self._client = client
        self._token = uuid.uuid4().hex
        self._source = pickled_source
        self._pieces = pieces
        self._futures = {}
        self._lock = threading.Lock()
        self._is_cancelled = threading.Event()
        self._said = {}
        self._failures = []  # (purpose, exception)
        self._done = 0
        self.workers = {}

    def progress(self):
        return self._done / max(len(self._pieces), 1)

    def cancel(self):
        self._is_cancelled.set()

    def run(self):
        try:
            self._collect()
        except Exception as error:
            if not isinstance(error, FarmError):
                error = FarmError("the cluster has failed: {}: {}".format(type(error).__name__,
                                                                         error))
            self._failures.insert(0, (None, error))
        finally:
            left = list(self._futures.values())
            self._futures = {}
            if left and self._client.status == "running":
                self._client.cancel(left)

    def _submit(self):
        from distributed import as_completed

        # The source is a task, too: unlike data that was scattered, it comes back if its worker is
        # lost. And it travels once to each worker, not with each piece. What stands before the
        # first hyphen counts as the kind of a task: many of a kind are spread over all workers.
        source = self._client.submit(_same, self._source, key="vantor_source-" + self._token)
        keys = ["vantor_piece-{}-{}".format(self._token, i) for i in range(len(self._pieces))]
        futures = self._client.map(_render_piece, list(self._pieces.values()), key=keys,
                                   source=source, token=self._token)
        self._futures = {future.key: future for future in futures}
        self._purposes = dict(zip(keys, self._pieces))
        return source, as_completed(futures, loop=self._client.loop, with_results=True,
                                    raise_errors=False)

    def _collect(self):
        source, completed = self._submit()
        while self._futures and not self._is_over():
            batch = completed.next_batch(block=False)
            for future, result in batch:
                self._futures.pop(future.key)  # the cluster may forget it
                self._take(self._purposes[future.key], future, result)
            if not batch:
                check_open(self._client)
                self._is_cancelled.wait(_INTERVAL)
        del source

    def _is_over(self):
        return self._is_cancelled.is_set()

    def _take(self, purpose, future, reply):
        if future.status == "cancelled":
            check_open(self._client)
        if future.status != "finished" or reply is None:
            return self._fail(purpose, _error_of(reply))
        self._said.update(dict.fromkeys(map(tuple, reply.said)))
        self.workers[reply.worker] = self.workers.get(reply.worker, 0) + 1
        if reply.failure:
            return self._fail(purpose, _exception_of(reply.failure))
        try:
            with self._lock:
                self.take(purpose, reply)
        except OSError as error:
            return self._fail(purpose, error)
        self._done += 1

    def _fail(self, purpose, error):
        self._failures.append((purpose, error))

    def tell(self):
        """Warns of what was said, once: on the workers it may have been said for every piece."""
        said, self._said = self._said, {}
        for text, file, line in said:
            warnings.warn_explicit(text, SceneWarning, file, line, registry=_shown)


class _FrameCollector(_Collector):
    def __init__(self, client, pickled_source, pieces, canvas):
        super().__init__(client, pickled_source, pieces)
        self._canvas = canvas

    def take(self, purpose, reply):
        window, _ = purpose
        self._canvas.put(window, reply.layers)

    def _is_over(self):
        return self._failures or super()._is_over()

    def preview(self):
        with self._lock:
            return None if self._canvas.is_empty() else self._canvas.picture()

    def result(self):
        self.tell()
        picture = self.preview()
        if self._done == len(self._pieces):
            return picture
        if self._failures:
            raise self._failures[0][1]
        if picture is None:
            raise concurrent.futures.CancelledError("cancelled before a piece was finished")
        return picture


class _AnimationCollector(_Collector):
    """One frame that fails does not keep the others from being made."""

    def __init__(self, client, pickled_source, pieces, finished):
        super().__init__(client, pickled_source, pieces)
        self._finished = finished  # whether it is there, by path

    def take(self, path, reply):
        write_whole(path, reply.file)
        self._finished[path] = True

    def result(self):
        self.tell()
        raise_failures(self._failures, len(self._finished))
        return [path for path, is_there in self._finished.items() if is_there]


def check_open(client):
    if client.status != "running":
        raise FarmError("the client is {}".format(client.status))


def raise_failures(failures, count):
    """Raises the first of the (path, exception), if there are any, of an animation's frames."""
    if not failures:
        return
    path, error = failures[0]
    if path is None:
        raise error
    raise FarmError("{} of {} frames are not made; the first is {}: {}".format(
        len(failures), count, os.path.basename(path), error)) from error


def _error_of(result):
    """Of a piece that no worker has answered for."""
    if result is None:
        return FarmError("a worker has left a piece undone")
    error = result[1] if isinstance(result, tuple) else result
    if isinstance(error, (concurrent.futures.CancelledError, asyncio.CancelledError)):
        return FarmError("the cluster has cancelled a piece")
    return FarmError("a worker has failed: {}: {}".format(type(error).__name__, error))


def _exception_of(failure):
    if failure.pickled is None:
        return FarmError(failure.text)
    try:
        error = pickle.loads(failure.pickled)
    except Exception:  # of a class that is not here
        error = FarmError(failure.text.strip().splitlines()[-1])
    error.__cause__ = _OnWorker(failure.text)
    return error


class _OnWorker(Exception):
    """Shows a worker's traceback above the exception here."""

    def __str__(self):
        return "\n" + self.args[0]


# On a worker.


def _same(value):
    return value


def _render_piece(piece, source, token):
    from distributed import get_worker

    worker = get_worker()
    key = worker.get_current_task()
    reply = _renderer.render(token, source, piece, lambda: _is_wanted(worker, key))
    return reply and reply._replace(worker=worker.address)


def _is_wanted(worker, key):
    """Whether the scheduler still knows of a task. It tells the worker when a script has cancelled
    it, or has ended, but nothing stops a task that runs."""
    task = worker.state.tasks.get(key)
    return task is not None and task.state not in ("cancelled", "released", "forgotten")
