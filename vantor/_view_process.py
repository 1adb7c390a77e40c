"""View process: the child that renders what a viewer's page shows.

It builds the scene, and then follows one request after another, each with a camera, for as long as
samples are missing. A new one stops a pass by SIGINT. Without anything to do it sleeps.
"""

import collections
import math
import os
import signal
import time
import traceback
import warnings

from . import _native
from ._messages import Place, SceneError, SceneWarning
from ._parts import merge
from ._render_process import collecting, encoded
from ._vocabulary import ALL

# What is to be seen: the camera's parameters; size in pixels; which value of each pixel, and how it
# is shown; how many samples in all; whether colours are denoised. A number tells requests apart.
Request = collections.namedtuple("Request",
                                 "number camera size aov exposure display samples denoise")

# The pixel of which it is asked what is there, in fractions of the picture.
Pick = collections.namedtuple("Pick", "camera size x y")

# A picture to keep, as the bytes of a file with that ending.
Save = collections.namedtuple("Save", "request ending")

_SAMPLES_OF_A_GROUP = 16
_MOST_SAMPLES_OF_A_PASS = 128

# Seconds that the first picture after a move may take.
_FIRST = 0.05

_PLACE = Place("the view", 0, "__main__", {})


def serve(connection, build):
    """What the child does: build() is called for the scene. Sends ("scene", facts), and answers."""
    _close_others(connection.fileno())
    stopped = []
    signal.signal(signal.SIGINT, lambda *_: stopped.append(1))  # the renderer looks for it, too
    signal.pthread_sigmask(signal.SIG_UNBLOCK, {signal.SIGINT})
    try:
        _Server(connection, build, stopped).run()
    except (EOFError, OSError):
        pass  # nobody looks any more


def _close_others(kept):
    """Files of the parent: its connections would not end while the child has them."""
    for number in map(int, os.listdir("/proc/self/fd")):
        if number > 2 and number != kept:
            try:
                os.close(number)
            except OSError:
                pass  # that of the listing itself


