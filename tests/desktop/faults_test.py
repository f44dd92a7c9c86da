"""What the machine can do to a program: full disks, folders that go, names that nobody expects,
a clock that jumps, a desktop without its services, sudden ends."""

import contextlib
import ctypes
import os
import random
import resource
import re
import select
import shutil
import struct
import subprocess
import sys
import time
from pathlib import Path

from harness import (SANITIZED, SAVE_LOG, DesktopTest, Program, cookies, main, options, run,
                     wait_until)

# In a namespace of its own a test may mount, and what is forbidden is forbidden to root too.
Pointer = ctypes.c_void_p
INSIDE = "QUILLMERE_FAULTS_INSIDE"
HIDDEN = "[Desktop Entry]\nHidden=true\n"


def enter_namespace():
    user = [] if os.geteuid() == 0 else ["--map-root-user"]
    wrapper = ["unshare", *user, "--mount", "setpriv", "--bounding-set",
               "-dac_override,-dac_read_search"]
    if INSIDE not in os.environ and subprocess.run([*wrapper, "true"], check=False).returncode == 0:
        os.environ[INSIDE] = "yes"
        os.execvp(wrapper[0], [*wrapper, sys.executable, "-B", *sys.argv])


class SessionManager:
    """The desktop's side of the session protocol, as far as the program meets it."""

    def __init__(self):
        self.ice, self.sm = ctypes.CDLL("libICE.so.6"), ctypes.CDLL("libSM.so.6")
        self.ice.IceAcceptConnection.restype = self.sm.SmsGenerateClientID.restype = Pointer
        self.ice.IceComposeNetworkIdList.restype = ctypes.c_char_p
        self.connection, self.saved, self.restart = None, 0, None
        answer = ctypes.CFUNCTYPE(ctypes.c_int, *[Pointer] * 5)
        # As the library numbers them: a client that registers, has saved, tells of itself.
        known = {0: self.register, 5: self.note_saved, 7: self.note_properties}
        self.answers = [answer(known.get(number, lambda *_: 0)) for number in range(10)]
        self.kept = answer(self.take_client), answer(lambda *_: 1)
        # The library's own answer to a client that is gone would end the test.
        self.ice.IceSetIOErrorHandler(self.kept[1])
        error, count, places = ctypes.create_string_buffer(256), ctypes.c_int(), Pointer()
        self.sm.SmsInitialize(b"", b"", self.kept[0], None, self.kept[1], 256, error)
        self.ice.IceListenForConnections(ctypes.byref(count), ctypes.byref(places), 256, error)
        self.address = self.ice.IceComposeNetworkIdList(count, places).decode()
        self.places = [Pointer(each) for each in (Pointer * count.value).from_address(places.value)]
        for each in self.places:
            self.ice.IceSetHostBasedAuthProc(each, self.kept[1])

    def take_client(self, client, _, mask, callbacks, __):
        self.client = Pointer(client)
        ctypes.c_ulong.from_address(mask).value = 0x3FF
        table = (Pointer * 20).from_address(callbacks)
        table[::2] = [ctypes.cast(answer, Pointer).value for answer in self.answers]
        return 1

    def register(self, *_):
        name = Pointer(self.sm.SmsGenerateClientID(self.client))
        self.sm.SmsRegisterClientReply(self.client, name)
        self.sm.SmsSaveYourself(self.client, 2, 0, 0, 0)
        return 1

    def note_saved(self, *_):
        self.saved += 1
        return 1

    def note_properties(self, _, __, count, properties, ___):
        for each in (Pointer * count).from_address(properties):
            name, _, _, values = struct.unpack("PPiP", ctypes.string_at(each, 32))
            if ctypes.string_at(name) == b"RestartStyleHint":
                _, value = struct.unpack("iP", ctypes.string_at(values, 16))
                self.restart = ctypes.string_at(value, 1)[0]
        return 1

    def serve(self):
        """Takes in what has come by now."""
        status = ctypes.byref(ctypes.c_int())
        for each in self.places:
            if select.select([self.ice.IceGetListenConnectionNumber(each)], [], [], 0)[0]:
                self.connection = Pointer(self.ice.IceAcceptConnection(each, status))
        while self.connection and select.select(
                [self.ice.IceConnectionNumber(self.connection)], [], [], 0)[0]:
            if self.ice.IceProcessMessages(self.connection, None, None):
                self.connection = None


