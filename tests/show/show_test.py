#!/usr/bin/env python3
"""kxhost show for real: a virtual X server, a real window, pointer input from xdotool.

1. live_panel.kxp, the pack's own widgets: drags the skin knob (plainly, then with Ctrl held), clicks a
   row of the list box, hovers over the knob, edits the text entry (confirmed with Enter, then cancelled
   with Escape); checks the traffic kxhost prints, then compares a screenshot of the window with a
   snapshot `kxhost run` makes after the same pointer events and answers (its expect-image tolerance).
2. A patch with --play: its scenario starts a GUI timer, which must keep running in
   the window's loop, and opens a file requester's dialog, whose proposed file Enter chooses.
Each run ends by closing the window, after which kxhost must report that nothing was left behind.

Exits 77 (skipped) when Xvfb, xdotool or xwd is missing or no X server starts.
"""
import argparse
import os
import re
import struct
import subprocess
import sys
import threading
import time
import zlib

SKIP = 77
HERE = os.path.dirname(os.path.abspath(__file__))
BACKGROUND = (0x2A, 0x4C, 0x7E)  # the panels' colour, drawn by no module
PANEL = (240, 140)  # live_panel.kxp's panel size


class Failed(Exception):
    pass


def skip(why):
    print("SKIPPED: " + why)
    sys.exit(SKIP)


def start_x_server():
    """Xvfb on the first free display number; returns (process, display).

    -noreset: by default the server resets whenever its last client leaves, and a kxhost (or xdotool)
    connecting while it does is refused, as if there were no display at all."""
    read_end, write_end = os.pipe()
    try:
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "640x480x24", "-nolisten", "tcp", "-noreset"],
            pass_fds=[write_end], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    except OSError as e:
        skip("cannot start Xvfb (%s)" % e)
    os.close(write_end)
    number = b""
    deadline = time.time() + 10
    while not number.endswith(b"\n") and time.time() < deadline:
        chunk = os.read(read_end, 16)
        if not chunk:
            break
        number += chunk
    os.close(read_end)
    if not number.strip().isdigit():
        server.kill()
        skip("Xvfb did not start a display")
    return server, ":" + number.decode().strip()


class Show:
    """kxhost show with its printed lines collected as they come."""

    def __init__(self, args, env):
        self.lines = []
        self.proc = subprocess.Popen(args, env=env, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.err = []
        self.readers = [threading.Thread(target=self._read, args=(stream, into), daemon=True)
                        for stream, into in ((self.proc.stdout, self.lines), (self.proc.stderr, self.err))]
        for reader in self.readers:
            reader.start()

    @staticmethod
    def _read(stream, into):
        for line in stream:
            into.append(line.rstrip("\n"))

    def wait_for(self, pattern, after=0, timeout=30):
        """Index of the first line from `after` on matching the pattern."""
        found = self.seen(pattern, after, timeout)
        if found is None:
            raise Failed("no line matching %r; kxhost printed:\n%s\n%s" % (pattern, self.output(), "\n".join(self.err)))
        return found

    def seen(self, pattern, after=0, timeout=30):
        """As wait_for, but None when no such line comes in time."""
        deadline = time.time() + timeout
        ended = False
        while time.time() < deadline:
            for i in range(after, len(self.lines)):
                if re.search(pattern, self.lines[i]):
                    return i
            if ended:
                break
            ended = self.proc.poll() is not None  # one more look at what it printed last
            time.sleep(0.05)
        return None

    def output(self):
        return "\n".join(self.lines)

    def finish(self, timeout=15):
        try:
            code = self.proc.wait(timeout)
        except subprocess.TimeoutExpired:
            self.proc.kill()
            raise Failed("kxhost did not end after its window was closed:\n" + self.output())
        for reader in self.readers:  # up to the last line printed
            reader.join(timeout)
        return code


class Desktop:
    def __init__(self, display):
        self.env = dict(os.environ, DISPLAY=display)

    def xdo(self, *args):
        done = subprocess.run(["xdotool", *map(str, args)], env=self.env, capture_output=True, text=True, timeout=15)
        if done.returncode != 0:
            raise Failed("xdotool %s: %s" % (" ".join(map(str, args)), done.stderr))
        return done.stdout

    def window(self, title, show, timeout=30):
        deadline = time.time() + timeout
        while time.time() < deadline:
            found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title], env=self.env,
                                   capture_output=True, text=True, timeout=15).stdout.split()
            if found:
                return found[0]
            time.sleep(0.1)
        raise Failed("no window titled %r appeared; kxhost %s:\n%s\n%s" % (
            title, "is running" if show.proc.poll() is None else "exited with %d" % show.proc.returncode,
            show.output(), "\n".join(show.err)))

    def screenshot(self, window):
        """The window's pixels as rows of (r, g, b), from xwd's dump (24-bit colour, 32 bits a pixel)."""
        data = subprocess.run(["xwd", "-silent", "-id", window], env=self.env, capture_output=True, timeout=15,
                              check=True).stdout
        h = struct.unpack(">25I", data[:100])
        header, width, height, byte_order, bits, row_bytes = h[0], h[4], h[5], h[7], h[11], h[12]
        masks, colours = h[14:17], h[19]
        if bits != 32:
            raise Failed("xwd wrote %d bits a pixel; this test reads 32" % bits)
        shifts = [(m & -m).bit_length() - 1 for m in masks]
        start = header + colours * 12
        order = "<" if byte_order == 0 else ">"
        rows = []
        for y in range(height):
            line = struct.unpack_from("%s%dI" % (order, width), data, start + y * row_bytes)
            rows.append([tuple((p & m) >> s for m, s in zip(masks, shifts)) for p in line])
        return rows


