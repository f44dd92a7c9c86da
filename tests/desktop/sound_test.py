"""Sounds, heard through the monitor of a sound server that plays into nothing."""

import array
import cmath
import socket

from harness import DesktopTest, cookies, main, options, wait_until

RATE = 8000
WINDOW = RATE // 10
# The notes of 1.wav and of 2.wav, in hertz.
NOTES = {"added": (880.0, 1318.5), "removed": (587.3, 392.0)}
LOUD = 200
BOTH = options(sound1=True, sound2=True)


def strength(samples, frequency):
    """How much of one frequency there is."""
    turn = 2j * cmath.pi * frequency / RATE
    return abs(sum(sample * cmath.exp(turn * i) for i, sample in enumerate(samples))) / len(samples)


def sounds_in(samples):
    windows = [samples[start:start + WINDOW] for start in range(0, len(samples) - WINDOW, WINDOW)]
    return {sound for sound, notes in NOTES.items()
            if any(strength(window, note) > LOUD for window in windows for note in notes)}


class SoundTest(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.server = cls.desktop.start_sound_server()
        cls.recording = cls.desktop.home / "recording"
        cls.desktop.start(
            "parec", "--device=nothing.monitor", "--raw", "--format=s16le", f"--rate={RATE}",
            "--channels=1", "--latency-msec=50", env=cls.desktop.env | cls.server,
            stdout=open(cls.recording, "wb"))
        wait_until(cls.recorded, "the recording")

    @classmethod
    def recorded(cls):
        """Samples."""
        return cls.recording.stat().st_size // 2

    def check_heard(self, expected, action):
        """Exactly these sounds are heard in the second and a half after the action."""
        start = self.recorded()
        action()
        end = self.recorded() + int(1.5 * RATE)
        wait_until(lambda: self.recorded() >= end, "more of the recording")
        samples = array.array("h", self.recording.read_bytes()[2 * start:2 * end])
        self.assertEqual(sounds_in(samples), set(expected))

    def check_change(self, program, expected, *works):
        """Works in the folder that are one change, the line that tells of it, and what is heard."""
        def action():
            lines = program.log_file().count(b"\n")
            with program.paused():
                for work in works:
                    work()
            program.wait_for_log(lines + 1)
        self.check_heard(expected, action)

    def test_road_of_one_event(self):
        """A new cookie file: log, popup, sound, log file, list, and a search that finds it. Then
        the other kinds of change, and two at once."""
        program = self.program(config=BOTH, env=self.server)
        program.folder = program.folder.rename(program.folder.with_name('my "own" app'))
        program.start()
        file, other = program.cookies / "jane[1].txt", program.cookies / "jane[2].txt"
        content = cookies("UserPassword", "id")
        self.check_change(program, ["added"], lambda: file.write_bytes(content))
        self.assertEqual(len(program.windows("Quillmere")), 2)
        line, = program.wait_for_log(1)
        self.assertIn(f" - Cookie file added: jane[1].txt, {len(content)} bytes, ", line)
        self.assertEqual(program.log_lines(), [line])
        program.select_tab("Cookies")
        row, _ = wait_until(lambda: program.control("tree", "Cookies").rows(), "the cookies")
        self.assertEqual(row[:5], ["shop.example", "2009-04-23", "UserPassword", "42",
                                   "jane[1].txt"])
        program.select_tab("Search")
        program.button("Search").click()
        self.wait_for_equal(program.control("tree", "Search results").rows, [row])
        wait_until(lambda: len(program.windows("Quillmere")) == 1, "the popup to close by itself")
        self.check_change(program, [], lambda: file.write_bytes(content * 2))
        self.check_change(program, ["added", "removed"], other.touch, file.unlink)

    def test_options_and_play_buttons(self):
        program = self.started(config=options(sound1=False, sound2=True), env=self.server)
        file = program.cookies / "jane[1].txt"
        self.check_change(program, [], file.touch)
        self.check_change(program, ["removed"], file.unlink)
        program.select_tab("Sound")
        program.tick("Play sound when a cookie file is removed")
        buttons = sorted(program.controls("push button", "Play"), key=lambda b: b.place()[1])
        for button, sound in zip(buttons, NOTES):
            self.check_heard([sound], button.click)
        (program.folder / "sound/1.wav").unlink()
        (program.folder / "sound/2.wav").write_text("no sound at all")
        for button in buttons:
            self.check_heard([], button.click)
        self.check_change(program, [], file.touch)
        self.check_change(program, [], file.unlink)
        self.check_end(program)

    def test_no_server_that_answers(self):
        mute = self.desktop.home / "runtime/mute"
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(str(mute))
            listener.listen()
            for server in ("unix:/nowhere", f"unix:{mute}"):
                with self.subTest(server=server):
                    program = self.started(config=BOTH, env={"PULSE_SERVER": server})
                    for number in range(20):
                        (program.cookies / f"jane[{number}].txt").touch()
                    program.wait_for_log(20)
                    program.select_tab("Sound")  # the window is alive
                    self.check_end(program)


if __name__ == "__main__":
    main()
