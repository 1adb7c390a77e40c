"""Viewer: a page in the browser in which a scene is looked at from all sides, while it refines.

The server is aiohttp's; what is seen is rendered by a child process, see _view_process.py. Whoever
has no token gets nothing, nor does a page of another origin.
"""

import asyncio
import collections
import hmac
import html
import json
import math
import os
import pathlib
import secrets
import signal
import socket
import threading
import urllib.parse

from . import _values
from ._children import ConnectedChild
from ._models import load
from ._passes import aov_parameter
from ._source import Source
from ._studio import scene_of_model
from ._view_process import Pick, Request, Save, serve
from ._vocabulary import ALL

_PAGE = pathlib.Path(__file__).with_name("view.html")
_LOOPBACK = ("127.0.0.1", "localhost", "::1")
_EVERYWHERE = ("0.0.0.0", "::")

_LAST_PORT = 65535

_LOOK = 0.3  # seconds between looks at the script's file
_STOP = 0.02  # seconds between signals to a child that still renders what nobody wants any more
_PATIENCE = 0.3  # seconds in which a request may show its first picture before the next one
_MOST_CRASHES = 3  # in a row, without a picture between them

_CAMERA = ("position", "target", "up", "fov", "fov_axis", "aperture_radius", "focus_distance")
_ENDINGS = {".png": "image/png", ".exr": "image/x-exr", ".jpg": "image/jpeg", ".tif": "image/tiff"}


class View:
    """A page that shows a scene. It is there until close(), or until the script ends."""

    def __init__(self, build, watched=None, *, host="127.0.0.1", port=0):
        """build() makes the scene, in a child process. When the file that is watched changes, it is
        made anew."""
        _web()
        if not isinstance(host, str):
            raise TypeError("host: expected a name or an address, got {!r}".format(host))
        if not 0 <= _values.integer(port) <= _LAST_PORT:
            raise ValueError("port: expected 0 to {}, got {}".format(_LAST_PORT, port))
        self._server = _Server(build, watched, host)
        self._loop = asyncio.new_event_loop()
        self._thread = threading.Thread(target=self._loop.run_forever, name="vantor-view",
                                        daemon=True)
        self._thread.start()
        try:
            self.port = self._run(self._server.start(host, port))
        except BaseException:
            self._end_loop()
            raise
        name = socket.gethostname() if host in _EVERYWHERE else host
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


def _web():
    try:
        from aiohttp import web
    except ImportError:
        raise ImportError("a view needs aiohttp (Debian: python3-aiohttp, for /usr/bin/python3; "
                          "elsewhere: pip install aiohttp)") from None
    return web


class _Child:
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