def panel_origin(rows, size):
    """The top-left corner of the panel: a background pixel whose panel-sized box has background corners."""
    w, h = size
    for y in range(len(rows) - h + 1):
        for x in range(len(rows[0]) - w + 1):
            if (rows[y][x] == BACKGROUND and rows[y][x + w - 1] == BACKGROUND and rows[y + h - 1][x] == BACKGROUND
                    and rows[y + h - 1][x + w - 1] == BACKGROUND):
                return x, y
    return None


def write_png(path, rows):
    raw = b"".join(b"\0" + bytes(c for p in row for c in (*p, 255)) for row in rows)

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0))
                + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))


def set_up_lines(patch):
    """The patch's lines before its scenario, with its resources folder made absolute."""
    lines = []
    for line in open(patch).read().splitlines():
        if line.strip() == "scenario":
            break
        words = line.split()
        if words[:1] == ["resources"]:
            line = "resources " + os.path.normpath(os.path.join(os.path.dirname(patch), words[1]))
        lines.append(line)
    return lines


def close(desktop, show, window):
    desktop.xdo("windowfocus", "--sync", window)
    desktop.xdo("key", "ctrl+q")
    code = show.finish()
    if "-- closed: every module and host object released" not in show.output() or code != 0:
        raise Failed("closing the window (exit %d):\n%s\n%s" % (code, show.output(), "\n".join(show.err)))


