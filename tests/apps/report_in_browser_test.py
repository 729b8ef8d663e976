"""Opens the page of `vemora-prefs report` in a real browser, which runs its script.

usage: report_in_browser_test.py CHROMIUM FOLDER COMMAND...
COMMAND runs vemora-prefs. FOLDER keeps pictures of the page, light and dark.
"""

import pathlib
import re
import shutil
import subprocess
import sys

PRIVATE = r"""{"This Computer Only": {
  "My Plugin": {"Runs": 10, "Title": "<script>document.title = 'forged'</script>"},
  "Preferences": {"AutoSaveFreq": 5, "Nothing": null}}}"""
SHARED = '{"Shared for All Computers": {}, "Windows Only": {"My Plugin": {"Runs": 11}}}'

chromium, folder, *program = sys.argv[1:]
folder = pathlib.Path(folder).resolve()
shutil.rmtree(folder, ignore_errors=True)
folder.mkdir(parents=True)
(folder / "p.json").write_text(PRIVATE)
(folder / "s.json").write_text(SHARED)
arguments = ["report", "--private", "p.json", "--shared", "s.json", "report.html"]
subprocess.run([*program, *arguments], cwd=folder, check=True)


def browse(fragment, *options):
    command = [chromium, "--headless", "--no-sandbox", "--disable-gpu", "--window-size=1200,700"]
    page = (folder / "report.html").as_uri() + fragment
    profile = f"--user-data-dir={folder / 'profile'}"
    return subprocess.run([*command, profile, *options, page], check=True, timeout=60,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout.decode()


def shown(fragment):
    """The keys of the rows that are to be seen, and the count that the page tells."""
    page = browse(fragment, "--dump-dom")
    rows = re.findall(r"<tr([^>]*)>\s*((?:<td>.*?</td>\s*)+)</tr>", page, re.DOTALL)
    keys = [re.findall(r"<td>(.*?)</td>", cells)[2].strip('"') for attributes, cells in rows
            if "hidden" not in attributes]
    return keys, re.search(r'<span id="count">(.*?)</span>', page)[1]


def check(found, expected):
    if found != expected:
        sys.exit(f"expected {expected}, found {found}")


check(shown(""), (["Runs", "Title", "AutoSaveFreq", "Runs"], "4 of 4"))
check(shown("#text=RUNS"), (["Runs", "Runs"], "2 of 4"))
check(shown("#level=Windows Only"), (["Runs"], "1 of 4"))
check(shown("#text=runs&level=This Computer Only"), (["Runs"], "1 of 4"))
text = (folder / "report.html").read_text(encoding="utf-8")
check(text.count("<script"), 1)  # the page's own
check("Preferences / Nothing is null" in text, True)
check(re.findall(r"(?:src|href)=", text), [])
browse("", f"--screenshot={folder / 'light.png'}")
browse("", f"--screenshot={folder / 'dark.png'}", "--blink-settings=preferredColorScheme=0")
check((folder / "light.png").read_bytes() != (folder / "dark.png").read_bytes(), True)
