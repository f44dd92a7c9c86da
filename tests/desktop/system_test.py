"""What Windows does to the program: it ends the session, and writes cookies of its own."""

from datetime import datetime, timezone

from harness import SAVE_LOG, DesktopTest, main, options

WM_QUERYENDSESSION, WM_ENDSESSION = 0x11, 0x16


class SystemTest(DesktopTest):
    def test_end_of_the_session(self):
        """A logoff that is taken back ends nothing; one that comes saves the settings."""
        program = self.started(config=SAVE_LOG)
        config = program.folder / "config.ini"
        config.unlink()
        program.select_tab("Options")
        program.tick("Minimize to system tray")
        window = program.main_window()
        self.assertEqual(window.send(WM_QUERYENDSESSION), 1)
        window.send(WM_ENDSESSION, 0)
        (program.cookies / "later.txt").touch()
        self.assertEqual(program.told(1), ["added: later.txt"])
        self.assertFalse(config.exists())
        window.post(WM_QUERYENDSESSION)
        window.post(WM_ENDSESSION, 1)
        self.assertEqual(program.process.wait(10), 0)
        self.assertEqual(config.read_bytes(), options(to_tray=False))

    def test_cookies_of_the_system(self):
        """What its internet library keeps is told, listed and dated."""
        program = self.started(config=SAVE_LOG)
        expires = datetime(2031, 1, 31, 23, tzinfo=timezone.utc)  # the next day where it runs
        text = expires.strftime("colour=blue; expires=%a, %d-%b-%Y %H:%M:%S GMT")
        self.assertTrue(program.ask("cookie", "http://shop.example/cart/", text))
        program.wait_for_log(1)
        file, = program.cookies.glob("*.txt")
        self.assertEqual(program.told(1), [f"added: {file.name}"])
        cookie = ["shop.example/cart", "2031-02-01", "colour", "blue", file.name]
        self.wait_for_equal(lambda: [row[:5] for row in program.control("tree", "Cookies").rows()],
                            [cookie])


if __name__ == "__main__":
    main()
