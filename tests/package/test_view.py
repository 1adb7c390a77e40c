"""The view: a page in headless Chromium, and who is let in to it."""

import os
import signal
import sys
import time
import unittest
import unittest.mock
import urllib.error
import urllib.request
import warnings

import vantor as vt
from scenes import PackageTest, ball_scene, is_ended
from vantor import _view_process, _view_requests
from vantor._children import how_ended
from vantor._source import Source

try:
    import aiohttp
except ImportError:
    aiohttp = None

try:
    from selenium import webdriver
    from selenium.webdriver.support.ui import Select
except ImportError:
    webdriver = None

CHROMIUM = "/usr/bin/chromium"
DRIVER = "/usr/bin/chromedriver"
has_browser = webdriver and os.path.exists(CHROMIUM) and os.path.exists(DRIVER)

# Not tried under a debug build: there is no compiled part to check for leaks here.
is_debug = hasattr(sys, "gettotalrefcount")

needs_aiohttp = unittest.skipUnless(
    aiohttp and not is_debug,
    "this interpreter has no aiohttp (Debian: python3-aiohttp, for /usr/bin/python3)")
needs_browser = unittest.skipUnless(
    aiohttp and has_browser and not is_debug,
    "this interpreter has no aiohttp, or no Chromium to drive (Debian: python3-aiohttp, "
    "python3-selenium, chromium-driver, for /usr/bin/python3)")

SCRIPT = """import vantor as vt
scene = vt.Scene()
scene.camera("perspective", position=(0, 1, 6), target=(0, 1, 0), fov=35)
scene.light("sky", sun_direction=(1, 2, 1))
with scene.material("diffuse", reflectance={}), vt.translate(0, 1, 0):
    scene.add("sphere", radius=1.0)
"""


def status_of(url, **headers):
    """The status of an answer, and its text."""
    try:
        with urllib.request.urlopen(urllib.request.Request(url, headers=headers)) as answer:
            return answer.status, answer.read()
    except urllib.error.HTTPError as error:
        return error.code, error.read()


class ViewTest(PackageTest):
    def setUp(self):
        super().setUp()
        warnings.simplefilter("default")  # the libraries have warnings of their own

    def wait_for(self, find, why=""):
        """What find() gives as soon as that is true."""
        end = time.monotonic() + 120
        while True:
            found = find()
            if found:
                return found
            self.assertLess(time.monotonic(), end, why)
            time.sleep(0.05)


@unittest.skipIf(aiohttp, "this interpreter has aiohttp")
class WithoutAiohttpTest(PackageTest):
    def test_what_is_missing_is_told(self):
        self.assertRaisesRegex(ImportError, "python3-aiohttp", ball_scene().view)


class CameraTest(PackageTest):
    def test_the_camera_is_the_scenes_in_the_world(self):
        scene = vt.Scene()
        with vt.translate(1, 2, 3), vt.rotate(90, (0, 1, 0)):
            scene.camera("perspective", position=(0, 0, 4), target=(0, 0, 0), fov=20)
        camera = _view_process.camera_of(scene)
        self.assertEqual(camera["fov"], 20)
        for name, expected in (("target", (1, 2, 3)), ("position", (5, 2, 3)), ("up", (0, 1, 0))):
            for a, b in zip(camera[name], expected):
                self.assertAlmostEqual(a, b, 5)

    def test_without_a_camera_it_looks_along_z(self):
        camera = _view_process.camera_of(vt.Scene())
        self.assertEqual((camera["position"], camera["target"]), ([0, 0, 0], [0, 0, -5]))


class RequestTest(PackageTest):
    """What no page of ours asks for is refused in the few ways that a server expects."""

    GOOD = {"camera": {"position": [0, 1, 6], "target": [0, 1, 0], "fov": 35}, "size": [64, 48],
            "aov": "color", "exposure": 0, "display": "srgb", "samples": 4, "denoise": False}

    def test_what_a_page_asks_for(self):
        request = _view_requests.checked_request(self.GOOD, 7)
        self.assertEqual((request.number, request.size), (7, (64, 48)))
        self.assertEqual(request.camera["position"], (0, 1, 6))

    def test_nonsense_is_refused(self):
        nothing = object()
        for where, value in (
            ("camera", None), ("camera", []), ("camera", {"position": [1, 2]}),
            ("camera", {"fov": 10 ** 400}), ("camera", {"fov": float("nan")}),
            ("camera", {"target": [0, 0, "0"]}), ("size", 5), ("size", [0, 48]),
            ("size", [True, 48]), ("aov", []), ("aov", "colour"), ("display", None),
            ("exposure", 21), ("samples", 0), ("samples", float("inf")), ("denoise", 1),
            *((name, nothing) for name in self.GOOD),
        ):
            asked = {name: each for name, each in {**self.GOOD, where: value}.items()
                     if each is not nothing}
            with self.subTest(where, value=str(value)[:20]):
                with self.assertRaises((ValueError, TypeError, LookupError)):
                    _view_requests.checked_request(asked, 1)


