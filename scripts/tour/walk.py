"""The stops, in order. Each does something a user does and compares what the output window shows
with what the display shows, on one picture of the screen, while nothing moves."""

import time

import panel
import pixels
from desktop import DISPLAYS, FRAMEBUFFER, wait_until

# Content of the output window on display 2: display 1 pixel by pixel.
FULL = (1320, 40, 1280, 800)
# And on display 1: half of it.
HALF = (560, 320, 640, 400)
# Where the output covers nothing of what is compared: a corner of display 1, and of display 2.
AWAY = (20, 20)
ASIDE = (2215, 40)
SETTLES_WITHIN = 5.0
PICKER = "kestrove — ソース選択"


class Walk:
    def __init__(self, session, report):
        self.session = session
        self.report = report
        self.panel = panel.Panel(session)

    # What was seen.

    def _settled(self, matches):
        """Until `matches(screen)` says so, or for some seconds: its last word and the picture."""
        end = time.monotonic() + SETTLES_WITHIN
        while True:
            screen = self.session.screen()
            passed, seen = matches(screen)
            if passed or time.monotonic() > end:
                return passed, seen, screen

    def _equals(self, display, reference=None):
        """Pixel by pixel but for the pointer, which only the output has, and the green frame, which
        only the display has. A `reference` is what the display showed while nothing of ours lay on
        it."""
        def matches(screen):
            output = self.session.output(screen)
            source = reference or self.session.display(display, screen)
            hole = self.session.pointer_hole(display, (output.width, output.height))
            frame = pixels.frame_holes(output.width, output.height)
            count = pixels.differing_pixels(output, source, [hole, *frame])
            pointer = pixels.differing_pixels(output, source, frame) > count
            size = f"{output.width}x{output.height}"
            framed = self._is_framed(source, output)
            return count == 0 and pointer and framed, (
                f"{size}, {count} pixels differ, pointer {'there' if pointer else 'MISSING'}"
                f"{'' if framed else ', frame WRONG'}")
        return self._settled(matches)

    @staticmethod
    def _is_framed(source, output):
        """On the user's screen, and not in what the others see."""
        return pixels.is_framed(source) and not pixels.is_framed(output)

    def _equals_scaled(self, display, reference):
        def matches(screen):
            output = self.session.output(screen)
            hole = self.session.pointer_hole(display, (output.width, output.height))
            frame = pixels.frame_holes(output.width, output.height,
                                       output.width / reference.width)
            wrong = pixels.scaled_difference(reference, output, [hole, *frame])
            size = f"{output.width}x{output.height}"
            return wrong < 0.001, f"{size}, {100 * wrong:.2f} % of the scaled pixels differ"
        return self._settled(matches)

    def _equals_window(self, title):
        """Pixel by pixel. The pointer is elsewhere."""
        def matches(screen):
            output, source = self.session.output(screen), self.session.content(title, screen)
            count = pixels.differing_pixels(output, source,
                                            pixels.frame_holes(output.width, output.height))
            framed = self._is_framed(source, output)
            return count == 0 and framed, (
                f"{output.width}x{output.height}, {count} pixels differ"
                f"{'' if framed else ', frame WRONG'}")
        return self._settled(matches)

    def _is_placeholder(self, screen):
        """Black but for the text in its middle."""
        output = self.session.output(screen)
        dark = pixels.dark_share(output)
        return 0.9 < dark < 1, f"{100 * dark:.1f} % black with text on it"

    def _stop(self, name, done, seen, passed, screen):
        """Of the table. Nothing but the user moves the output."""
        in_place = self.session.is_in_place()
        self.report.stop(name, done, seen + ("" if in_place else ", output ELSEWHERE"),
                         passed and in_place, screen)

    # What is done.

    def everything(self):
        beneath = self._before_kestrove()
        self.share_display_1()
        self.keep_up()
        self.pointer_to_display_2(beneath)
        self.pointer_back()
        self.output_on_shared_display()
        self.kill_a_program()
        self.tick_a_window()
        self.window_moves()
        self.kill_the_shared_program()
        self.back_to_the_pointer()
        self.stop()
        self.start()
        self.unplug_the_shared_display()
        self.start_again()
        self.hide_and_show()
        self.open_picker()
        self.open_panel()
        self.stop_and_start_in_panel()
        self.tick_two_windows()
        self.turn_to_another_window()
        self.close_a_shared_window()
        self.quit()

    def _before_kestrove(self):
        """Display 2 as it is without the output window; it stays so until the pointer has been
        there. No window of it has the focus, which would show in its frame."""
        session = self.session
        session.move_pointer(640, 300)
        session.desktop.run("xdotool", "windowactivate", "--sync",
                            session.desktop.find_window("display 1"))
        session.freeze("RIGHT")
        return session.display("RIGHT")

    def share_display_1(self):
        session = self.session
        session.start_kestrove({"kestrove.autoStart": "true", "kestrove.followMode": "mouse"})
        session.place_output(*FULL)
        session.freeze("LEFT")
        passed, seen, screen = self._equals("LEFT")
        other_display = session.display("RIGHT", screen).cut(0, 0, *FULL[2:])
        other = pixels.differing_pixels(session.output(screen), other_display)
        self._stop("share-display-1", "start with the pointer on display 1",
                   f"{seen} ({other} from display 2)", passed and other > 100000, screen)
        session.thaw("LEFT")

    def keep_up(self):
        session = self.session
        before = session.output()
        wait_until(lambda: pixels.differing_pixels(session.output(), before) > 2000,
                   "the output to move")
        session.freeze("LEFT")
        passed, seen, screen = self._equals("LEFT")
        moved = pixels.differing_pixels(session.output(screen), before)
        self._stop("keep-up", "let the programs run, then hold them",
                   f"{seen} ({moved} from before)", passed and moved > 2000, screen)

    def pointer_to_display_2(self, beneath):
        self.session.move_pointer(1280 + 1500, 950)
        passed, seen, screen = self._equals_scaled("RIGHT", beneath)
        self._stop("pointer-to-display-2",
                   "pointer to display 2, where the output itself lies",
                   f"{seen} from what lies beneath", passed, screen)

    def pointer_back(self):
        session = self.session
        session.thaw("RIGHT")
        session.move_pointer(200, 700)
        # The window takes the display's proportions when it turns to it: size it after that.
        self._equals_scaled("LEFT", session.display("LEFT"))
        session.place_output(*FULL)
        passed, seen, screen = self._equals("LEFT")
        self._stop("pointer-back", "pointer back to display 1", seen, passed, screen)

    def output_on_shared_display(self):
        session = self.session
        beneath = session.display("LEFT")
        session.place_output(*HALF)
        passed, seen, screen = self._equals_scaled("LEFT", beneath)
        self._stop("output-on-shared-display", "output window onto display 1",
                   f"{seen} from what lies beneath", passed, screen)

    def kill_a_program(self):
        session = self.session
        session.place_output(*FULL)
        before = session.display("LEFT")
        session.kill_terminal("display 1")
        passed, seen, screen = self._equals("LEFT")
        gone = pixels.differing_pixels(session.display("LEFT", screen), before)
        self._stop("kill-a-program", "kill the terminal on display 1",
                   f"{seen} ({gone} with the terminal)", passed and gone > 100000, screen)

    def tick_a_window(self):
        """That of the terminal on display 2, which then nothing covers."""
        session = self.session
        session.freeze("RIGHT")
        session.choose_in_menu("display 2")
        self.report.picture("menu", session.menu)
        content = session.content("display 2")
        before = session.display("LEFT").cut(0, 0, content.width, content.height)
        # Once the window has taken the terminal's proportions, its very size.
        wait_until(lambda: self._has_proportions(content), "the output's new proportions")
        session.place_output(*AWAY, content.width, content.height)
        passed, seen, screen = self._equals_window("display 2")
        other = pixels.differing_pixels(session.output(screen), before)
        self._stop("tick-a-window", "tick the terminal of display 2 in the menu",
                   f"{seen} ({other} from display 1)", passed and other > 100000, screen)

    def _has_proportions(self, picture):
        """Within the pixel that rounding takes."""
        _, _, width, height = self.session.desktop.geometry(self.session.window)
        return abs(width * picture.height - height * picture.width) <= max(picture.width,
                                                                           picture.height)

    def window_moves(self):
        session = self.session
        before = session.output()
        session.thaw("RIGHT")
        wait_until(lambda: pixels.differing_pixels(session.output(), before) > 2000,
                   "the output to move")
        session.freeze("RIGHT")
        passed, seen, screen = self._equals_window("display 2")
        moved = pixels.differing_pixels(session.output(screen), before)
        self._stop("window-moves", "let the terminal run, then hold it",
                   f"{seen} ({moved} from before)", passed and moved > 2000, screen)

    def kill_the_shared_program(self):
        self.session.kill_terminal("display 2")
        passed, seen, screen = self._settled(self._is_placeholder)
        self._stop("kill-the-shared-program", "kill the terminal whose window is shared",
                   seen, passed, screen)

    def back_to_the_pointer(self):
        session = self.session
        session.choose_in_menu("mouse")
        session.press("space")
        self._equals_scaled("LEFT", session.display("LEFT"))
        session.place_output(*FULL)
        passed, seen, screen = self._equals("LEFT")
        self._stop("back-to-the-pointer", "follow the pointer again, chosen in the menu, "
                   "and start", seen, passed, screen)

    def stop(self):
        session = self.session
        session.choose_in_menu("session")
        session.thaw("LEFT")
        session.move_pointer(400, 400)
        passed, seen, screen = self._settled(self._is_placeholder)
        shown = session.output(screen)
        self._let_display_1_move()
        screen = session.screen()
        count = pixels.differing_pixels(session.output(screen), shown)
        self._stop("stop", "stop from the window's menu, let display 1 move on",
                   f"{seen}, {count} pixels have changed since",
                   passed and count == 0, screen)

    def _let_display_1_move(self):
        before = self.session.display("LEFT")
        wait_until(lambda: pixels.differing_pixels(self.session.display("LEFT"), before) > 100,
                   "display 1 to move")

    def start(self):
        session = self.session
        session.press("space")
        session.freeze("LEFT")
        passed, seen, screen = self._equals("LEFT")
        self._stop("start", "start with the space key", seen, passed, screen)

    def unplug_the_shared_display(self):
        self.session.desktop.unplug("LEFT")
        passed, seen, screen = self._settled(self._is_placeholder)
        self._stop("unplug", "pull out the shared display", seen, passed, screen)

    def start_again(self):
        session = self.session
        session.desktop.plug("LEFT")
        session.press("space")
        session.place_output(*FULL)
        passed, seen, screen = self._equals("LEFT")
        self._stop("start-again", "plug it in and start again", seen, passed, screen)

    def _is_out_of_sight(self):
        x, y, width, height = self.session.desktop.geometry(self.session.window)
        return x >= FRAMEBUFFER[0] or y >= FRAMEBUFFER[1] or x + width <= 0 or y + height <= 0

    def hide_and_show(self):
        session = self.session
        session.desktop.run("xdotool", "key", "ctrl+super+h")
        wait_until(self._is_out_of_sight, "the output to leave the desktop")
        self.report.picture("hidden", session.screen())
        session.desktop.run("xdotool", "key", "ctrl+super+h")
        wait_until(lambda: not self._is_out_of_sight(), "the output to come back")
        passed, seen, screen = self._equals("LEFT")
        self._stop("hide-and-show", "hide the output by its hot key, and show it again", seen,
                   passed, screen)

    def open_picker(self):
        session = self.session
        session.desktop.run("xdotool", "key", "ctrl+super+p")
        wait_until(lambda: session.desktop.find_window(PICKER), "the picker")
        session.wait_for_rest(1.0)
        self.report.picture("picker", session.screen())
        session.desktop.run("xdotool", "key", "Escape")
        wait_until(lambda: not session.desktop.find_window(PICKER), "the picker to go")
        passed, seen, screen = self._equals("LEFT")
        self._stop("picker", "open the picker by its hot key, and close it", seen, passed,
                   screen)

    def _equals_without_panel(self):
        """The panel is on the display, and not in what the others see."""
        left, top, _, _ = DISPLAYS["LEFT"]
        x, y, width, height = self.panel.place()
        place = x - left, y - top, width, height

        def matches(screen):
            output, source = self.session.output(screen), self.session.display("LEFT", screen)
            holes = [self.session.pointer_hole("LEFT", (output.width, output.height)),
                     *pixels.frame_holes(output.width, output.height)]
            count = pixels.differing_pixels(output, source, [place, *holes])
            hidden = pixels.differing_pixels(output.cut(*place), source.cut(*place))
            return count == 0 and 2 * hidden > width * height, (
                f"{output.width}x{output.height}, {count} pixels differ beside the panel of "
                f"{width}x{height}, {hidden} where it lies")
        return self._settled(matches)

    def open_panel(self):
        # Held, it could not draw itself anew where the panel covers it.
        self.session.end_clock()
        self.panel.start_tray()
        self.panel.open()
        passed, seen, screen = self._equals_without_panel()
        self._stop("panel", "click the icon in the tray, which opens the panel", seen, passed,
                   screen)

    def stop_and_start_in_panel(self):
        self.panel.click(panel.SESSION)
        stopped, said, screen = self._settled(self._is_placeholder)
        self.report.picture("stopped-in-panel", screen)
        self.session.desktop.run("xdotool", "click", "1")
        wait_until(lambda: not self._is_placeholder(self.session.screen())[0], "the start")
        self.session.place_output(*FULL)
        passed, seen, screen = self._equals_without_panel()
        self._stop("start-in-panel", "stop and start by clicks in the panel",
                   f"{said}, then {seen}", stopped and passed, screen)

    def tick_two_windows(self):
        """In the picker, which the panel opens and goes. The terminals, started anew, are the last
        two."""
        session = self.session
        session.desktop.run("xdotool", "key", "Escape")
        wait_until(lambda: not self.panel.find(), "the panel to go")
        session.start_terminals()
        for title in session.terminals:
            wait_until(lambda each=title: session.desktop.find_window(each), f"the window {title}")
        session.freeze("LEFT", "RIGHT")
        self.panel.open()
        self.panel.click(panel.PICKER)
        wait_until(lambda: session.desktop.find_window(PICKER), "the picker")
        wait_until(lambda: not self.panel.find(), "the panel to go")
        session.wait_for_rest(1.0)
        for key in ("End", "space", "Left", "space"):
            session.desktop.run("xdotool", "key", key)
            session.wait_for_rest(1.0)
        self.report.picture("picker", session.screen())
        session.desktop.run("xdotool", "key", "Escape")
        wait_until(lambda: not session.desktop.find_window(PICKER), "the picker to go")
        self._turn_to("display 2")
        self._see_window("display 2", AWAY, "tick-two-windows",
                         "open the picker from the panel, tick both terminals, turn to one")

    def turn_to_another_window(self):
        self._turn_to("display 1")
        self._see_window("display 1", ASIDE, "turn-to-another-window", "turn to the other one")

    def close_a_shared_window(self):
        self._turn_to("display 1")
        self.session.close_terminal("display 1")
        self._see_window("display 2", AWAY, "close-a-shared-window",
                         "close that one, the other is still ticked")

    def _turn_to(self, title):
        desktop = self.session.desktop
        desktop.run("xdotool", "windowactivate", "--sync", desktop.find_window(title))

    def _see_window(self, title, place, name, done):
        """In the output, put to this place of the screen with the window's own size, over all."""
        content = self.session.content(title)
        wait_until(lambda: self._has_proportions(content), "the output's new proportions")
        self.session.place_output(*place, content.width, content.height)
        self.session.desktop.run("xdotool", "windowraise", self.session.window)
        passed, seen, screen = self._equals_window(title)
        self._stop(name, done, seen, passed, screen)

    def quit(self):
        session = self.session
        self.panel.open()
        self.report.picture("quit", session.screen())
        self.panel.click(panel.QUIT)
        wait_until(lambda: session.kestrove.poll() is not None, "the program to end")
        code = session.kestrove.returncode
        left = [each for each in ("kestrove", PICKER) if session.desktop.find_window(each)]
        screen = session.screen()
        framed = pixels.is_framed(session.content("display 2", screen))
        self.report.stop("quit", "click the icon again, and quit in the panel",
                         f"exit code {code}, {len(left)} windows left"
                         f"{', frame LEFT' if framed else ''}",
                         code == 0 and not left and not framed, screen)
