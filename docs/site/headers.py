"""The directive of the pages in docs/reference that shows what a public header declares:

    ```{header} prefs/Preferences.h
    ```

It takes the names from Doxygen's XML, in the order of the header, and leaves the rest to Breathe.
Run as a program, this prints the public headers.
"""

import pathlib
import re
import xml.etree.ElementTree

from docutils import nodes
from docutils.statemachine import StringList
from sphinx.util.docutils import SphinxDirective

ROOT = pathlib.Path(__file__).resolve().parents[2]
XML = ROOT / "build" / "doxygen" / "xml"
# Installed because a public header includes it, or because a host compiles it as a test.
WITHOUT_PAGE = {"prefs/store/LevelMap.h", "utils/Export.h", "prefs/testing/IPreferencesContract.h"}

DIRECTIVES = {
    "class": "doxygenclass", "struct": "doxygenstruct", "function": "doxygenfunction",
    "enum": "doxygenenum", "typedef": "doxygentypedef", "variable": "doxygenvariable",
    "define": "doxygendefine",
}
NAME_OF_GROUP_WITHOUT_NAME = "Unnamed Group"
OPTIONS = {"class": ":members:\n:protected-members:\n", "struct": ":members:\n"}


def public_headers():
    """The headers that cmake/Install.cmake installs and that have a page."""
    install = (ROOT / "cmake" / "Install.cmake").read_text(encoding="utf-8")
    return sorted(set(re.findall(r"^ +((?:prefs|utils)/\S+\.h)\b", install, re.MULTILINE)) - WITHOUT_PAGE)


def headers_of_pages():
    pages = (ROOT / "docs" / "reference").glob("*.md")
    return sorted(header for page in pages for header in re.findall(
        r"^```\{header\} (\S+)$", page.read_text(encoding="utf-8"), re.MULTILINE))


def location(element):
    """The header and the line of a declaration."""
    found = element.find("location")
    return (found.get("declfile", found.get("file")), int(found.get("declline", found.get("line"))))


def declarations():
    """Of each declaration outside classes: its place, its kind and its full name, a function's with
    its parameters."""
    for path in XML.glob("*.xml"):
        compound = xml.etree.ElementTree.parse(path).find("compounddef")
        if compound is None:
            continue
        kind, name = compound.get("kind"), compound.findtext("compoundname")
        if kind in OPTIONS and compound.get("prot") == "public":
            yield location(compound), kind, name
        elif kind in ("namespace", "file"):
            scope = f"{name}::" if kind == "namespace" else ""
            for member in compound.iter("memberdef"):
                full_name = f"{scope}{member.findtext('name')}{member.findtext('argsstring') or ''}"
                yield location(member), member.get("kind"), full_name


def declarations_of(header):
    """In the order of the header. Classes inside classes are shown with these."""
    found = sorted(entry for entry in declarations() if entry[0][0] == header)
    classes = {name for _, kind, name in found if kind in OPTIONS}
    return [entry for entry in found if entry[2].rpartition("::")[0] not in classes]


class Header(SphinxDirective):
    required_arguments = 1

    def run(self):
        header = self.arguments[0]
        found = declarations_of(header)
        if not found:
            raise self.error(f"Doxygen found nothing in {header}")
        blocks = [f"```{{doxygenfile}} {header}\n:sections: briefdescription detaileddescription\n```"]
        blocks += [f"```{{{DIRECTIVES[kind]}}} {name}\n{OPTIONS.get(kind, '')}```"
                   for _, kind, name in found]
        result = nodes.Element()
        lines = StringList("\n\n".join(blocks).splitlines(), source=header)
        self.state.nested_parse(lines, self.content_offset, result)
        for rubric in list(result.findall(nodes.rubric)):
            if rubric.astext() == NAME_OF_GROUP_WITHOUT_NAME:
                rubric.parent.remove(rubric)
        return result.children


def setup(app):
    if headers_of_pages() != public_headers():
        differing = set(headers_of_pages()) ^ set(public_headers())
        raise ValueError(f"not on one page of docs/reference: {', '.join(sorted(differing))}")
    app.add_directive("header", Header)


if __name__ == "__main__":
    print(" ".join(public_headers()))
