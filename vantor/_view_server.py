"""The server of a view: who is let in, what the pages are sent, and when the child renders what.

It is aiohttp's. Whoever has no token gets nothing, nor does a page of another origin.
"""

import asyncio
import collections
import hmac
import json
import os
import pathlib
import secrets
import urllib.parse

from ._passes import aov_parameter
from ._view_child import Child
from ._view_process import Pick, Save
from ._view_requests import (
    can_denoise,
    checked_camera,
    checked_number,
    checked_request,
    checked_size,
)

_PAGE = pathlib.Path(__file__).with_name("view.html")
_LOOPBACK = ("127.0.0.1", "localhost", "::1")
#: The addresses that stand for all of a machine's.
EVERYWHERE = ("0.0.0.0", "::")

_LOOK = 0.3  # seconds between looks at the script's file
_PATIENCE = 0.3  # seconds in which a request may show its first picture before the next one
_MOST_CRASHES = 3  # in a row, without a picture between them

_ENDINGS = {".png": "image/png", ".exr": "image/x-exr", ".jpg": "image/jpeg", ".tif": "image/tiff"}


def web_library():
    try:
        from aiohttp import web
    except ImportError:
        raise ImportError("a view needs aiohttp (Debian: python3-aiohttp, for /usr/bin/python3; "
                          "elsewhere: pip install aiohttp)") from None
    return web


class Server:
    def __init__(self, build, watched, host):
        self.token = secrets.token_urlsafe(24)
        self._build = build
        self._watched = watched
        # Of all addresses of a machine, the names are not known; the token has to do.
        self._hosts = None if host in EVERYWHERE else {*_LOOPBACK, host.lower()}
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
        web = web_library()

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
        text = text.replace("DENOISES", json.dumps(can_denoise()))
        policy = ("default-src 'none'; script-src 'nonce-{0}'; style-src 'nonce-{0}'; "
                  "img-src blob:; connect-src 'self'; base-uri 'none'; form-action 'none'")
        return web_library().Response(text=text, content_type="text/html", headers={
            "Content-Security-Policy": policy.format(nonce), "Referrer-Policy": "no-referrer",
            "Cache-Control": "no-store"})

    # What a page asks for.

    async def _socket(self, request):
        web = web_library()
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
                self._look(checked_request(asked, self._next_number()))
            elif what == "pick":
                camera, size = checked_camera(asked["camera"]), checked_size(asked["size"])
                x, y = checked_number(asked["x"], 0, 1), checked_number(asked["y"], 0, 1)
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
        web = web_library()
        ending = request.query.get("ending", ".png")
        try:
            if self._request is None or ending not in _ENDINGS:
                raise ValueError("nothing is looked at" if ending in _ENDINGS else
                                 "expected one of the endings " + ", ".join(_ENDINGS))
            samples = int(checked_number(int(request.query["samples"]), 1, 1 << 20))
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
        self._child = Child(self._build, self._take)

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
