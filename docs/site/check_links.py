#!/usr/bin/env python3
"""Fails when a link of the site has no target.

    check_links.py SITE

Every link, picture, script and style sheet of every page must be a file of the site, and every
fragment an anchor of its page; so must the results of the search. Links to other sites are listed
and not followed.
"""

import html.parser
import pathlib
import re
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    """The links and the anchors of a page."""

    def __init__(self, path):
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(path.read_text(encoding="utf-8", errors="replace"))

    def handle_starttag(self, tag, attrs):
        values = dict(attrs)
        self.anchors.update(values[key] for key in ("id", "name") if values.get(key))
        for key in ("href", "src", "data"):
            if values.get(key):
                self.links.append(values[key])


def search_links(site):
    """The results that the search offers: file of the search and link."""
    for script in sorted((site / "search").glob("*_*.js")):
        for link in re.findall(r"'(\.\./[^']+)'", script.read_text(encoding="utf-8")):
            yield script, link


def main():
    if len(sys.argv) != 2 or not (site := pathlib.Path(sys.argv[1]).resolve()).is_dir():
        sys.exit("check_links: takes the folder of the site")
    pages = {path: Page(path) for path in sorted(site.rglob("*.html"))}
    if not pages:
        sys.exit(f"check_links: there is no page in {site}")
    dead, outside, checked = set(), {}, 0
    links = [(path, link) for path, page in pages.items() for link in page.links]
    for path, link in [*links, *search_links(site)]:
        parts = urllib.parse.urlsplit(link)
        if parts.scheme in ("http", "https", "mailto"):
            outside.setdefault(link, path)
            continue
        if parts.scheme == "javascript":
            continue
        checked += 1
        target = (path.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else path
        where = f"{path.relative_to(site)}: {link}"
        if not target.is_relative_to(site) or not target.is_file():
            dead.add(f"{where} (no such file)")
        elif parts.fragment and target in pages and \
                urllib.parse.unquote(parts.fragment) not in pages[target].anchors:
            dead.add(f"{where} (no such anchor)")
    for link in sorted(outside):
        print(f"not followed: {link}")
    for sentence in sorted(dead):
        print(f"dead link: {sentence}")
    print(f"{len(pages)} pages, {checked} links, {len(outside)} to other sites not followed, "
          f"{len(dead)} dead")
    if dead:
        sys.exit(1)


if __name__ == "__main__":
    main()
