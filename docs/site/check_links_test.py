#!/usr/bin/env python3
"""Tests that check_links.py accepts a site and refuses each kind of dead link."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).with_name("check_links.py")
INDEX = """<html><body><h1 id="top">Start</h1><a name="old"></a>
<a href="page.html#part">a part</a> <a href="#old">above</a> <img src="picture.svg">
<a href="https://example.org/elsewhere">outside</a></body></html>"""
SEARCH = """var searchData=[['part_0',['part',['../page.html#part',1,'page']]]];"""


class CheckLinks(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.site = pathlib.Path(folder.name)
        (self.site / "search").mkdir()
        self.write("index.html", INDEX)
        self.write("page.html", '<html><body><h2 id="part">Part</h2></body></html>')
        self.write("picture.svg", "<svg/>")
        self.write("search/all_0.js", SEARCH)

    def write(self, name, text):
        (self.site / name).write_text(text, encoding="utf-8")

    def run_check(self, *arguments):
        return subprocess.run([sys.executable, str(CHECK), *arguments], capture_output=True, text=True, check=False)

    def refused(self, sentence):
        ran = self.run_check(str(self.site))
        self.assertEqual(ran.returncode, 1)
        self.assertIn(sentence, ran.stdout)

    def test_site_without_dead_links(self):
        ran = self.run_check(str(self.site))
        self.assertEqual(ran.returncode, 0, ran.stdout + ran.stderr)
        self.assertIn("not followed: https://example.org/elsewhere", ran.stdout)
        self.assertIn("2 pages, 4 links, 1 to other sites not followed, 0 dead", ran.stdout)

    def test_link_to_a_missing_page(self):
        self.write("index.html", INDEX.replace("page.html", "nowhere.html"))
        self.refused("index.html: nowhere.html#part (no such file)")

    def test_link_to_a_missing_anchor(self):
        self.write("index.html", INDEX.replace("#part", "#whole"))
        self.refused("index.html: page.html#whole (no such anchor)")

    def test_link_to_a_missing_anchor_of_the_same_page(self):
        self.write("index.html", INDEX.replace('name="old"', 'name="new"'))
        self.refused("index.html: #old (no such anchor)")

    def test_missing_picture(self):
        (self.site / "picture.svg").unlink()
        self.refused("index.html: picture.svg (no such file)")

    def test_dead_result_of_the_search(self):
        self.write("search/all_0.js", SEARCH.replace("#part", "#whole"))
        self.refused("search/all_0.js: ../page.html#whole (no such anchor)")

    def test_link_out_of_the_site(self):
        self.write("index.html", INDEX.replace("page.html#part", "../page.html"))
        self.refused("index.html: ../page.html (no such file)")

    def test_folder_without_pages(self):
        for page in ("index.html", "page.html"):
            (self.site / page).unlink()
        ran = self.run_check(str(self.site))
        self.assertEqual(ran.returncode, 1)
        self.assertIn("there is no page in", ran.stderr)

    def test_arguments_that_make_no_sense(self):
        for arguments in ((), (str(self.site / "nowhere"),), (str(self.site), "more")):
            ran = self.run_check(*arguments)
            self.assertEqual(ran.returncode, 1)
            self.assertIn("takes the folder of the site", ran.stderr)


if __name__ == "__main__":
    unittest.main()
