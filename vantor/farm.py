"""vantor.farm: frames and animations on many machines, by Dask's distributed scheduler.

    import vantor.farm
    from distributed import Client

    picture = vantor.farm.render("scene.py", 1920, 1080, samples=256, client=Client(address))
    vantor.farm.animate(build, range(100), "turn.{:04}.png", 640, 480, client=Client(address))

A scene cannot travel: the function or the script that builds it does. Without a client nothing is
started, and everything is rendered here; the pictures are the same, bit for bit.
"""

import math
import os
from collections.abc import Iterable

from . import _native, _values
from ._farm_jobs import (
    AnimationJob,
    FarmError,
    FarmJob,
    FrameJob,
    check_open,
    raise_failures,
)
from ._files import write_whole
from ._messages import script_place
from ._passes import pixel_window
from ._picture import check_format
from ._render_process import Piece, encoded
from ._source import Source
from ._windows import cut, cut_samples, fractions

__all__ = ["AnimationJob", "FarmError", "FarmJob", "FrameJob", "animate", "render"]

# So many pieces for each worker: fewer, and the last to finish is waited for; more, and each costs
# its own preparation. More in all than the last, and the scheduler has no time for them. See
# bench/farm.py.
_PIECES_OF_A_WORKER = 8
_LEAST_PIECES = 16
_MOST_PIECES = 2000


def render(source, width, height, samples=64, *, client=None, frame=None, pieces=None,
           ranges=1, window=(0.0, 0.0, 1.0, 1.0), aovs=(), filter=None, filter_width=None,
           wait=True, progress=False):
    """Renders a picture on the workers of a distributed.Client, in windows and ranges of samples.

    source is a function that returns a Scene, or the path of a script that makes one in the
    variable "scene". A frame, if one is given, is the function's argument, or the script's variable
    "frame". pieces is about how many windows the picture is cut into; ranges, into how many ranges
    of samples each of these at most, which serves where few windows have all the work. Everything
    else is as for Scene.render(): with wait=False, a FrameJob is returned, without a client a Job;
    with progress=True, a bar is shown.
    """
    place = script_place()
    source = Source(source)
    options = {"aovs": aovs, "filter": filter, "filter_width": filter_width}
    if client is None:
        scene = source.build(frame)
        return scene.render_for(place, width, height, samples, window, wait=wait, with_files=False,
                                progress=progress, **options)
    _check(client)
    size = tuple(map(_values.integer, (width, height, samples)))
    pixels = _pixels_of(window, width, height)
    if _values.integer(ranges) < 1:
        raise ValueError("ranges: expected 1 or more, got {}".format(ranges))
    workers = len(client.nthreads())
    if pieces is None:
        pieces = max(min(_PIECES_OF_A_WORKER * workers, _MOST_PIECES), _LEAST_PIECES, workers)
    if _values.integer(pieces) < 1:
        raise ValueError("pieces: expected 1 or more, got {}".format(pieces))
    samples = cut_samples(size[2], _values.integer(ranges))
    parts = {
        (part, first): Piece(frame, (*size[:2], end - first), fractions(part, width, height),
                             _with_range(options, samples, first, size[2]), place[:2], None)
        for part in cut(pixels, _values.integer(pieces))
        for first, end in samples
    }
    job = FrameJob(client, _pickled(source), parts, (width, height), pixels, len(samples))
    return job.result(progress=progress) if wait else job


def _pixels_of(window, width, height):
    numbers = _native.numbers(window, (4,))
    if not all(map(math.isfinite, numbers)):
        raise ValueError("window: expected four finite numbers, got {}".format(numbers))
    pixels = pixel_window(numbers, width, height)
    if pixels[0] >= pixels[2] or pixels[1] >= pixels[3]:
        raise ValueError("a picture of {} x {} has no pixels in the window {}".format(
            width, height, numbers))
    return pixels


def _with_range(options, ranges, first, samples):
    if len(ranges) == 1:
        return options
    return dict(options, settings={"first_sample": first, "samples_in_all": samples})


def animate(source, frames, path, width, height, samples=64, *, client=None, exposure=0.0,
            display=None, filter=None, filter_width=None, again=False, wait=True,
            progress=False):
    """Renders frames into files, each on one worker of a distributed.Client.

    source is as for render(); frames are what it is given, one after another, such as range(100).
    path is that of a frame, by str.format: "turn.{:04}.png". Files that are there already are not
    made again, unless again=True: what was stopped goes on where it was. Files are written by this
    script, each when its frame is finished. Returns the paths; with wait=False, and a client, an
    AnimationJob. If frames fail, the others are made all the same, and FarmError tells of it. With
    progress=True, a bar is shown: of all frames, without a client of each.
    """
    place = script_place()
    source = Source(source)
    if not isinstance(frames, Iterable):
        raise TypeError("frames: expected several, such as range(100), got {!r}".format(frames))
    frames = list(frames)
    paths = _paths(frames, os.fspath(path))
    ending = os.path.splitext(os.fspath(path))[1]
    check_format(os.fspath(path), exposure, display)
    size = tuple(map(_values.integer, (width, height, samples)))
    options = {"filter": filter, "filter_width": filter_width}
    finished = {name: not again and os.path.exists(name) for name in paths}
    parts = {
        name: Piece(frame, size, (0.0, 0.0, 1.0, 1.0), options, place[:2],
                    (ending, exposure, display))
        for name, frame in zip(paths, frames) if not finished[name]
    }
    if client is None:
        if not wait:
            raise TypeError("animate: wait=False needs a client")
        return _animate_here(source, parts, finished, place, progress)
    _check(client)
    job = AnimationJob(client, _pickled(source), parts, finished)
    return job.result(progress=progress) if wait else job


def _animate_here(source, parts, finished, place, progress):
    failures = []
    for path, piece in parts.items():
        try:
            scene = source.build(piece.frame)
            picture = scene.render_for(place, *piece.size, with_files=False, progress=progress,
                                       **piece.options)
            write_whole(path, encoded(picture, *piece.file))
        except Exception as error:
            failures.append((path, error))
    raise_failures(failures, len(finished))
    return list(finished)


def _paths(frames, pattern):
    """The absolute path of each frame."""
    try:
        paths = [os.path.abspath(pattern.format(frame)) for frame in frames]
    except (LookupError, ValueError, TypeError) as error:
        raise ValueError('path: expected one such as "frame.{{:04}}.png", got {!r}: {}'.format(
            pattern, error)) from None
    if len(set(paths)) < len(paths):
        raise ValueError('path: expected a name of its own for each frame, as by '
                         '"frame.{{:04}}.png", got {!r}'.format(pattern))
    for folder in sorted({os.path.dirname(path) for path in paths}):
        if not os.path.isdir(folder):
            raise FileNotFoundError("path: there is no folder {}".format(folder))
    return paths


def _check(client):
    """That a client can be worked with."""
    try:
        from distributed import Client
    except ImportError:
        Client = ()
    if not isinstance(client, Client):
        raise TypeError("client: expected a distributed.Client or None, got {!r}".format(client))
    if client.asynchronous:
        raise TypeError("client: expected one that is not asynchronous; jobs can be awaited")
    check_open(client)


def _pickled(source):
    """The source, with functions of the script itself as a whole."""
    import cloudpickle

    return cloudpickle.dumps(source)
