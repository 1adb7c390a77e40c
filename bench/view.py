"""How soon a view shows something after a move, of a million triangles.

usage: PYTHONPATH=build/release/python /usr/bin/python3 bench/view.py [WIDTHxHEIGHT]
       (numpy and aiohttp are needed)

Moves the camera as the page does, over the same socket, but without a browser. Prints milliseconds
until the first picture is there, and how large it is: of moves from rest, and of moves while the
picture refines; then how many pictures a second are seen while the camera is dragged, at 60 moves a
second.
"""

import asyncio
import json
import statistics
import sys
import time
import urllib.parse

import aiohttp
import vantor as vt
from package import grid

MOVES = 15
DRAGGED = 3.0  # seconds


def landscape():
    scene = vt.Scene()
    scene.camera("perspective", position=(0, 1.2, 3), target=(0, 0, 0), fov=40)
    scene.light("sky", sun_direction=(1, 2, 1))
    points, triangles = grid(708)
    with scene.material("diffuse", reflectance=(0.6, 0.5, 0.3)):
        scene.add("mesh", points=points, triangles=triangles)
    return scene


class Page:
    """The other end of a view's socket."""

    def __init__(self, socket, size):
        self._socket = socket
        self._size = size
        self._moves = 0
        self.pictures = 0

    async def next_picture(self):
        """The facts that come with it."""
        async for message in self._socket:
            if message.type == aiohttp.WSMsgType.BINARY:
                self.pictures += 1
                length = int.from_bytes(message.data[:4], "little")
                return json.loads(message.data[4 : 4 + length])
            if json.loads(message.data)["what"] == "failed":
                raise RuntimeError(message.data)

    async def scene(self):
        while json.loads((await self._socket.receive()).data)["what"] != "scene":
            pass

    async def move(self, samples):
        self._moves += 1
        camera = {"position": [0.01 * self._moves, 1.2, 3], "target": [0, 0, 0], "fov": 40,
                  "up": [0, 1, 0]}
        await self._socket.send_json({"what": "view", "camera": camera, "size": self._size,
                                      "aov": "color", "exposure": 0, "display": "srgb",
                                      "denoise": True, "samples": samples})

    async def rest(self):
        while not (await self.next_picture())["done"]:
            pass

    async def first(self, samples):
        """Milliseconds to the first picture of a move, and its width."""
        begin = time.perf_counter()
        await self.move(samples)
        facts = await self.next_picture()
        while facts["number"] < self._moves:  # of the move before
            facts = await self.next_picture()
        return 1000 * (time.perf_counter() - begin), facts["width"]


def show(what, firsts):
    times, widths = zip(*firsts)
    print("{:34} {:6.0f} {:6.0f} {:6.0f}   {} to {} wide".format(
        what, min(times), statistics.median(times), max(times), min(widths), max(widths)))


async def measure(url, size):
    address = "ws://{}/socket?{}".format(url.netloc, url.query)
    origin = {"Origin": "http://" + url.netloc}
    async with aiohttp.ClientSession() as session:
        async with session.ws_connect(address, headers=origin, max_msg_size=0) as socket:
            page = Page(socket, size)
            await page.scene()
            firsts = []
            for _ in range(MOVES):
                firsts.append(await page.first(4))
                await page.rest()
            print("{} x {} pixels{:>27} {:>6} {:>6}".format(*size, "least", "median", "most"))
            show("from rest, ms", firsts)
            firsts = []
            for _ in range(MOVES):
                await page.first(1 << 16)
                await asyncio.sleep(0.7)
                firsts.append(await page.first(1 << 16))
            show("while it refines, ms", firsts)

            before = page.pictures
            seeing = asyncio.ensure_future(page.rest())  # which does not come while it is dragged
            end = time.perf_counter() + DRAGGED
            while time.perf_counter() < end:
                await page.move(1 << 16)
                await asyncio.sleep(1 / 60)
            seeing.cancel()
            print("while dragged, pictures a second   {:6.1f}".format(
                (page.pictures - before) / DRAGGED))


def main():
    width, height = (sys.argv[1] if len(sys.argv) > 1 else "1000x700").split("x")
    with landscape().view() as view:
        asyncio.run(measure(urllib.parse.urlsplit(view.url), (int(width), int(height))))


if __name__ == "__main__":
    main()