class _Server:
    def __init__(self, build, watched, host):
        self.token = secrets.token_urlsafe(24)
        self._build = build
        self._watched = watched
        # Of all addresses of a machine, the names are not known; the token has to do.
        self._hosts = None if host in _EVERYWHERE else {*_LOOPBACK, host.lower()}
        self._pages = set()
        self._child = None
        self._scene = None  # what the child has told of it
        self._request = None  # the newest,
        self._asked = None  # and the last that the child was asked for
        self._patience = None  # a timer, until that shows its first picture
        self._number = 0
        self._crashes = 0
        self._saves = collections.deque()  # (Save, future); the first is being made
        self._watching = None

    async def start(self, host, port):
        web = _web()

        @web.middleware
        async def guard(request, handler):
            if not self._is_allowed(request):
                return web.Response(status=403, text="forbidden")
            return await handler(request)

        app = web.Application(middlewares=[guard])
        app.router.add_get("/", self._page)
        app.router.add_get("/socket", self._socket)
        app.router.add_get("/save", self._save)
        self._runner = web.AppRunner(app, access_log=None)
        await self._runner.setup()
        site = web.TCPSite(self._runner, host, port)
        try:
            await site.start()
        except BaseException:
            await self._runner.cleanup()
            raise
        self._start_child()
        return self._runner.addresses[0][1]

    async def stop(self):
        if self._watching:
            self._watching.cancel()
        self._end_patience()
        if self._child:
            self._child.end()
        for page in list(self._pages):
            await page.close()
        await self._runner.cleanup()

    # Who is let in.

    def _is_allowed(self, request):
        token = request.query.get("token", "")
        origin = request.headers.get("Origin")
        host = request.headers.get("Host", "")
        try:
            name = urllib.parse.urlsplit("//" + host).hostname
            is_own = origin is None or urllib.parse.urlsplit(origin).netloc == host
        except ValueError:  # such as "["
            return False
        needs_origin = request.path == "/socket"
        is_known = self._hosts is None or name in self._hosts
        return (hmac.compare_digest(token.encode(), self.token.encode()) and is_known and is_own
                and not (needs_origin and origin is None))

    async def _page(self, _):
        nonce = secrets.token_urlsafe(12)
        known = aov_parameter()
        text = _PAGE.read_text(encoding="utf-8").replace("NONCE", nonce)
        text = text.replace("AOVS", json.dumps(known.choices if known else ["color"]))
        text = text.replace("DENOISES", json.dumps(_can_denoise()))
        policy = ("default-src 'none'; script-src 'nonce-{0}'; style-src 'nonce-{0}'; "
                  "img-src blob:; connect-src 'self'; base-uri 'none'; form-action 'none'")
        return _web().Response(text=text, content_type="text/html", headers={
            "Content-Security-Policy": policy.format(nonce), "Referrer-Policy": "no-referrer",
            "Cache-Control": "no-store"})

    # What a page asks for.

    async def _socket(self, request):
        web = _web()
        page = web.WebSocketResponse(heartbeat=20, max_msg_size=1 << 16)
        await page.prepare(request)
        self._pages.add(page)
        if self._watched and not self._watching:
            self._watching = asyncio.ensure_future(self._watch())
        if self._scene:
            await page.send_str(json.dumps({"what": "scene", **self._scene}))
        try:
            async for message in page:
                if message.type == web.WSMsgType.TEXT:
                    await self._hear(page, message.data)
        finally:
            self._pages.discard(page)
            if not self._pages:
                self._rest()
        return page

    async def _hear(self, page, text):
        try:
            asked = json.loads(text)
            what = asked["what"]
            if what == "view":
                self._look(_request(asked, self._next_number()))
            elif what == "pick":
                camera, size = _camera(asked["camera"]), _size(asked["size"])
                x, y = _number(asked["x"], 0, 1), _number(asked["y"], 0, 1)
                self._ask(Pick(camera, size, x, y))
                if self._request:
                    self._send_request()
            elif what == "rest":
                self._rest()
            else:
                raise ValueError("it is not known what is asked for")
        except (ValueError, TypeError, LookupError) as error:
            await page.send_str(json.dumps({"what": "failed", "text": str(error)}))

    async def _save(self, request):
        web = _web()
        ending = request.query.get("ending", ".png")
        try:
            if self._request is None or ending not in _ENDINGS:
                raise ValueError("nothing is looked at" if ending in _ENDINGS else
                                 "expected one of the endings " + ", ".join(_ENDINGS))
            samples = int(_number(int(request.query["samples"]), 1, 1 << 20))
            wanted = self._request._replace(samples=samples)
        except (ValueError, LookupError) as error:
            return web.Response(status=400, text=str(error))
        future = asyncio.get_running_loop().create_future()
        self._saves.append((Save(wanted, ending), future))
        if len(self._saves) == 1:
            self._ask_now(self._saves[0][0])
        try:
            data = await future
        except RuntimeError as error:
            return web.Response(status=503, text=str(error))
        return web.Response(body=data, content_type=_ENDINGS[ending], headers={
            "Content-Disposition": 'attachment; filename="view{}"'.format(ending)})

    def _next_number(self):
        self._number += 1
        return self._number

    def _look(self, request):
        self._request = request
        if self._patience is None:
            self._send_request()

    def _send_request(self):
        self._end_patience()
        self._asked = self._request
        self._patience = asyncio.get_running_loop().call_later(_PATIENCE, self._go_to_newest)
        self._ask(self._request)

    def _go_to_newest(self):
        """Something is to be seen while the camera is dragged: only now comes the next request."""
        self._end_patience()
        if self._asked is not self._request:
            self._send_request()

    def _end_patience(self):
        if self._patience:
            self._patience.cancel()
        self._patience = None

    def _rest(self):
        """Nobody looks: nothing is rendered until somebody does."""
        self._end_patience()
        if not self._saves:
            self._ask(None)

    def _ask(self, asked):
        # What is saved is finished first; the last request follows then.
        if not self._saves:
            self._ask_now(asked)

    def _ask_now(self, asked):
        if self._child and self._scene and not self._scene["error"]:
            self._child.ask(asked)

    # What the child tells.

    def _start_child(self):
        self._scene = None
        self._child = _Child(self._build, self._take)

    def _take(self, kind, value):
        if kind == "picture":
            self._crashes = 0
            facts, png = value
            if self._patience and facts["number"] == self._asked.number:
                self._go_to_newest()
            header = json.dumps({"what": "picture", **facts}).encode()
            return self._tell(len(header).to_bytes(4, "little") + header + png)
        if kind == "saved":
            _, future = self._saves.popleft()
            if not future.done():
                future.set_result(value)
            return self._go_on()
        if kind == "scene":
            self._scene = value
            self._tell({"what": "scene", **value})
            return self._go_on()
        if kind == "ended":
            return self._end_of_child(value)
        if kind == "failed" and self._saves:
            self._fail_saves(value)
            self._go_on()
        self._tell({"what": kind, **(value if isinstance(value, dict) else {"text": value})})

    def _go_on(self):
        if self._saves:
            self._ask_now(self._saves[0][0])
        elif self._request and self._pages:
            self._send_request()

    def _fail_saves(self, why):
        while self._saves:
            _, future = self._saves.popleft()
            if not future.done():
                future.set_exception(RuntimeError(why))

    def _end_of_child(self, how):
        self._child = None
        self._crashes += 1
        text = "the process that renders has ended " + how
        self._fail_saves(text)
        if self._crashes > _MOST_CRASHES:
            text += "; it is not started again before the scene's file changes"
        else:
            self._start_child()
        self._tell({"what": "failed", "text": text})

    def _tell(self, message):
        for page in list(self._pages):
            data = message if isinstance(message, bytes) else json.dumps(message)
            send = page.send_bytes if isinstance(message, bytes) else page.send_str
            asyncio.ensure_future(_sent(send, data))

    async def _watch(self):
        """Makes the scene anew when its file changes, for as long as somebody looks."""
        seen = _stamp(self._watched)
        while True:
            await asyncio.sleep(_LOOK)
            stamp = _stamp(self._watched) if self._pages else seen
            if stamp != seen and stamp is not None:
                seen = stamp
                if self._child:
                    self._child.end()
                self._fail_saves("the scene is made anew")
                self._crashes = 0
                self._start_child()


