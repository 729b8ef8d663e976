#!/usr/bin/env python3
"""Rewrites Doxygen's tag file for the site, which has pages of its own.

usage: tagfile.py TAGFILE SITE

Hosts that document themselves with Doxygen link to the site with it:
TAGFILES = CommonPreferences.tag=URL-OF-THE-SITE. What has no place in the site is left out.
"""

import pathlib
import re
import sys
import xml.etree.ElementTree

SOURCE_FOLDER = re.compile(r".*/(prefs|utils)/")


def places_in(site):
    """The page of each identifier that Breathe took over from Doxygen."""
    places = {}
    for page in sorted((site / "docs/reference").glob("*.html")):
        for identifier in re.findall(r'id="(\w+)"', page.read_text(encoding="utf-8")):
            places[identifier] = page.relative_to(site).as_posix()
    return places


def move_member(member, places):
    """Whether the site has the member; its page and place are those of the site then."""
    file, anchor = member.find("anchorfile"), member.find("anchor")
    identifier = f"{file.text.removesuffix('.html')}_1{anchor.text}"
    if identifier not in places:
        return False
    for value in member.findall("enumvalue"):
        value.set("anchor", f"{value.get('file').removesuffix('.html')}_1{value.get('anchor')}")
        value.set("file", places[value.get("anchor")])
    file.text, anchor.text = places[identifier], identifier
    return True


def move_compound(compound, places):
    for member in compound.findall("member"):
        if not move_member(member, places):
            compound.remove(member)
    filename = compound.find("filename")
    pages = {member.findtext("anchorfile") for member in compound.findall("member")}
    page = places.get(filename.text.removesuffix(".html"), min(pages, default=None))
    filename.text = page
    path = compound.find("path")
    if path is not None:
        path.text = SOURCE_FOLDER.sub(r"\1/", path.text)
    return page is not None


def main():
    site = pathlib.Path(sys.argv[2])
    places = places_in(site)
    if not places:
        sys.exit(f"{site} has no reference")
    tree = xml.etree.ElementTree.parse(sys.argv[1])
    for compound in tree.getroot().findall("compound"):
        if not move_compound(compound, places):
            tree.getroot().remove(compound)
    tree.write(site / "CommonPreferences.tag", encoding="utf-8", xml_declaration=True)


if __name__ == "__main__":
    sys.exit(main())