def live_panel(desktop, a):
    patch = os.path.join(HERE, "live_panel.kxp")
    show = Show([a.kxhost, "--bundle", a.bundle, "show", patch], desktop.env)
    try:
        show.wait_for(r"^-- live")
        window = desktop.window("^kxhost: live_panel\\.kxp$", show)
        origin = None
        deadline = time.time() + 30
        while origin is None and time.time() < deadline:  # mapped is not yet drawn
            origin = panel_origin(desktop.screenshot(window), PANEL)
            time.sleep(0.05)
        if origin is None:
            raise Failed("the panel never showed in the window")
        ox, oy = origin

        def at(x, y):
            return ox + x, oy + y

        def drag(x, y1, y2):
            desktop.xdo("mousemove", "--window", window, *at(x, y1), "mousedown", 1)
            for y in range(y1 - 10, y2 - 1, -10):
                desktop.xdo("mousemove", "--window", window, *at(x, y))
            desktop.xdo("mouseup", 1)

        # The knob: 30 pixels up raise it by 0.15; 50 more with Ctrl (fine) by 0.05 only.
        drag(44, 60, 30)
        line = show.wait_for(r"^  pointer up 44,30 -> knob$")
        desktop.xdo("keydown", "ctrl")
        drag(44, 60, 10)
        desktop.xdo("keyup", "ctrl")
        line = show.wait_for(r"^  pointer up 44,10 flags 0x20010 -> knob$", line)
        # The list box: a click on its third row.
        desktop.xdo("mousemove", "--window", window, *at(160, 58), "click", 1)
        line = show.wait_for(r"^  pointer up 160,58 -> list$", line)
        # A move without a button over the knob: it reports where, in its own coordinates.
        desktop.xdo("mousemove", "--window", window, *at(50, 40))
        line = show.wait_for(r'^  knob\."Pointer Y" -> 20\.0$', show.wait_for(r'^  knob\."Pointer X" -> 30\.0$', line))
        # The text entry: typed over its text and confirmed, then typed and cancelled.
        for typed, end, answer in (("Triangle", "Return", r'^  field\.Text -> "Triangle"$'),
                                   ("Pulse", "Escape", r"^  cancelled$")):
            desktop.xdo("mousemove", "--window", window, *at(60, 120), "click", 1)
            line = show.wait_for(r"^  shown, waiting for an answer: text editor '", line)
            # Typed into the text field once it is on screen (light, where the module draws dark).
            deadline = time.time() + 30
            while min(desktop.screenshot(window)[oy + 120][ox + 120]) < 160:
                if time.time() > deadline:
                    raise Failed("no text field showed over the module")
                time.sleep(0.05)
            desktop.xdo("windowfocus", "--sync", window)
            desktop.xdo("type", "--delay", 20, typed)
            desktop.xdo("key", end)
            line = show.wait_for(answer, line)

        trace = show.output() + "\n"
        moves = r'((?:  knob\."Animation Position" -> \S+\n)+)  knob\."Mouse Down" -> false\n'
        expected = [r'knob\."Mouse Down" -> true\n  pointer down 44,60 -> knob\n' + moves + r"  pointer up 44,30 -> knob\n",
                    r'knob\."Mouse Down" -> true\n  pointer down 44,60 flags 0x20010 -> knob\n' + moves
                    + r"  pointer up 44,10 flags 0x20010 -> knob\n",
                    r'list\.Choice -> 2\n  list\."Pointer Down" -> true\n  pointer down 160,58 -> list\n'
                    r'  list\."Pointer Down" -> false\n  pointer up 160,58 -> list\n']
        found = [re.search(e, trace) for e in expected]
        if not all(found):
            raise Failed("the traffic lacks %r:\n%s" % (expected[found.index(None)], trace))
        for drag_found, end in zip(found, (0.65, 0.70)):
            last = float(drag_found.group(1).split()[-1])
            if abs(last - end) > 0.002:
                raise Failed("a knob drag ended at %g, not %g (Ctrl is the fine modifier):\n%s" % (last, end, trace))
        if re.search(r'^(-- scenario|  list\.Choice -> 3|  knob\."Animation Position" -> 0\.0)$', trace, re.M):
            raise Failed("the scenario was played without --play:\n" + trace)

        # The same pointer events through `kxhost run`: the same pins, and the same pixels.
        replay = os.path.join(a.work, "live_panel_replay.kxp")
        with open(replay, "w") as f:
            f.write("\n".join(set_up_lines(patch) + [
                "scenario",
                "drag 44 60 44 30 3", "drag 44 60 44 10 5 0x20010",
                "pointer down 160 58", "pointer up 160 58", "pointer move 50 40 0",
                "pointer down 60 120", "pointer up 60 120", 'text-edit answer "Triangle"',
                "pointer down 60 120", "pointer up 60 120", "text-edit cancel",
                'expect knob."Animation Position" 0.70 within 0.002', "expect list.Choice 2",
                'expect knob."Pointer X" 30', 'expect knob."Pointer Y" 20', 'expect field.Text "Triangle"',
                "snapshot live_panel_replay", "expect-image live_panel_window.png"]) + "\n")
        deadline = time.time() + 30
        while True:  # a repaint may still be on its way
            rows = desktop.screenshot(window)
            write_png(os.path.join(a.work, "live_panel_window.png"),
                      [row[ox:ox + PANEL[0]] for row in rows[oy:oy + PANEL[1]]])
            run = subprocess.run([a.kxhost, "--bundle", a.bundle, "run", replay, "--out", a.work],
                                 capture_output=True, text=True, timeout=60)
            if run.returncode == 0 or time.time() > deadline:
                break
            time.sleep(0.1)
        if run.returncode != 0:
            raise Failed("the window and `kxhost run` differ (%s):\n%s%s" % (a.work, run.stdout, run.stderr))
        close(desktop, show, window)
    finally:
        if show.proc.poll() is None:
            show.proc.kill()


