#!/usr/bin/env python3
"""Checks that the links of HTML pages lead to files and places that are there, and that the pages
load nothing from the network.

usage: check_links.py FOLDER
"""

import html.parser
import pathlib
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    """Collects the links of a page and the places in it that links can name."""

    def __init__(self, path):
        super().__init__()
        self.links = []
        self.loaded = []
        self.places = set()
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src", "data") and value:
                self.links.append(value)
                if tag != "a":
                    self.loaded.append(value)
            elif name in ("id", "name") and value:
                self.places.add(value)


def broken_links(folder):
    pages = {path.resolve(): Page(path) for path in sorted(folder.rglob("*.html"))}
    if not pages:
        yield f"{folder} has no pages"
    for path, page in pages.items():
        for link in page.loaded:
            if urllib.parse.urlsplit(link).netloc:
                yield f"{path.name} loads {link}"
        for link in page.links:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme or parts.netloc:
                continue
            target = path
            if parts.path:
                target = (path.parent / urllib.parse.unquote(parts.path)).resolve()
            place_is_missing = target in pages and parts.fragment and (
                urllib.parse.unquote(parts.fragment) not in pages[target].places)
            if not target.exists() or place_is_missing:
                yield f"{path.name}: {link}"


def main():
    found = list(broken_links(pathlib.Path(sys.argv[1])))
    for link in found:
        print(f"a link that leads nowhere or into the network: {link}", file=sys.stderr)
    return len(found) != 0


if __name__ == "__main__":
    sys.exit(main())