@needs_aiohttp
class ServerTest(ViewTest):
    def setUp(self):
        super().setUp()
        self.view = ball_scene().view()
        self.addCleanup(self.view.close)
        self.root = "http://127.0.0.1:{}/".format(self.view.port)
        self.token = self.view.url.split("=")[1]

    def test_the_token_opens_the_page_and_nothing_else_does(self):
        status, page = status_of(self.view.url)
        self.assertEqual(status, 200)
        self.assertNotIn(b"http:", page.replace(self.root.encode(), b""))
        for path in ("", "save?samples=1", "socket"):
            for query in ("", "token=", "token=wrong", "token=" + self.token[:-1]):
                url = self.root + path + ("&" if "?" in path else "?") + query
                self.assertEqual(status_of(url), (403, b"forbidden"), url)

    def test_foreign_hosts_and_origins_get_nothing(self):
        good = "127.0.0.1:{}".format(self.view.port)
        for headers in ({"Host": "evil.example"}, {"Host": "evil.example:80"}, {"Host": ""},
                        {"Origin": "http://evil.example"}, {"Origin": "null"},
                        {"Origin": "http://127.0.0.1:1"}):
            self.assertEqual(status_of(self.view.url, **headers), (403, b"forbidden"), headers)
        # Through a tunnel the port is another.
        for headers in ({}, {"Host": "localhost:9999"}, {"Host": good, "Origin": "http://" + good}):
            self.assertEqual(status_of(self.view.url, **headers)[0], 200, headers)

    def test_a_socket_wants_an_origin(self):
        url = self.root + "socket?token=" + self.token
        upgrade = {"Connection": "Upgrade", "Upgrade": "websocket", "Sec-WebSocket-Version": "13",
                   "Sec-WebSocket-Key": "AAAAAAAAAAAAAAAAAAAAAA=="}
        self.assertEqual(status_of(url, **upgrade), (403, b"forbidden"))

    def test_it_listens_on_the_loopback_only(self):
        with open("/proc/self/net/tcp") as file:
            listening = [line.split()[1] for line in file if line.split()[3] == "0A"]
        port = "{:04X}".format(self.view.port)
        self.assertEqual([address for address in listening if address.endswith(":" + port)],
                         ["0100007F:" + port])

    def test_nothing_is_saved_before_anybody_looks(self):
        status, text = status_of(self.root + "save?samples=1&token=" + self.token)
        self.assertEqual((status, text), (400, b"nothing is looked at"))

    def test_it_leaves_no_files(self):
        with unittest.mock.patch("tempfile.tempdir", self.folder):
            view = ball_scene().view()
            self.addCleanup(view.close)
            self.wait_for(lambda: view._server._scene)
            self.assertNotEqual(os.listdir(self.folder), [])
            view.close()
            self.assertEqual(os.listdir(self.folder), [])

    def test_its_end_ends_the_child(self):
        pid = self.view._server._child.pid
        self.view.close()
        self.assertTrue(is_ended(pid))
        self.assertRaises(OSError, urllib.request.urlopen, self.view.url)