class _Server:
    def __init__(self, connection, build, stopped):
        self._connection = connection
        self._build = build
        self._stopped = stopped
        self._scene = None
        self._request = None
        self._rate = 2e5  # paths a second, until it is known better
        self._picture = None  # what is there of the request, and how many samples it has
        self._samples = 0
        self._steps = []

    def run(self):
        self._make_scene()
        while True:
            if self._connection.poll(0 if self._steps else None):
                self._answer(self._connection.recv())
            elif self._steps:
                self._step()

    def _make_scene(self):
        said = []
        error = None
        try:
            with collecting(said):
                scene = self._build()
                camera = camera_of(scene)
                scene.own_camera(camera)
                # What has no effect is said when a pass begins.
                scene.render_for(_PLACE, 1, 1, 1, with_files=False)
            self._scene = scene
        except BaseException as raised:
            error = _described(raised)
        facts = {"messages": said, "error": error}
        if self._scene:
            facts["camera"] = camera
        self._connection.send(("scene", facts))

    def _answer(self, asked):
        self._stopped.clear()
        self._connection.send(("heard", None))
        if self._scene is None:
            return
        try:
            if isinstance(asked, Request):
                self._follow(asked)
            elif isinstance(asked, Pick):
                self._connection.send(("picked", self._picked(asked)))
            elif isinstance(asked, Save):
                self._connection.send(("saved", self._saved(asked)))
            else:
                self._steps = []
        except (SceneError, ValueError, TypeError) as error:
            self._connection.send(("failed", str(error)))

    def _follow(self, request):
        before = self._request
        self._request = request
        same = before and _made_of(before) == _made_of(request)
        if same and self._picture is not None:
            self._show()  # by another exposure
            if before.samples == request.samples:
                return
        self._picture = None
        self._view(request.camera)
        self._steps = list(self._plan(request))

    def _view(self, camera):
        camera = {name: value for name, value in camera.items() if value is not None}
        self._scene.own_camera(camera)

    def _plan(self, request):
        """(divisor of the size, first sample, number of samples)"""
        pixels = request.size[0] * request.size[1]
        divisor = max(1, math.ceil(math.sqrt(pixels / (self._rate * _FIRST))))
        while divisor > 1:
            yield divisor, None, 1
            divisor //= 3
        yield 1, None, 1
        if request.samples > _SAMPLES_OF_A_GROUP:
            yield 1, None, 4
        first = 0
        while first < request.samples:
            count = min(max(first, _SAMPLES_OF_A_GROUP), _MOST_SAMPLES_OF_A_PASS)
            while first % count:
                count //= 2
            yield 1, first, min(count, request.samples - first)
            first += count

    def _step(self):
        step = self._steps.pop(0)
        divisor, first, count = step
        request = self._request
        size = [max(1, side // divisor) for side in request.size]
        settings = {}
        if first is not None:
            settings = {"first_sample": first, "samples_in_all": request.samples}
            # Steps are parts of the samples, which all pixels get.
            settings.update((name, 0) for name in ("noise", "adaptive")
                            if ALL.parameter("newImager", "settings", name))
        start = time.monotonic()
        try:
            picture = self._render(size, count, aovs=_aovs(request), settings=settings,
                                   denoise=request.denoise and count > 1)
        except SceneError as error:
            if not self._stopped:
                self._steps = []
                self._connection.send(("failed", str(error)))
            picture = None
        if self._stopped:
            # Not all of it is there. Either there is another request by now, or once more.
            self._stopped.clear()
            self._steps.insert(0, step)
        elif picture:
            if count == 1:  # others are denoised
                self._rate = size[0] * size[1] / max(time.monotonic() - start, 1e-3)
            self._picture = merge([self._picture, picture]) if first else picture
            self._samples = (first or 0) + count
            # If something else is asked for by now, this picture is out of date, or will be asked
            # for once more.
            if not self._connection.poll(0):
                self._show()

    def _render(self, size, count, **options):
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", SceneWarning)  # told when the scene was made
            return self._scene.render_for(_PLACE, *size, count, with_files=False, **options)

    def _show(self):
        request = self._request
        picture = self._picture
        facts = {
            "number": request.number, "width": picture.width, "height": picture.height,
            "samples": self._samples, "of": request.samples, "done": not self._steps,
            "error": relative_error(picture) if self._samples > 1 else None,
            "denoised": request.denoise and self._samples > 1,
        }
        png = picture.png(request.exposure, request.display, request.aov)
        self._connection.send(("picture", (facts, png)))

    def _picked(self, pick):
        width, height = pick.size
        column = min(max(int(pick.x * width), 0), width - 1)
        row = min(max(int(pick.y * height), 0), height - 1)
        window = (column / width, row / height, (column + 1) / width, (row + 1) / height)
        self._view(pick.camera)
        aovs = ("position", "depth", "object_id")
        seen = self._undisturbed(pick.size, 1, window=window, aovs=aovs)
        if not seen.buffer("depth")[0, 0, 0]:
            return {"position": None, "object": None, "material": None}
        number = int(seen.buffer("object_id")[0, 0, 0])
        object = next((handle for handle in self._scene.handles
                       if handle.kind == "object" and handle.id == number), None)
        return {
            "position": [seen.buffer("position")[0, 0, axis] for axis in range(3)],
            "object": described(object),
            "material": described(object and object.material),
        }

    def _saved(self, save):
        request = save.request
        self._view(request.camera)
        aovs = () if request.aov == "color" else (request.aov,)
        picture = self._undisturbed(request.size, request.samples, aovs=aovs,
                                    denoise=request.denoise and request.samples > 1)
        return encoded(picture, save.ending, request.exposure, request.display, request.aov)

    def _undisturbed(self, *asked, **options):
        """As _render(), once more where a signal came late that was meant for the pass before."""
        while True:
            self._stopped.clear()
            try:
                picture = self._render(*asked, **options)
            except SceneError:
                if not self._stopped:
                    raise
            if not self._stopped:
                return picture


def _made_of(request):
    """What the pixels depend on, rather than how they are shown."""
    return request.camera, request.size, request.aov, request.denoise


def _aovs(request):
    return ("variance",) if request.aov == "color" else (request.aov, "variance")


def described(handle):
    """A handle and where it was made, for a reader."""
    if handle is None:
        return None
    return "{} ({}, line {})".format(repr(handle)[1:-1], os.path.basename(handle.place.file),
                                     handle.place.line)


def relative_error(picture):
    """The mean standard error of the colours, as a fraction of their mean; None of a black picture.
    """
    variance = picture.buffer("variance").cast("B").cast("f")
    color = picture.buffer("color").cast("B").cast("f")
    # Some thousands of values will do: of all channels, as the step is no multiple of three.
    step = 1 + 3 * (len(color) // 60000)
    deviation = sum(map(math.sqrt, variance[::step]))
    mean = sum(color[::step])
    return deviation / mean if mean > 0 else None


def camera_of(scene):
    """The parameters of the scene's last camera, in the world and with a target to go around. One
    that is no perspective camera is replaced by one."""
    made = scene.last_camera
    given = made.parameters if made and made.type == "perspective" else {}
    camera = {"fov": 45.0}
    if given.get("fov_axis"):
        camera["fov_axis"] = given["fov_axis"]
    for name in ("fov", "aperture_radius", "focus_distance"):
        if given.get(name) is not None:
            camera[name] = float(given[name])
    position = _vector(given.get("position"), (0.0, 0.0, 0.0))
    ahead = tuple(p + d for p, d in zip(position, (0.0, 0.0, -5.0)))
    target = _vector(given.get("target"), ahead)
    up = _vector(given.get("up"), (0.0, 1.0, 0.0))
    for transform in reversed(made.transforms if made else ()):
        rows = transform.rows
        position, target = _moved(position, rows, 1.0), _moved(target, rows, 1.0)
        up = _moved(up, rows, 0.0)
    return dict(camera, position=list(position), target=list(target), up=list(up))


def _vector(value, default):
    return default if value is None else tuple(_native.numbers(value, (3,)))


def _moved(vector, rows, w):
    point = (*vector, w)
    return tuple(sum(point[i] * rows[i][axis] for i in range(4)) for axis in range(3))


def _described(error):
    """An exception with the file and line of the script, as the page shows it."""
    if isinstance(error, SyntaxError):
        return {"text": "SyntaxError: " + str(error.msg), "file": error.filename,
                "line": error.lineno}
    frames = traceback.extract_tb(error.__traceback__)
    own = os.path.dirname(os.path.abspath(__file__))
    of_script = [frame for frame in frames if os.path.dirname(frame.filename) != own]
    last = (of_script or frames)[-1]
    return {"text": "{}: {}".format(type(error).__name__, error), "file": last.filename,
            "line": last.lineno}
