"""The pages of made albums in a real browser, with each look, opened as files.

    test_pages.py <directory of the programs> [<directory for the pictures of docs/looks.md>]

For each look: every picture of every page loads, every link inside the book leads on, nothing is asked for from
elsewhere, the browser has nothing to complain of, and no page is wider than the screen of a phone, a tablet or a desk.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import urllib.parse

from webdriver import Browser

SCREENS = {360: (360, 740, 2, True), 768: (768, 1024, 1, True), 1440: (1440, 900, 1, False)}
LONG = "A_name_without_any_blank_in_it_at_which_a_line_could_be_broken_0123456789_0123456789_0123456789.JPG"

# What a page has loaded. A movie without pictures, as that of the samples, is none for the browser.
LOADED = """
const done = arguments[arguments.length - 1];
const images = [...document.images];
Promise.all(images.map(i => i.decode().catch(() => 0))).then(() => done({
  broken: images.filter(i => !i.naturalWidth).map(i => i.src),
  images: images.length,
  links: [...document.links].map(a => a.href),
}));
"""

failures = []


def check(holds, *what):
    if not holds:
        failures.append(" ".join(str(part) for part in what))
        print("failed:", failures[-1], file=sys.stderr)


class Place:
    """A home with a book of two albums, one of them with names and texts that are hard to lay out unless it is for show."""

    def __init__(self, programs, for_show):
        self.programs = programs
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="taloram-pages-"))
        self.book = self.home / "album"
        card = self.home / "card"
        self.call("make_samples", card)
        self.write(self.book / "txt/head.txt", "Our albums\nOur albums\nEverything since 2003.\n")
        self.write(card / "IMG_0001.JPG.txt", "The harbour at noon.\nTwo boats had left already.\n")
        self.call("talomake", "album", "--progress", "never", card, self.book / "seaside")
        title = "Lake and mountains" if for_show else "Long" * 30
        names = ["IMG_0003.JPG", "IMG_0005.JPG", "IMG_0006.JPG"] if for_show else [LONG, LONG + ".txt", "Größe_2.JPG"]
        if not for_show:
            shutil.copy(card / "IMG_0001.JPG", card / LONG)
            shutil.copy(card / "IMG_0003.JPG", card / "Größe_2.JPG")
            self.write(card / (LONG + ".txt"), "Word" * 80 + "\n")
        self.call("talomake", "album", "--progress", "never", "--title", title, card, self.book / "lake", *names)

    def write(self, path, text):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def call(self, program, *arguments):
        environment = dict(os.environ, HOME=str(self.home), LANG="en_GB.UTF-8")
        return subprocess.run([self.programs / program, *arguments], env=environment, check=True, text=True,
                              stdout=subprocess.PIPE).stdout

    def looks(self):
        return [line[2:].split()[0] for line in self.call("talomake", "look").splitlines()]

    def use(self, look):
        self.call("talomake", "look", "--set", look)
        self.call("talomake", "update", "--progress", "never", self.book)

    def url(self, path=""):
        return (self.book / path).as_uri()

    def remove(self):
        shutil.rmtree(self.home)


def page_lines(place, look):
    """All pages without the line of the look and the time."""
    line = "\t" + place.call("talomake", "look", look).rstrip("\n")
    pages = {}
    for path in sorted(place.book.rglob("*.html")):
        lines = path.read_text(encoding="utf-8").splitlines()
        check(lines.count(line) == 1, look, "is not a line of", path)
        pages[path] = [text for text in lines if text != line and not text.startswith("HTML Generated: ")]
    return pages


def visit_all(browser, place, look):
    """Follows all links from the book's page on. Returns the pages."""
    browser.set_screen(*SCREENS[1440])
    browser.complaints()
    browser.requests()
    waiting = [place.url("index.html")]
    seen = set(waiting)
    pages = []
    while waiting:
        url = waiting.pop()
        browser.open(url)
        loaded = browser.run_async(LOADED)
        check(not loaded["broken"], look, url, "does not show", loaded["broken"])
        asked = browser.requests()
        foreign = [name for name in asked if not name.startswith((place.url(), "data:"))]
        check(asked and not foreign, look, url, "asks for", foreign)
        if url.endswith(".html"):
            pages.append(url)
        else:
            check(loaded["images"] == 1, look, url, "is no picture")
        for link in (link.split("#")[0] for link in loaded["links"]):
            if link.startswith(place.url()) and link not in seen:
                seen.add(link)
                waiting.append(link)
    complaints = browser.complaints()
    check(not complaints, look, "made the browser complain:", complaints)
    made = {str(path) for path in place.book.rglob("*.html")}
    reached = {urllib.parse.unquote(url).removeprefix("file://") for url in pages}
    check(reached == made, look, "has pages that no link leads to:", made - reached)
    return pages


