#!/usr/bin/env python3
"""Takes the pictures of the help from the built program: assets/help/pictures/*.png.

Needs what the desktop tests need. QUILLMERE_APP_DIR names the portable folder, build/app if not set.
"""

import os
import shutil
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "tests/desktop"))

from harness import Desktop, Program, run, wait_until  # noqa: E402

PICTURES = HERE / "help/pictures"
HOME = Path("/tmp/jane")  # its name is in the pictures
MOMENT = 1083402906  # 1 May 2004, when the files of the pictures were last written
EXPIRES = 29726000  # the high word of a day in 2007


def cookie(name, value, server, expires=EXPIRES):
    return f"{name}\n{value}\n{server}\n1536\n0\n{expires}\n0\n29645000\n*\n"


FILES = {
    "jane@shop.example[1].txt": cookie("basket", "4711%2C4712", "shop.example/")
    + cookie("visitor", "f3a91c07", "shop.example/", EXPIRES + 80000),
    "jane@news.example[2].txt": cookie("edition", "evening", "news.example/"),
    "jane@mail.example[1].txt": cookie("UserPassword", "c2VjcmV0", "mail.example/login/")
    + cookie("lastfolder", "inbox", "mail.example/"),
    "jane@maps.example[1].txt": cookie("view", "52.1%3B4.9%3Bz11", "maps.example/", EXPIRES + 9000),
    "jane@radio.example[3].txt": cookie("station", "7", "radio.example/"),
}


def write(folder, name, moment=MOMENT):
    path = folder / name
    path.write_text(FILES[name])
    os.utime(path, (moment, moment))


def watch_folder(program, folder):
    folder.mkdir()
    program.cookies = folder
    registry = Path(program.env["XDG_CONFIG_HOME"]) / "quillmere/registry.ini"
    registry.parent.mkdir(parents=True)
    registry.write_text(
        "[Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders]\n"
        f"Cookies={folder}\n")


def windows(program, title):
    found = subprocess.run(
        ["xdotool", "search", "--all", "--onlyvisible", "--pid", str(program.process.pid), "--name",
         title], capture_output=True, text=True, check=False)
    return [number for number in found.stdout.split() if number != program.find_window()]


def take(program, window, name):
    left, top, width, height = program.geometry(window)
    # Out of the whole screen: a window that closes meanwhile would be waited for.
    run("import", "-silent", "-window", "root", "-crop", f"{width}x{height}+{left}+{top}",
        "+repage", "-strip", "+dither", "-depth", "8", "-colors", "64", PICTURES / f"{name}.png")
    print(name)


def take_pages(program):
    for tab in ("Cookies", "Search", "Tools", "Sound", "Options", "Log"):
        program.select_tab(tab)
        if tab == "Search":
            results = program.control("tree", "Search results")
            program.button("Search").press()
            wait_until(lambda: results.rows(), "the results")
        run("xdotool", "mousemove", 5, 5)
        run("sleep", "0.5")  # for the last drawing of the page
        take(program, program.find_window(), tab.lower())


def take_popup(program):
    wait_until(lambda: not windows(program, "^Quillmere$"), "the end of earlier popups")
    write(program.cookies, "jane@shop.example[1].txt")
    wait_until(lambda: windows(program, "^Quillmere$"), "the popup")
    run("sleep", "0.5")
    take(program, windows(program, "^Quillmere$")[0], "popup")
    wait_until(lambda: not windows(program, "^Quillmere$"), "the popup's end")


def take_details(program):
    program.select_tab("Cookies")
    cookies = program.control("tree", "Cookies")
    names = wait_until(lambda: [row[4] for row in cookies.rows()], "the rows")
    position = names.index("jane@mail.example[1].txt")
    table = cookies.accessible.get_table_iface()
    cell = type(cookies)(table.get_accessible_at(position, 0))
    cell.click()
    run("xdotool", "key", "Return")
    detail = wait_until(lambda: windows(program, "^Detail"), "the detail window")[0]
    run("xdotool", "mousemove", 5, 5)
    run("sleep", "0.3")
    take(program, detail, "detail")


def main():
    PICTURES.mkdir(exist_ok=True)
    HOME.mkdir()
    desktop = Desktop()
    program = None
    try:
        desktop.open()
        program = Program(desktop)
        watch_folder(program, HOME / "cookies")
        write(program.cookies, "jane@radio.example[3].txt")
        write(program.cookies, "jane@maps.example[1].txt")
        program.start()
        write(program.cookies, "jane@news.example[2].txt")
        wait_until(lambda: len(program.log_lines()) == 1, "the first line")
        write(program.cookies, "jane@mail.example[1].txt")
        write(program.cookies, "jane@maps.example[1].txt", MOMENT + 62)
        wait_until(lambda: len(program.log_lines()) == 3, "the next lines")
        take_popup(program)
        (program.cookies / "jane@radio.example[3].txt").unlink()
        wait_until(lambda: len(program.log_lines()) == 5, "the last line")
        wait_until(lambda: not windows(program, "^Quillmere$"), "the last popup's end")
        take_pages(program)
        take_details(program)
    finally:
        if program:
            program.kill()
        desktop.close()
        shutil.rmtree(HOME)


if __name__ == "__main__":
    main()