class FaultsTest(DesktopTest):
    def mount(self, place, *how):
        if INSIDE not in os.environ:
            self.skipTest("mounting takes more rights here")
        if not place.exists():
            place.mkdir()
        run("mount", *(how or ("-t", "tmpfs", "none")), place)
        self.addCleanup(run, "umount", "--lazy", place, check=False)

    @contextlib.contextmanager
    def full(self, place):
        run("dd", "if=/dev/zero", f"of={place}/filler", "bs=4096", check=False)
        yield
        (place / "filler").unlink()

    def test_full_disk(self):
        program = self.program(config=SAVE_LOG)
        disk = program.folder.with_name("disk")
        self.mount(disk, "-t", "tmpfs", "-o", "size=200m", "none")
        program.folder = Path(shutil.move(program.folder, disk / "app"))
        self.mount(Path(program.env["XDG_CONFIG_HOME"]), "-t", "tmpfs", "-o", "size=64k", "none")
        autostart = Path(program.env["XDG_CONFIG_HOME"]) / "autostart"
        autostart.mkdir()
        (autostart / "quillmere.desktop").write_text(HIDDEN)
        program.start()
        log = program.folder / "log" / time.strftime("%Y%m%d.txt", time.gmtime(time.time() + 19800))
        # The next line begins in the last block and needs one more.
        log.write_bytes(b"x" * 4084 + b"\r\n")
        with self.full(disk), self.full(autostart.parent):
            (program.cookies / "lost.txt").touch()
            self.wait_for_equal(lambda: len(program.windows("Quillmere")), 2)  # one is the popup
            self.assertIn("added: lost.txt", program.log_lines()[0])
            self.assertEqual(log.stat().st_size, 4086)
            program.select_tab("Options")
            program.tick("Start with windows")
            self.assertEqual([path.read_text() for path in autostart.iterdir()], [HIDDEN])
        (program.cookies / "kept.txt").touch()
        self.assertEqual(program.told(2), ["added: kept.txt"])
        resource.prlimit(program.process.pid, resource.RLIMIT_FSIZE, (4096, -1))
        (program.cookies / "beyond.txt").touch()
        wait_until(lambda: "added: beyond.txt" in program.log_lines()[-1], "its line")
        self.assertEqual(program.told(2), ["added: kept.txt"])
        resource.prlimit(program.process.pid, resource.RLIMIT_FSIZE, (-1, -1))
        program.tick("Minimize to system tray")
        with self.full(disk):
            self.check_end(program)
        self.assertEqual((program.folder / "config.ini").read_bytes(), SAVE_LOG)
        self.assertEqual([n for n in os.listdir(program.folder) if n.startswith(".")], [])

    def test_cookie_folder_in_trouble(self):
        program = self.program(config=SAVE_LOG)
        folder = program.cookies
        (folder / "a.txt").touch()
        self.mount(folder.with_name("disk"))
        (folder.with_name("disk") / "b.txt").touch()
        program.start()
        self.addCleanup(lambda: folder.chmod(0o700))
        known, expected = {"a.txt"}, []
        for deed in ("mv cookies away", "mv away cookies",
                     "rm -r cookies", "mkdir cookies; touch cookies/a.txt",
                     "mv cookies away; touch cookies", "rm cookies; mv away cookies",
                     "mv cookies away; ln -s nowhere cookies", "rm cookies; mv away cookies",
                     "mv cookies away; ln -s disk cookies", "rm cookies; mv away cookies",
                     "mount --bind disk cookies", "umount cookies",
                     "chmod 0 cookies", "chmod 700 cookies", "chmod 0 cookies",
                     "mv cookies away; mkdir cookies; touch cookies/a.txt",
                     "chmod 0 cookies", "chmod 700 cookies away"):
            with program.paused():
                run("sh", "-ec", f"cd {folder.parent}; {deed}")
                there = {path.name for path in folder.glob("*.txt")}
            expected += [f"added: {name}" for name in there - known]
            expected += [f"removed: {name}" for name in known - there]
            known = there
            self.assertEqual(program.told(len(expected)), expected)
            program.wait_for_rest()
        (folder / "a.txt").write_text("changed")
        self.assertEqual(program.told(len(expected) + 1)[-1], "modified: a.txt")
        self.check_end(program)

    def test_without_a_desktop_around_it(self):
        """No bus, no tray, no sound, no home: the window is there, and nothing is complained of."""
        locked = self.desktop.home / "locked"
        locked.mkdir(0o500)
        for home in (f"{locked}/not/there", str(locked), "/dev/null"):
            with self.subTest(home):
                program = self.program(accessible=False)
                program.env = {name: value for name, value in program.env.items()
                               if not name.startswith(("XDG_", "DBUS_"))} | {"HOME": home}
                program.watching = program.find_window  # there may be no folder to watch
                program.start()
                program.wait_for_rest()
                self.check_end(program, Program.close)
                self.assertTrue((program.folder / "config.ini").exists())

    def test_no_display(self):
        program = self.program()
        for display, told in ({"DISPLAY": ":9999"}, "DISPLAY=:9999"), ({}, "DISPLAY is not set"):
            env = {**program.env, **display} if display else {"HOME": program.env["HOME"]}
            ended = subprocess.run([program.folder / "quillmere"], env=env, capture_output=True)
            self.assertEqual(ended.returncode, 1)
            self.assertRegex(ended.stderr.decode(), rf"\Aquillmere: .*\({told}\).*\n\Z")

    def test_end_of_the_session(self):
        """A logout that is taken back ends nothing; one that comes saves the settings."""
        session = SessionManager()
        program = self.program(config=SAVE_LOG, env={"SESSION_MANAGER": session.address})
        watching = program.watching
        program.watching = lambda: session.serve() or watching()
        program.start()
        config = program.folder / "config.ini"
        config.unlink()

        def ask(count):
            session.sm.SmsSaveYourself(session.client, 2, 1, 0, 0)
            wait_until(lambda: session.serve() or session.saved == count, "the answer")

        wait_until(lambda: session.serve() or session.saved == 1, "the program to join")
        ask(2)
        session.sm.SmsShutdownCancelled(session.client)
        (program.cookies / "later.txt").touch()
        program.wait_for_log(1)
        self.assertFalse(config.exists())
        self.assertEqual(session.restart, 3, "never: what starts it again is its autostart entry")
        ask(3)
        session.sm.SmsDie(session.client)
        self.assertEqual(program.process.wait(10), 0)
        self.assertEqual(config.read_bytes(), SAVE_LOG)

    def test_x_server_goes(self):
        """By itself, and in a shutdown, which ends everything at once; a popup is open."""
        for shutdown in (False, True):
            with self.subTest(shutdown=shutdown):
                display = self.desktop.start_display()
                server = self.desktop.processes[-1]
                program = self.started(env={"DISPLAY": display}, accessible=False)
                (program.cookies / "a.txt").touch()
                program.wait_for_rest()
                with program.paused():
                    server.terminate()
                    if shutdown:
                        program.process.terminate()
                    server.wait()
                self.assertEqual(program.process.wait(10), 0)
                self.assertTrue((program.folder / "config.ini").exists())

    def test_names(self):
        """Whatever a name is made of: a line is a line, and a row a row."""
        program = self.program(config=SAVE_LOG)
        names = [b"two\nlines.txt", b"two\rlines.txt", b"\x01\x1b[31m\x7f.txt", b"bad\xff\xfe.txt",
                 "nel\x85sep\u2028pdf\u202erlo.txt".encode(), b"<b>x &amp; &y.txt", b"%s%n$(x).txt",
                 b" .txt", b"-rf *.txt", b"x" * 251 + b".txt"]
        program.start().select_tab("Cookies")
        with program.paused():
            for name in names:
                (program.cookies / os.fsdecode(name)).write_bytes(cookies("c"))
        program.wait_for_log(len(names))
        lines = program.log_file().decode().splitlines(keepends=True)
        self.assertEqual(lines, [line + "\r\n" for line in program.log_lines()])
        self.assertEqual(len(lines), len(names))
        self.wait_for_equal(lambda: len(program.control("tree", "Cookies").rows()), len(names))
        files = {row[4] for row in program.control("tree", "Cookies").rows()}
        self.assertLessEqual({"two\u240alines.txt", "bad\ufffd\ufffd.txt"}, files)
        self.check_end(program)

    def test_clock(self):
        """Midnight, a clock that is set back, another zone: the texts follow, no timer stands."""
        if SANITIZED:
            self.skipTest("the sanitizers want to be loaded first")
        self.mount(Path("/etc/localtime"), "--bind", "/usr/share/zoneinfo/UTC")
        stamp = self.desktop.home / "stamp"

        def set_clock(moment):  # whole at every look at it
            stamp.with_suffix(".new").write_text("@" + moment)
            stamp.with_suffix(".new").rename(stamp)

        set_clock("2004-05-01 23:59:50")
        program = self.program(config=SAVE_LOG, env={
            "LD_PRELOAD": str(next(Path("/usr/lib").glob("*/faketime/libfaketime.so.1"))),
            "FAKETIME_TIMESTAMP_FILE": str(stamp), "FAKETIME_NO_CACHE": "1",
            "FAKETIME_DONT_FAKE_MONOTONIC": "1", "NO_FAKE_STAT": "1"})
        del program.env["TZ"]
        program.start()

        def change(moment, name):
            set_clock(moment)
            with program.paused():
                (program.cookies / name).touch()
                os.utime(program.cookies / name, (0, 0))
            wait_until(lambda: f"added: {name}" in program.log_file().decode(), "the line")

        for moment, name, text in (
                ("2004-05-01 23:59:50", "20040501.txt", "5/1/2004 11:59:5"),
                ("2004-05-02 00:00:10", "20040502.txt", "5/2/2004 12:00:1"),
                ("2004-04-30 12:00:00", "20040430.txt", "4/30/2004 12:00:0")):
            change(moment, name)
            self.assertRegex((program.folder / "log" / name).read_text(),
                             rf"^{text}.*added: {name},  bytes, 1970-01-01 00:00:00\n$")
        self.wait_for_equal(lambda: len(program.windows("Quillmere")), 1)  # all popups have closed
        program.wait_for_rest()
        self.mount(Path("/etc/localtime"), "--bind", "/usr/share/zoneinfo/Asia/Kolkata")
        change("2004-05-01 20:00:00", "later.txt")
        self.assertEqual(len(re.findall(r"modified: \d+.txt - bytes 1970-01-01 00:00:00 =>  bytes "
                                        "1970-01-01 05:30:00", program.log_file().decode())), 3)

    def test_files_change_under_it(self):
        """Files that go, grow, are locked or turn into something else while they are read."""
        program = self.program(config=SAVE_LOG)
        paths = [program.cookies / f"{number}.txt" for number in range(12)]
        chance = random.Random(7)
        acts = [lambda path: path.write_bytes(cookies(*"c" * chance.randrange(1, 9)))] * 6 + [
            os.mkfifo, os.mkdir, lambda path: path.symlink_to("/dev/zero"),
            lambda path: path.symlink_to(path.name),
            lambda path: (path.write_bytes(cookies("locked")), path.chmod(0))]
        program.start()
        end = time.monotonic() + 3
        while time.monotonic() < end:
            path = chance.choice(paths)
            run("rm", "-rf", path)
            chance.choice(acts)(path)
            time.sleep(chance.choice((0, 0.001, 0.02)))
        # A last change: a lock alone, put on a file that was listed meanwhile, is none.
        paths.append(program.cookies / "last.txt")
        paths[-1].write_bytes(cookies("last"))
        # root reads locked files too, where nothing takes that right from it
        readable = {path.name for path in paths if path.is_file() and os.access(path, os.R_OK)}
        program.select_tab("Cookies")
        table = program.control("tree", "Cookies")
        self.wait_for_equal(lambda: {row[4] for row in table.rows()}, readable)
        program.wait_for_rest()
        self.check_end(program)

    def test_sound_server_dies_and_comes_back(self):
        def heard():
            (program.cookies / f"{time.monotonic()}.txt").touch()
            with contextlib.suppress(AssertionError):
                return wait_until(lambda: run("pactl", "--server", place["PULSE_SERVER"], "list",
                                              "short", "sink-inputs", check=False), "a sound", 2)

        place = self.desktop.start_sound_server()
        server = self.desktop.processes[-1]
        program = self.started(config=options(sound1=True), env=place)
        wait_until(heard, "the sound")
        server.kill()
        server.wait()
        self.assertFalse(heard())
        self.desktop.start_sound_server()
        wait_until(heard, "the sound after the return")
        self.check_end(program)


if __name__ == "__main__":
    enter_namespace()
    main()