@needs_browser
class PageTest(ViewTest):
    @classmethod
    def setUpClass(cls):
        options = webdriver.ChromeOptions()
        options.binary_location = CHROMIUM
        for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage",
                         "--disable-gpu", "--window-size=500,300"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        cls.browser = webdriver.Chrome(service=webdriver.chrome.service.Service(DRIVER),
                                       options=options)
        cls.addClassCleanup(cls.browser.quit)

    def setUp(self):
        super().setUp()
        self.script = self.path("scene.py")
        self.write(SCRIPT.format("(0.8, 0.1, 0.1)"))
        self.view = vt.View.of_file(self.script)
        self.addCleanup(self.view.close)
        self.browser.get_log("browser")
        self.open()

    def open(self):
        self.browser.get(self.view.url)
        self.set("samples", 32)
        self.wait_for(self.is_done, "the first picture")

    def write(self, text):
        # In one step, as editors do.
        with open(self.script + "~", "w") as file:
            file.write(text)
        os.replace(self.script + "~", self.script)

    def js(self, code, *arguments):
        return self.browser.execute_script(code, *arguments)

    def text(self, name):
        return self.js("return document.getElementById(arguments[0]).textContent", name)

    def data(self, name):
        return self.js("return document.body.dataset[arguments[0]]", name)

    def is_done(self):
        return self.data("done") == "true" and self.data("samples") == self.js(
            "return document.getElementById('samples').value")

    def set(self, name, value):
        self.js("""const made = document.getElementById(arguments[0]);
                   made.value = arguments[1];
                   made.dispatchEvent(new Event("input"));
                   made.dispatchEvent(new Event("change"));""", name, value)

    def pixels(self):
        """What the picture shows, in 16 x 16 pixels of red, green, blue."""
        return self.js("""const canvas = document.createElement("canvas");
                          canvas.width = canvas.height = 16;
                          const context = canvas.getContext("2d");
                          context.drawImage(document.getElementById("picture"), 0, 0, 16, 16);
                          const all = [...context.getImageData(0, 0, 16, 16).data];
                          return all.filter((_, i) => i % 4 != 3);""")

    def changed_by(self, work):
        """The picture after work, which is another."""
        before = self.pixels()
        count = int(self.data("pictures"))
        work()
        self.wait_for(lambda: int(self.data("pictures")) > count and self.is_done())
        after = self.wait_for(lambda: self.pixels() != before and self.pixels())
        return before, after

    def drag(self, *, by=(60, 20), button=0):
        """Over the stage, with that button of the mouse."""
        self.js("""const stage = document.getElementById("stage");
                   const say = (type, x, y) => stage.dispatchEvent(new PointerEvent(type, {
                     pointerId: 1, buttons: arguments[2] ? 2 : 1, button: arguments[2],
                     movementX: x, movementY: y, bubbles: true}));
                   stage.setPointerCapture = () => {};
                   say("pointerdown", 0, 0);
                   say("pointermove", arguments[0], arguments[1]);
                   say("pointerup", 0, 0);""", *by, button)

    def double_click(self, x, y):
        """On the stage; its corners are (0, 0) and (1, 1)."""
        # As an event: on a busy machine the driver's two clicks come too far apart to be one.
        self.js("""const stage = document.getElementById("stage");
                   const box = stage.getBoundingClientRect();
                   stage.dispatchEvent(new MouseEvent("dblclick", {
                     clientX: box.left + arguments[0] * box.width,
                     clientY: box.top + arguments[1] * box.height}));""", x, y)

    def test_it_refines_and_then_rests(self):
        self.assertIn("32 of 32 samples, error", self.text("status"))
        self.assertGreater(int(self.data("pictures")), 2)
        pictures = self.data("pictures")
        self.wait_for(lambda: self.is_asleep(self.view._server._child.pid))
        self.assertEqual(self.data("pictures"), pictures)
        self.assertEqual(self.browser.get_log("browser"), [])

    def test_nothing_is_rendered_when_nobody_looks(self):
        self.set("samples", 1 << 20)
        self.wait_for(lambda: int(self.data("samples")) > 32)
        child = self.view._server._child
        self.browser.get("about:blank")
        self.wait_for(lambda: not self.view._server._pages)
        self.wait_for(lambda: not child._unheard)
        with open("/proc/{}/wchan".format(child.pid)) as file:
            waiting = file.read()
        self.wait_for(lambda: self.is_asleep(child.pid), waiting)

    def is_asleep(self, pid):
        """Whether a process has used no time for a while."""
        def used():
            with open("/proc/{}/stat".format(pid)) as file:
                return file.read().rpartition(")")[2].split()[11:13]

        before = used()
        time.sleep(0.5)
        return used() == before

    def test_a_drag_orbits_the_wheel_moves_nearer_and_the_right_button_pans(self):
        camera = self.text("camera")
        self.assertEqual(camera, 'scene.camera("perspective", position=(0, 1, 6), '
                                 'target=(0, 1, 0), fov=35)')
        self.changed_by(self.drag)
        orbited = self.text("camera")
        self.assertIn("target=(0, 1, 0)", orbited)
        self.assertNotIn("position=(0, 1, 6)", orbited)

        self.changed_by(lambda: self.browser.find_element("id", "reset").click())
        self.assertEqual(self.text("camera"), camera)
        self.changed_by(lambda: self.js(
            "document.getElementById('stage').dispatchEvent(new WheelEvent('wheel', "
            "{deltaY: -300, cancelable: true}))"))
        near = self.js("return camera.position")
        self.assertTrue(1 < near[2] < 6, near)

        self.browser.find_element("id", "reset").click()
        self.changed_by(lambda: self.drag(button=2))
        self.assertNotIn("target=(0, 1, 0)", self.text("camera"))
        moved = self.js("return [camera.position, camera.target]")
        self.assertAlmostEqual(moved[0][2] - moved[1][2], 6, 5)

        # The line is what a script needs for the same picture.
        scene = ball_scene()
        eval(self.text("camera"), {"scene": scene})
        self.assertEqual(_view_process.camera_of(scene)["target"],
                         [float("{:.7g}".format(x)) for x in moved[1]])

    def test_it_is_seen_while_it_is_dragged(self):
        self.set("samples", 1 << 20)
        count = int(self.data("pictures"))
        self.js("window.dragging = setInterval(() => { orbit(0.01, 0); changed(); }, 10)")
        self.wait_for(lambda: int(self.data("pictures")) > count + 5, "pictures")
        self.js("clearInterval(window.dragging)")

    def test_a_double_click_takes_what_is_there_as_the_target_and_names_it(self):
        self.double_click(0.5, 0.5)
        self.wait_for(lambda: self.text("picked") != "-")
        self.assertRegex(self.text("picked"), r'^object \d+ "sphere" \(scene.py, line 6\) of '
                                              r'material \d+ "diffuse" \(scene.py, line 5\)$')
        target = self.js("return camera.target")
        self.assertAlmostEqual(target[2], 1, 1)  # the front of the ball
        self.double_click(0.01, 0.01)
        self.wait_for(lambda: self.text("picked") == "nothing")
        self.assertEqual(self.js("return camera.target"), target)

    def test_each_control_does_what_it_says(self):
        _, bright = self.changed_by(lambda: self.set("exposure", 2))
        before, after = self.changed_by(lambda: self.set("exposure", -3))
        self.assertGreater(sum(before), sum(after))
        for display in ("linear", "filmic"):
            self.changed_by(lambda: self.set("display", display))
        self.set("display", "srgb")
        self.set("exposure", 0)
        for aov in ("albedo", "normal", "depth", "object_id"):
            self.changed_by(lambda: Select(self.browser.find_element("id", "aov"))
                            .select_by_value(aov))
        _, ids = self.changed_by(lambda: self.set("aov", "albedo"))
        middle = ids[3 * (16 * 8 + 8) :][:3]
        self.assertGreater(middle[0], 2 * middle[1])
        self.set("samples", 64)
        self.wait_for(self.is_done)
        self.assertEqual(self.data("samples"), "64")
        self.assertNotIn("denoising", self.text("status"))
        self.changed_by(lambda: self.set("aov", "color"))
        self.assertIn("before denoising", self.text("status"))
        self.changed_by(lambda: self.browser.find_element("id", "denoise").click())
        self.assertNotIn("denoising", self.text("status"))

    def test_it_shows_itself_within_the_page_of_a_notebook(self):
        notebook = self.path("notebook.html")
        with open(notebook, "w") as file:
            file.write("<!DOCTYPE html><title>a page of another origin</title>" +
                       self.view._repr_html_())
        self.browser.get("file://" + notebook)
        self.browser.switch_to.frame(self.browser.find_element("tag name", "iframe"))
        self.addCleanup(self.browser.switch_to.default_content)
        self.set("samples", 4)
        self.wait_for(self.is_done)
        self.changed_by(self.drag)
        self.assertEqual(self.browser.get_log("browser"), [])

    def test_it_saves_at_full_quality(self):
        fetch = """const done = arguments[arguments.length - 1];
                   fetch("save?" + new URLSearchParams({token, samples: arguments[0],
                                                        ending: arguments[1]}))
                     .then(async (answer) => done([answer.status, [...new Uint8Array(
                       await answer.arrayBuffer())]]));"""
        for ending in (".exr", ".png"):
            status, data = self.browser.execute_async_script(fetch, "24", ending)
            self.assertEqual(status, 200)
            path = self.path("saved" + ending)
            with open(path, "wb") as file:
                file.write(bytes(data))
            saved = vt.Picture.load(path)
            width, height = self.js("return size()")
            expected = Source(self.script).build().render(width, height, 24, denoise=True)
            self.assertEqual((saved.width, saved.height), (width, height))
            if ending == ".exr":
                self.assertEqual(bytes(saved.buffer()), bytes(expected.buffer()))
        self.assertEqual(self.browser.execute_async_script(fetch, "24", ".gif")[0], 400)
        self.assertEqual(self.browser.execute_async_script(fetch, "none", ".png")[0], 400)

    def test_its_buttons_save_a_file_and_copy_the_camera(self):
        os.mkdir(self.path("saved"))
        self.browser.execute_cdp_cmd("Browser.setDownloadBehavior", {
            "behavior": "allow", "downloadPath": self.path("saved")})
        self.browser.execute_cdp_cmd("Browser.grantPermissions", {
            "permissions": ["clipboardReadWrite", "clipboardSanitizedWrite"]})
        self.set("save-samples", 3)
        for ending in (".png", ".jpg", ".tif", ".exr"):
            self.set("ending", ending)
            self.browser.find_element("id", "save").click()
            path = self.path("saved/view" + ending)
            self.wait_for(lambda: os.path.exists(path) and self.text("save") == "Save", ending)
            saved = vt.Picture.load(path)
            self.assertEqual([saved.width, saved.height], self.js("return size()"))
        self.set("save-samples", 0)
        self.browser.find_element("id", "save").click()
        self.wait_for(lambda: "from 1 to" in self.text("messages"))

        self.browser.find_element("id", "copy").click()
        self.wait_for(lambda: self.text("copy") == "Copied")
        copied = self.browser.execute_async_script(
            "navigator.clipboard.readText().then(arguments[arguments.length - 1])")
        self.assertEqual(copied, self.text("camera"))

    def test_a_changed_script_is_shown_under_the_same_camera(self):
        self.changed_by(self.drag)
        camera = self.text("camera")
        before, after = self.changed_by(lambda: self.write(SCRIPT.format("(0.1, 0.1, 0.9)")))
        self.assertEqual(self.text("camera"), camera)
        middle = 3 * (16 * 8 + 8)
        self.assertGreater(before[middle], before[middle + 2])
        self.assertLess(after[middle], after[middle + 2])

    def test_errors_and_warnings_stand_in_the_page_with_file_and_line(self):
        for text, expected in (
            (SCRIPT.format("0.5") + "\nscene.add(nothing)\n",
             "scene.py, line 8: NameError: name 'nothing' is not defined"),
            (SCRIPT.format("0.5") + "scene.add(\n", "scene.py, line 7: SyntaxError: '(' was never "
                                                    "closed"),
            ("scene = 3\n", "makes no vantor.Scene"),
            (SCRIPT.format("0.5") + 'scene.object("disk")\n', "scene.py, line 7: "),
        ):
            self.write(text)
            self.wait_for(lambda: expected in self.text("messages"), expected)
        self.assertIn("never added", self.text("messages"))
        self.write(SCRIPT.format("0.5"))
        self.wait_for(lambda: self.text("messages") == "")
        self.wait_for(self.is_done)

    def test_a_killed_child_comes_back(self):
        victim = self.view._server._child.pid
        os.kill(victim, signal.SIGKILL)
        self.wait_for(lambda: how_ended(signal.SIGKILL) in self.text("messages") or
                      self.data("scenes") == "2")
        self.wait_for(lambda: self.data("scenes") == "2" and self.is_done())
        self.assertTrue(is_ended(victim))
        self.assertNotEqual(self.view._server._child.pid, victim)
        self.changed_by(self.drag)

    def test_a_page_that_asks_for_nonsense_is_told_so(self):
        for message, expected in (
            ("{", "Expecting"),
            ('{"what": "fly"}', "not known"),
            ('{"what": "pick"}', "camera"),
            ('{"what": "view", "camera": {"position": [1, 2]}, "aov": "color"}', ""),
        ):
            count = len(self.text("messages"))
            self.js("socket.send(arguments[0])", message)
            self.wait_for(lambda: len(self.text("messages")) > count, message)
            self.assertIn(expected, self.text("messages"))
        self.changed_by(self.drag)


if __name__ == "__main__":
    unittest.main()
