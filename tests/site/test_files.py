"""The site's files as "make docs" leaves them: links, pictures, and nothing of another host."""

import os
import re
import unittest

import site_files

# What makes a browser ask for something: addresses in styles, and in elements that load.
FETCHED = {"img": ("src", "srcset"), "script": ("src",), "iframe": ("src",), "source": ("src",),
           "video": ("src", "poster"), "audio": ("src",), "object": ("data",), "embed": ("src",)}
FETCHING_LINKS = {"stylesheet", "icon", "preload", "prefetch", "preconnect", "dns-prefetch",
                  "modulepreload", "manifest"}


@unittest.skipUnless(site_files.pages(), site_files.NO_SITE)
class FilesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.pages = {path: site_files.Page(path) for path in site_files.pages()}

    def test_every_document_has_a_page(self):
        for place in ["index", "tutorial", "read-me", "gallery", "how-to/mesh", "how-to/molecule",
                      "how-to/height-field", "how-to/turntable", "how-to/farm", "how-to/notebook",
                      "guide/package", "guide/vocabulary", "examples/cornell_box",
                      "examples-package/package_first_picture", "api/vantor", "api/vantor.farm",
                      "api/vantorPM", "project/another-renderer"]:
            self.assertIn(place + ".html", self.pages)

    def test_links_lead_to_pages_and_places(self):
        for path, page in self.pages.items():
            for link in page.links:
                if re.match(r"[a-z]+:", link):
                    continue
                name, _, anchor = link.partition("#")
                target = site_files.beside(path, name.partition("?")[0]) if name else path
                with self.subTest(path, link=link):
                    self.assertTrue(os.path.isfile(os.path.join(site_files.HTML, target)))
                    if anchor and target in self.pages:
                        self.assertIn(anchor, self.pages[target].ids)

    def test_nothing_is_fetched_from_another_host(self):
        fetched = 0
        for path, page in self.pages.items():
            for element, facts in page.elements:
                names = FETCHED.get(element, ())
                if element == "link" and FETCHING_LINKS & set(facts.get("rel", "").split()):
                    names = ("href",)
                for address in filter(None, map(facts.get, names)):
                    fetched += 1
                    with self.subTest(path, address=address):
                        self.assertNotRegex(address, r"^(\w+:)?//")
        self.assertGreater(fetched, 100)
        for path in site_files.files(".css"):
            with self.subTest(path):
                self.assertNotRegex(site_files.text(path), r"(url\(\s*|@import\s+)['\"]?(\w+:)?//")

    def test_pictures_are_there_and_have_a_text(self):
        count = 0
        for path, page in self.pages.items():
            for element, facts in page.elements:
                if element == "img":
                    count += 1
                    with self.subTest(path, src=facts["src"]):
                        file = os.path.join(site_files.HTML, site_files.beside(path, facts["src"]))
                        self.assertGreater(os.path.getsize(file), 80)
                        self.assertTrue(facts.get("alt"))
        self.assertGreater(count, 80)

    def test_every_type_of_the_vocabulary_has_its_picture(self):
        page = self.pages["guide/vocabulary.html"]
        shown = [facts["alt"] for element, facts in page.elements if element == "img"]
        types = len(re.findall(r'<h3><code[^>]*><span class="pre">&quot;\w+&quot;', page.text))
        self.assertGreater(types, 35)
        self.assertEqual(len(shown), types)
        self.assertEqual(len(set(shown)), types)


if __name__ == "__main__":
    unittest.main()
