"""Sounds, heard through the monitor of a sound server that plays into nothing."""

import math
import socket
import struct
import subprocess

from harness import DesktopTest, main, run, wait_until

RATE = 44100
WINDOW = RATE // 10
# The notes of 1.wav and of 2.wav, in hertz.
NOTES = {"added": (880.0, 1318.5), "removed": (587.3, 392.0)}
LOUD = 200
COOKIE = "id\n42\nshop.example/\n0\n0\n30000000\n0\n0\n*\n"


def options(added, removed):
    return f"SaveLog=True\r\nToTray=True\r\nPlaySound1={added}\r\nPlaySound2={removed}\r\n".encode()


def strength(samples, frequency):
    """How much of one frequency there is (Goertzel's way)."""
    turn = 2 * math.cos(2 * math.pi * frequency / RATE)
    last = before = 0.0
    for sample in samples:
        last, before = sample + turn * last - before, last
    return math.sqrt(max(0.0, last * last + before * before - turn * last * before)) / len(samples)


def sounds_in(recorded):
    """Which of the sounds are heard."""
    heard = set()
    for start in range(0, len(recorded) // 2 - WINDOW, WINDOW):
        samples = struct.unpack_from(f"<{WINDOW}h", recorded, 2 * start)
        loudness = {sound: max(strength(samples, note) for note in notes)
                    for sound, notes in NOTES.items()}
        heard |= {sound for sound, value in loudness.items() if value > LOUD}
    return heard


class SoundTest(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        place = cls.desktop.home / "runtime/sound"
        cls.server = f"unix:{place}"
        cls.desktop.start(
            "pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
            "-L", "module-null-sink sink_name=nothing",
            "-L", f"module-native-protocol-unix socket={place} auth-anonymous=1")
        wait_until(lambda: subprocess.run(
            ["pactl", "--server", cls.server, "info"], capture_output=True).returncode == 0,
            "the sound server")
        cls.recording = cls.desktop.home / "recording"
        cls.desktop.start(
            "parec", "--server", cls.server, "--device=nothing.monitor", "--raw",
            "--format=s16le", f"--rate={RATE}", "--channels=1", "--latency-msec=50",
            stdout=open(cls.recording, "wb"))
        wait_until(cls.recorded, "the recording")

    @classmethod
    def recorded(cls):
        return cls.recording.stat().st_size

    def check_heard(self, expected, action):
        """Exactly these sounds are heard in the second and a half after the action."""
        start = self.recorded() & ~1
        action()
        end = self.recorded() + 2 * int(1.5 * RATE)
        wait_until(lambda: self.recorded() >= end, "more of the recording")
        self.assertEqual(sounds_in(self.recording.read_bytes()[start:end & ~1]), expected)

    def change(self, program, work):
        """A piece of work in the folder, and the line that tells of it."""
        def action():
            lines = program.log_file().count(b"\n")
            work()
            program.wait_for_log(lines + 1)
        return action

    def test_each_kind_of_change(self):
        program = self.program(config=options(True, True), env={"PULSE_SERVER": self.server})
        program.folder = program.folder.rename(program.folder.with_name('my "own" app'))
        program.start()
        file = program.cookies / "jane[1].txt"
        cases = [
            ({"added"}, lambda: file.write_text(COOKIE)),
            (set(), lambda: file.write_text(COOKIE * 2)),
            ({"removed"}, file.unlink),
        ]
        for expected, work in cases:
            with self.subTest(expected=expected):
                self.check_heard(expected, self.change(program, work))

        def both():
            with program.paused():
                file.write_text(COOKIE)
                other.unlink()
        other = program.cookies / "jane[2].txt"
        self.check_heard({"added"}, self.change(program, lambda: other.write_text(COOKIE)))
        self.check_heard({"added", "removed"}, self.change(program, both))

    def windows(self, program):
        found = run("xdotool", "search", "--onlyvisible", "--all", "--pid", program.process.pid,
                    "--name", "^Quillmere$", check=False)
        return len(found.split())

    def test_road_of_one_event(self):
        """A new cookie file: log, popup, sound, log file, list, and a search that finds it."""
        program = self.started(config=options(True, True), env={"PULSE_SERVER": self.server})
        cookie = COOKIE.replace("id", "UserPassword", 1)
        self.check_heard({"added"}, self.change(
            program, lambda: (program.cookies / "jane[1].txt").write_text(cookie)))
        self.assertEqual(self.windows(program), 2)
        line, = program.wait_for_log(1)
        self.assertIn(f" - Cookie file added: jane[1].txt, {len(cookie)} bytes, ", line)
        self.assertEqual(program.log_lines(), [line])
        program.select_tab("Cookies")
        row, = wait_until(lambda: program.control("tree", "Cookies").rows(), "the cookie")
        self.assertEqual(row[:5], ["shop.example", "2009-04-23", "UserPassword", "42",
                                   "jane[1].txt"])
        program.select_tab("Search")
        next(program.controls("push button", "Search")).click()
        found, = wait_until(lambda: program.control("tree", "Search results").rows(), "the hit")
        self.assertEqual(found, row)
        wait_until(lambda: self.windows(program) == 1, "the popup to close by itself", 8)

    def test_options_and_play_buttons(self):
        program = self.started(config=options(False, True), env={"PULSE_SERVER": self.server})
        file = program.cookies / "jane[1].txt"
        self.check_heard(set(), self.change(program, lambda: file.write_text(COOKIE)))
        self.check_heard({"removed"}, self.change(program, file.unlink))

        program.select_tab("Sound")
        boxes = [program.check_box("Play sound when a new cookie file is added"),
                 program.check_box("Play sound when a cookie file is removed")]
        buttons = sorted(program.controls("push button", "Play"), key=lambda b: b.place()[1])
        boxes[1].click()
        wait_until(lambda: not boxes[1].checked, "the box without its tick")
        for button, sound in zip(buttons, ("added", "removed")):
            self.check_heard({sound}, button.click)
        self.assertEqual([box.checked for box in boxes], [False, False])
        self.check_heard(set(), self.change(program, lambda: file.write_text(COOKIE)))
        self.check_heard(set(), self.change(program, file.unlink))

    def test_no_server_that_answers(self):
        mute = self.desktop.home / "runtime/mute"
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(str(mute))
            listener.listen()
            for server in ("unix:/nowhere", f"unix:{mute}"):
                with self.subTest(server=server):
                    program = self.started(config=options(True, True), env={"PULSE_SERVER": server})
                    for number in range(20):
                        (program.cookies / f"jane[{number}].txt").write_text(COOKIE)
                    program.wait_for_log(20)
                    program.select_tab("Sound")  # the window is alive
                    self.assertEqual(program.end(), 0)
                    self.assertEqual((program.folder.parent / "stderr").read_text(), "")

    def test_files_that_are_no_sounds(self):
        program = self.program(config=options(True, True), env={"PULSE_SERVER": self.server})
        (program.folder / "sound/1.wav").unlink()
        (program.folder / "sound/2.wav").write_text("no sound at all")
        program.start()
        file = program.cookies / "jane[1].txt"
        self.check_heard(set(), self.change(program, lambda: file.write_text(COOKIE)))
        self.check_heard(set(), self.change(program, file.unlink))
        self.assertEqual(program.end(), 0)
        self.assertEqual((program.folder.parent / "stderr").read_text(), "")


if __name__ == "__main__":
    main()