async def _sent(send, data):
    try:
        await send(data)
    except (ConnectionError, RuntimeError):
        pass  # the page is gone


def _stamp(path):
    try:
        found = os.stat(path)
    except OSError:
        return None  # an editor is about to replace it
    return found.st_mtime_ns, found.st_size, found.st_ino


def _number(value, low, high):
    if isinstance(value, bool) or not isinstance(value, (int, float)) or not low <= value <= high:
        raise ValueError("expected a number from {} to {}, got {!r}".format(low, high, value))
    return value


def _vector(value):
    if not isinstance(value, list) or len(value) != 3:
        raise ValueError("expected three numbers, got {!r}".format(value))
    return tuple(float(_number(number, -1e9, 1e9)) for number in value)


def _size(value):
    width, height = value
    return int(_number(width, 1, 4096)), int(_number(height, 1, 4096))


def _camera(value):
    camera = {name: value[name] for name in _CAMERA if value.get(name) is not None}
    for name, given in camera.items():
        if name in ("position", "target", "up"):
            camera[name] = _vector(given)
        elif name == "fov_axis":
            camera[name] = str(given)
        else:
            camera[name] = float(_number(given, 0, math.inf))
    if camera.get("position") == camera.get("target"):
        raise ValueError("the camera stands at its target")
    return camera


def _request(asked, number):
    known = aov_parameter()
    aov = asked["aov"]
    if aov not in (known.choices if known else ["color"]):
        raise ValueError("there is no value {!r}".format(aov))
    if asked["display"] not in ("srgb", "filmic", "linear"):
        raise ValueError("there is no display {!r}".format(asked["display"]))
    display = asked["display"] if aov == "color" else None
    return Request(number, _camera(asked["camera"]), _size(asked["size"]), aov,
                   float(_number(asked["exposure"], -20, 20)), display,
                   int(_number(asked["samples"], 1, 1 << 20)),
                   _denoises(asked) and aov == "color" and _can_denoise())


def _can_denoise():
    return ALL.parameter("newImager", "file", "denoise") is not None


def _denoises(asked):
    if not isinstance(asked["denoise"], bool):
        raise ValueError("expected true or false, got {!r}".format(asked["denoise"]))
    return asked["denoise"]
