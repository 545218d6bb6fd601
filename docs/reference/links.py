#!/usr/bin/env python3
"""The links of the pages: they are written for a forge, and have to lead somewhere in HTML, too.

    links.py page FILE     prints a Markdown page for Doxygen, with its links as they are in HTML
    links.py check HTML    copies the sources that the HTML links to beside it; fails, and says
                           where, when a link leads to nothing

TAL_PAGES holds the paths of all pages.
"""

import os
import re
import shutil
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

ROOT = Path(__file__).resolve().parents[2]
# A copy has another name at its end, so that browsers show it and do not save it; not a picture.
COPIES = "source/"
COPY_SUFFIX = ".txt"
PICTURES = (".png",)

LINK = re.compile(r"\]\(([^()\s]+)\)")
# Titles have the name of their page.
HEADING = re.compile(r"^#{2,} +(.+)")


def documented_type(path):
    """The name of the public type that a header is named after; None for any other file."""
    if path.suffix != ".hpp":
        return None
    text = path.read_text()
    namespace = re.search(r"^namespace ([\w:]+) \{", text, re.MULTILINE)
    declared = re.search(rf"^(?:class|struct) (?:\w+ )?{path.stem}\b", text, re.MULTILINE)
    is_public = not re.search("^// Internal:", text, re.MULTILINE)
    return f"{namespace[1]}::{path.stem}" if namespace and declared and is_public else None


def label_in(page, anchor):
    return f"{page.stem}-{anchor}"


class PageText:
    """A Markdown page, line by line."""

    def __init__(self, path, pages):
        self.path = path
        self.pages = pages
        self.anchors = set()

    def in_html(self):
        in_code = False
        for line in self.path.read_text().splitlines():
            if line.startswith("```"):
                in_code = not in_code
            elif not in_code and not line.startswith("    "):
                line = LINK.sub(lambda link: f"]({self.rewritten(link[1])})", line)
                if heading := HEADING.match(line):
                    line += f" {{#{label_in(self.path, self.new_anchor(heading[1]))}}}"
            yield line

    def new_anchor(self, heading):
        """What a forge names the place of a heading."""
        words = re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")
        anchor = words
        count = 0
        while anchor in self.anchors:
            count += 1
            anchor = f"{words}-{count}"
        self.anchors.add(anchor)
        return anchor

    def rewritten(self, target):
        """Where a link leads in HTML; what leads to no file stays as it is."""
        parts = urlsplit(target)
        path = Path(os.path.normpath(self.path.parent / parts.path)) if parts.path else self.path
        if parts.scheme or not path.is_file():
            return target
        if path in self.pages:
            return f"@ref {label_in(path, parts.fragment)}" if parts.fragment else target
        name = documented_type(path)
        suffix = "" if path.suffix in PICTURES else COPY_SUFFIX
        return f"@ref {name}" if name else f"{COPIES}{path.relative_to(ROOT)}{suffix}"


class HtmlPage(HTMLParser):
    """The places that an HTML file has, and those that it links to."""

    def __init__(self, path):
        super().__init__()
        self.anchors = set()
        self.links = []
        self.feed(path.read_text())

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        self.anchors.update(attributes[name] for name in ("id", "name") if attributes.get(name))
        self.links.extend((self.getpos()[0], attributes[name])
                          for name in ("href", "src") if attributes.get(name))


def copy_source(target, folder):
    """Copies what a link into COPIES is a copy of."""
    source = ROOT / target.removeprefix(COPIES).removesuffix(COPY_SUFFIX)
    (folder / target).parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(source, folder / target)


def leads_somewhere(link, page, pages):
    parts = urlsplit(link)
    if parts.scheme or parts.netloc:
        return True  # not ours to ask
    path = page.parent / unquote(parts.path) if parts.path else page
    if parts.path.startswith(COPIES):
        copy_source(parts.path, page.parent)
    if not path.is_file():
        return False
    return not parts.fragment or path not in pages or unquote(parts.fragment) in pages[path].anchors


def check(folder):
    pages = {path: HtmlPage(path) for path in sorted(folder.glob("*.html"))}
    broken = [f"{path}:{line}: leads to nothing: {link}"
              for path, page in pages.items() for line, link in page.links
              if not leads_somewhere(link, path, pages)]
    for message in broken:
        print(message, file=sys.stderr)
    return 1 if broken else 0


def main(command, path):
    if command == "check":
        return check(Path(path).resolve())
    pages = {ROOT / page for page in os.environ["TAL_PAGES"].split()}
    for line in PageText(Path(path).resolve(), pages).in_html():
        print(line)
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