def check_widths(browser, pages, look):
    for width, screen in SCREENS.items():
        browser.set_screen(*screen)
        for url in pages:
            browser.open(url)
            browser.run_async(LOADED)
            wide, narrow, window = browser.run(
                "return [document.scrollingElement.scrollWidth, document.documentElement.clientWidth, innerWidth]")
            check(wide <= narrow and window == width, look, url, "is", wide, "wide on a screen of", width)


def check_scripts(browser, place):
    """What the gallery adds to the pages, and that they can be read without it."""
    def focused():
        return browser.run("return document.activeElement.href || document.activeElement.src || ''")

    browser.set_screen(*SCREENS[1440])
    browser.open(place.url("seaside/index.html"))
    about = browser.run("return [document.documentElement.lang, [...document.images].map(i => i.alt)]")
    check(about[0] == "en-GB", "the language is", about[0])
    check(about[1][0] == "The harbour at noon. Two boats had left already.", "a comment's text is", about[1][0])
    check(about[1][5] == "IMG_0006.JPG" and all(about[1]), "texts are", about[1])
    wrong = browser.run("return [...document.querySelectorAll('li a img')]"
                        ".filter(i => !i.closest('a').href.includes(i.alt.replace('.JPG', ''))).map(i => i.alt)")
    check(wrong == [about[1][0]], "pictures lead to others:", wrong)
    browser.press("ArrowRight")
    check(focused().endswith("html/IMG_0001_1.html"), "the first arrow goes to", focused())

    browser.open(place.url("seaside/list.html"))
    browser.press("ArrowRight")
    browser.press("ArrowRight")
    browser.press("ArrowLeft")
    check(focused().endswith("html/IMG_0001_2.html"), "arrows in the contact sheet go to", focused())
    browser.press("Enter")
    for key, page in (("ArrowLeft", "html/IMG_0001_2.html"), ("ArrowRight", "html/IMG_0002_1.html"),
                      ("ArrowLeft", "html/IMG_0001_2.html"), ("Escape", "list.html"), ("Escape", "/album/index.html")):
        if key == "ArrowRight":
            check(browser.run("return document.title") == "IMG_0001.JPG", "a zoom page has no title")
        browser.press(key)
        check(browser.url().endswith(page), key, "leads to", browser.url(), "instead of", page)
    browser.set_scripts(False)
    browser.open(place.url("seaside/html/IMG_0001_1.html"))
    check(browser.run("return document.images[0].naturalWidth") == 1500, "no picture without scripts")
    check(browser.run("return document.images[0].alt") == "", "scripts ran though they were off")
    browser.set_scripts(True)


# Of docs/looks.md: the page, the screen, whether it is dark, and how much smaller it is shown.
PICTURES = {
    "book": ("index.html", 1440, False, 0.5),
    "album": ("seaside/index.html", 1440, False, 0.5),
    "sheet": ("seaside/list.html", 1440, False, 0.5),
    "larger": ("seaside/html/IMG_0001_1.html", 1440, False, 0.5),
    "phone": ("seaside/index.html", 360, True, 0.4),
    "phone-sheet": ("seaside/list.html", 360, False, 0.4),
}


def take_pictures(browser, place, look, directory):
    browser.open(place.url("seaside/list.html"))
    for name, (page, width, dark, scale) in PICTURES.items():
        browser.set_screen(*SCREENS[width])
        browser.prefer("dark" if dark else "light")
        browser.open(place.url(page))
        browser.run_async(LOADED)
        browser.run("document.querySelectorAll('li').forEach((card, i) => i == 1 && innerWidth < 400 && "
                    "card.scrollIntoView())")
        browser.picture(directory / f"{look}-{name}.jpg", width, SCREENS[width][1], scale)
    browser.prefer("light")


def main():
    programs = pathlib.Path(sys.argv[1]).resolve()
    pictures = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else None
    place = Place(programs, pictures is not None)
    try:
        first = None
        with Browser() as browser:
            for look in place.looks():
                place.use(look)
                lines = page_lines(place, look)
                first = first or lines
                check(lines == first, look, "changes more than its line")
                pages = visit_all(browser, place, look)
                if look != "bare":
                    check_widths(browser, pages, look)
                if look == "gallery":
                    check_scripts(browser, place)
                if pictures and look != "bare":
                    take_pictures(browser, place, look, pictures)
                print(f"{look}: {len(pages)} pages")
    finally:
        place.remove()
    sys.exit(1 if failures else 0)


main()
