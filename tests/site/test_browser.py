"""The site in a browser, headless Chromium: nothing fails, nothing is asked of another host, and
pages can be read on narrow and on wide screens. Screenshots are in build/site/screenshots."""

import functools
import http.server
import json
import os
import shutil
import threading
import unittest
import urllib.parse

import site_files

try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.support.ui import WebDriverWait
except ImportError:
    webdriver = None

SIZES = ((360, 760), (1400, 900))
SCREENSHOTS = os.path.join(site_files.SITE, "screenshots")

# Of the page that is loaded: what its pictures are like. Those further down are loaded, too.
PICTURES = """
const done = arguments[arguments.length - 1];
Promise.all(Array.from(document.images, async image => {
    image.loading = "eager";
    try { await image.decode(); } catch (error) { return [image.src, 0, 0]; }
    const canvas = document.createElement("canvas");
    canvas.width = canvas.height = 32;
    const context = canvas.getContext("2d");
    context.drawImage(image, 0, 0, 32, 32);
    const bytes = context.getImageData(0, 0, 32, 32).data;
    const colors = new Set();
    for (let i = 0; i < bytes.length; i += 4)
        colors.add((bytes[i] << 16) + (bytes[i + 1] << 8) + bytes[i + 2]);
    return [image.src, image.naturalWidth, colors.size];
})).then(done);
"""

# What is wider than the window, without a frame that scrolls, and the least size of a text.
LAYOUT = """
const article = document.querySelector("article") || document.body;
let least = 1000, where = "";
for (const node of article.querySelectorAll("p, li, td, th, dt, dd, pre, code, figcaption")) {
    if (!node.textContent.trim() || !node.getClientRects().length || node.closest("sup")) continue;
    const size = parseFloat(getComputedStyle(node).fontSize);
    if (size < least) { least = size; where = node.textContent.trim().slice(0, 40); }
}
const root = document.scrollingElement;
return [root.scrollWidth, root.clientWidth, article.getBoundingClientRect().width, least, where];
"""


class Handler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


def why_not():
    """Why there can be no browser here; empty if there can."""
    if webdriver is None:
        return "this interpreter has no selenium (Debian: python3-selenium)"
    for program in ("chromium", "chromedriver"):
        if not shutil.which(program):
            return "{} is not installed (Debian: chromium, chromium-driver)".format(program)
    return "" if site_files.pages() else site_files.NO_SITE


@unittest.skipIf(why_not(), why_not())
class BrowserTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        serving = functools.partial(Handler, directory=site_files.HTML)
        cls.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), serving)
        cls.addClassCleanup(cls.server.server_close)
        threading.Thread(target=cls.server.serve_forever, daemon=True).start()
        cls.addClassCleanup(cls.server.shutdown)
        cls.host = "127.0.0.1:{}".format(cls.server.server_port)

        options = webdriver.ChromeOptions()
        options.binary_location = shutil.which("chromium")
        # Chromium's sandbox does not run as root, as in containers; the pages are our own.
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                         "--disable-dev-shm-usage", "--disable-background-networking"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        cls.browser = webdriver.Chrome(service=Service(shutil.which("chromedriver")),
                                       options=options)
        cls.addClassCleanup(cls.browser.quit)
        cls.browser.set_script_timeout(60)
        shutil.rmtree(SCREENSHOTS, ignore_errors=True)
        os.makedirs(SCREENSHOTS)

    def open(self, page, width, height):
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600})
        self.browser.get("http://{}/{}".format(self.host, page))

    def take_screenshot(self, page, width):
        name = page.replace("/", "-").replace(".html", "") + "-{}.png".format(width)
        self.browser.save_screenshot(os.path.join(SCREENSHOTS, name))

    def hosts(self):
        """The hosts that have been asked since the last call."""
        asked = set()
        for entry in self.browser.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent":
                address = urllib.parse.urlparse(message["params"]["request"]["url"])
                if address.scheme not in ("data", "blob", "chrome", "about"):
                    asked.add(address.netloc)
        return asked

    def test_pages(self):
        self.browser.get_log("browser")
        self.hosts()
        for page in site_files.pages():
            for width, height in SIZES:
                with self.subTest(page, width=width):
                    self.open(page, width, height)
                    self.check_layout(width)
                    self.take_screenshot(page, width)
                    self.check_pictures()
                    self.assertEqual(self.browser.get_log("browser"), [])
                    self.assertEqual(self.hosts(), {self.host})

    def check_pictures(self):
        for source, natural_width, colors in self.browser.execute_async_script(PICTURES):
            self.assertGreater(natural_width, 0, source)
            self.assertGreater(colors, 3, source)

    def check_layout(self, width):
        needed, there, article, least, where = self.browser.execute_script(LAYOUT)
        self.assertEqual(there, width)
        self.assertLessEqual(needed, there)
        self.assertGreater(article, 0.85 * width if width < 600 else 500)
        self.assertGreaterEqual(least, 11, where)

    def test_the_search_finds_a_type(self):
        self.open("search.html?q=dielectric", *SIZES[1])
        found = WebDriverWait(self.browser, 20).until(
            lambda browser: browser.find_elements("css selector", "#search-results li a"))
        self.assertIn("vocabulary", " ".join(link.get_attribute("href") for link in found))

    def test_the_menu_opens_on_a_narrow_screen(self):
        self.open("index.html", *SIZES[0])
        link = self.browser.find_element("css selector", ".sidebar-tree a[href='tutorial.html']")
        self.assertFalse(0 <= link.rect["x"] < SIZES[0][0])
        self.browser.find_element("css selector", "label.nav-overlay-icon").click()
        WebDriverWait(self.browser, 20).until(
            lambda _: 0 <= link.rect["x"] < SIZES[0][0])
        self.take_screenshot("menu.html", SIZES[0][0])


if __name__ == "__main__":
    unittest.main()
