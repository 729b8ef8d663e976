"""What `./dev docs` gives to Sphinx: pages in Markdown, and the reference that Doxygen read out of
the public headers, in one site. Nothing in it is loaded from the network."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "docs" / "site"))

project = "CommonPreferences"
release = re.search(r"VERSION (\d+\.\d+\.\d+)", (ROOT / "CMakeLists.txt").read_text())[1]
copyright = "The CommonPreferences developers"

extensions = ["myst_parser", "breathe", "sphinx_copybutton", "headers"]
root_doc = "docs/README"
include_patterns = ["*.md", "docs/**.md", "packaging/README.md"]
exclude_patterns = ["build"]

myst_heading_anchors = 3
suppress_warnings = ["myst.header"]

breathe_projects = {project: str(ROOT / "build" / "doxygen" / "xml")}
breathe_default_project = project
breathe_default_members = ("members", "protected-members")
breathe_show_include = False
primary_domain = "cpp"
highlight_language = "cpp"

html_theme = "furo"
html_title = f"{project} {release}"
html_static_path = ["pages.css"]
html_css_files = ["pages.css"]
html_extra_path = ["index.html"]
html_copy_source = False
html_show_sphinx = False
copybutton_prompt_text = r"\$ |> |\(gdb\) "
copybutton_prompt_is_regexp = True

IMPORT = 'import Gumshoe from "./gumshoe-patched.js";'
HEADING = re.compile(r"^## (.+)$")
PAGE = re.compile(r"^- \[(.+?)\]\((.+?)\.md\)")


def menu(text):
    """The menu of the site from docs/README.md: each heading is a part, each item of a list a page."""
    for line in text.splitlines():
        if heading := HEADING.match(line):
            yield f"```\n\n```{{toctree}}\n:hidden:\n:caption: {heading[1]}\n"
        elif page := PAGE.match(line):
            yield f"{page[1]} <{page[2]}>"


def add_menu(app, name, source):
    if name == root_doc:
        lines = "\n".join(menu(source[0])).removeprefix("```\n")
        source[0] += f"\n{lines}\n```\n"


def bundle_scripts(app, error):
    """Debian's Furo has its two scripts apart, the first importing the second. Pages load the first
    as a plain script, which cannot import, so that the button for dark mode would not appear."""
    folder = pathlib.Path(app.outdir) / "_static" / "scripts"
    own, imported = folder / "furo.js", folder / "gumshoe-patched.js"
    text = own.read_text(encoding="utf-8")
    own.write_text(imported.read_text(encoding="utf-8") + text.replace(IMPORT, ""), encoding="utf-8")


def setup(app):
    app.connect("source-read", add_menu)
    app.connect("build-finished", bundle_scripts)
