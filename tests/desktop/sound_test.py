"""Sounds, heard through the monitor of a sound server that plays into nothing."""

import array
import cmath
import os
import socket
import struct

from harness import DesktopTest, cookies, main, options, wait_until

RATE = 8000
WINDOW = RATE // 10
# The notes of 1.wav and of 2.wav, in hertz.
NOTES = {"added": (880.0, 1318.5), "removed": (587.3, 392.0)}
LOUD = 200
BOTH = options(sound1=True, sound2=True)


def hears(samples, sound):
    """Whether one of its notes is loud in any tenth of a second."""
    return any(abs(sum(sample * cmath.exp(2j * cmath.pi * note * i / RATE)
                       for i, sample in enumerate(samples[at:at + WINDOW]))) > LOUD * WINDOW
               for at in range(0, len(samples) - WINDOW, WINDOW) for note in NOTES[sound])


def make_float_stereo(path):
    """Of a sound of one channel in whole numbers: the other form that editors write, with a chunk
    that no player knows in front."""
    samples = array.array("h", path.read_bytes()[44:])
    data = array.array("f", (sample / 32768 for sample in samples for _ in "LR")).tobytes()
    form = struct.pack("<HHIIHHHHIH14x", 0xFFFE, 2, 44100, 44100 * 8, 8, 32, 22, 32, 3, 3)
    path.write_bytes(b"RIFF\0\0\0\0WAVEnote\3\0\0\0abc\0fmt " + struct.pack("<I", len(form)) + form
                     + b"data" + struct.pack("<I", len(data)) + data)


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
        cls.recorded = staticmethod(lambda: cls.recording.stat().st_size // 2)  # samples
        wait_until(cls.recorded, "the recording")

    def check_heard(self, expected, action):
        """Exactly these sounds are heard in the second and a half after the action."""
        start = self.recorded()
        action()
        end = self.recorded() + int(1.5 * RATE)
        wait_until(lambda: self.recorded() >= end, "more of the recording")
        samples = array.array("h", self.recording.read_bytes()[2 * start:2 * end])
        self.assertEqual([sound for sound in NOTES if hears(samples, sound)], expected)

    def check_change(self, program, expected, *works):
        """Works in the folder that are one change, the line that tells of it, and what is heard."""
        def action():
            lines = len(program.told())
            with program.paused():
                for work in works:
                    work()
            program.told(lines + 1)
        self.check_heard(expected, action)

    def test_road_of_one_event(self):
        """A new cookie file: log, popup, sound, log file, list, and a search that finds it."""
        program = self.program(config=BOTH, env=self.server)
        program.folder = program.folder.rename(program.folder.with_name(
            os.fsdecode(b'my "own" \xff app')))
        program.start()
        file, other = program.cookies / "jane[1].txt", program.cookies / "jane[2].txt"
        content = cookies("UserPassword", "id")
        self.check_change(program, ["added"], lambda: file.write_bytes(content))
        self.assertEqual(len(program.windows("Quillmere")), 2)
        self.assertEqual(program.log_lines(), program.wait_for_log(1))
        program.select_tab("Cookies")
        row, _ = wait_until(program.control("tree", "Cookies").rows, "the cookies")
        self.assertEqual(row[2:5], ["UserPassword", "42", "jane[1].txt"])
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
        buttons = [program.button(f"Play the sound of {kind} cookie file")
                   for kind in ("an added", "a removed")]
        for button, sound in 6 * [*zip(buttons, NOTES)]:
            self.check_heard([sound], button.click)
        make_float_stereo(program.folder / "sound/1.wav")
        self.check_heard(["added"], buttons[0].click)
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
                        (program.cookies / f"{number}.txt").touch()
                    program.told(20)
                    program.select_tab("Sound")  # the window is alive
                    self.check_end(program)


if __name__ == "__main__":
    main()