def real_panel(desktop, a):
    chosen = os.path.join(HERE, "live_panel.kxp")
    patch = os.path.join(a.work, "real_panel.kxp")
    with open(patch, "w") as f:
        f.write("\n".join([
            'panel 160 40 "#2A4C7E"',
            "instance osc KX_GUITimer", "set osc.Mode 5", 'set osc."Time 1 (ms)" 25', 'set osc."Time 2 (ms)" 25',
            "instance req KX_FileReq", 'set req.Extensions "kxp"', 'set req."File Name" "%s"' % chosen,
            "scenario",
            'set osc."Trigger R" true', "set req.Open true", "set req.Open false"]) + "\n")
    show = Show([a.kxhost, "--bundle", a.bundle, "show", "--play", patch], desktop.env)
    try:
        window = desktop.window("^kxhost: real_panel\\.kxp$", show)
        line = show.wait_for(r"^-- passed$")
        # The oscillator changes every 25 ms on the window's loop: eight changes come within a second.
        for _ in range(8):
            line = show.wait_for(r"^  osc\.Output -> ", line + 1, timeout=5)
        if not re.search(r"shown, waiting for an answer: open dialog \[kxp\] initial 'live_panel\.kxp'",
                         show.output()):
            raise Failed("the file requester's dialog was not shown:\n" + show.output())
        dialog = desktop.window("^Open file$", show)
        # The chooser lists its folder and selects the file after it shows: Enter opens nothing before.
        answered = r"^  answered '%s'$" % re.escape(chosen)
        deadline = time.time() + 30
        while time.time() < deadline:
            try:
                desktop.xdo("windowfocus", "--sync", dialog)
                desktop.xdo("key", "Return")
            except Failed:
                pass  # closed meanwhile: answered
            if show.seen(answered, timeout=0.5) is not None:
                break
        line = show.wait_for(answered)
        show.wait_for(r'^  req\."File Chosen" -> true$', line)
        close(desktop, show, window)
    finally:
        if show.proc.poll() is None:
            show.proc.kill()


def main():
    p = argparse.ArgumentParser()
    p.add_argument("--kxhost", required=True)
    p.add_argument("--bundle", required=True)
    p.add_argument("--work", required=True)
    a = p.parse_args()
    for tool in ("Xvfb", "xdotool", "xwd"):
        if not any(os.access(os.path.join(d, tool), os.X_OK) for d in os.environ.get("PATH", "").split(os.pathsep)):
            skip("%s is not installed (scripts/setup.sh installs it)" % tool)
    os.makedirs(a.work, exist_ok=True)
    server, display = start_x_server()
    desktop = Desktop(display)
    # Software GL under a virtual server leaks at unload, which LeakSanitizer reports; GTK's cairo
    # renderer puts the same pixels on screen. No accessibility bus or settings service runs here either.
    desktop.env.update(GSK_RENDERER="cairo", GDK_DEBUG="gl-disable", GTK_A11Y="none", GSETTINGS_BACKEND="memory")
    try:
        live_panel(desktop, a)
        real_panel(desktop, a)
    except Failed as e:
        print("FAILED: %s" % e)
        return 1
    finally:
        server.kill()
        server.wait()
    print("kxhost show: traffic, pixels, timers and release all as expected")
    return 0


if __name__ == "__main__":
    sys.exit(main())
