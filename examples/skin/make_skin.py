#!/usr/bin/env python3
"""Draws the demo skin: film strips for a knob (vertical drag), a rotary dial, vertical and horizontal
sliders, a push button, a latching toggle switch, a stepping waveform selector, an endless jog wheel, the
handle of a polar picker, the handle of a joystick and a segmented level meter; an LED as a BMP with a
_mask.bmp beside it; a metadata .txt beside each
image; and the text-style file global.txt.

Only the standard library is used: images are rasterised here (anti-aliased by supersampling) and
written as PNG (zlib + struct) and 24-bit BMP. Run it from anywhere; it writes beside itself:

    python3 examples/skin/make_skin.py
"""

import math
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
SS = 4  # supersampling per axis


class Image:
    """RGBA, straight alpha, 0..255 per channel."""

    def __init__(self, width, height):
        self.width, self.height = width, height
        self.px = [[(0, 0, 0, 0)] * width for _ in range(height)]

    def paint(self, x0, y0, w, h, shader):
        """shader(x, y) -> (r, g, b, a) or None at sub-pixel centres in image coordinates; the samples
        of each pixel are averaged and composited over what is there."""
        for y in range(y0, y0 + h):
            for x in range(x0, x0 + w):
                acc = [0.0, 0.0, 0.0, 0.0]
                for sy in range(SS):
                    for sx in range(SS):
                        c = shader(x + (sx + 0.5) / SS, y + (sy + 0.5) / SS)
                        if c:
                            a = c[3] / 255.0
                            acc[0] += c[0] * a
                            acc[1] += c[1] * a
                            acc[2] += c[2] * a
                            acc[3] += a
                n = SS * SS
                a = acc[3] / n
                if a <= 0:
                    continue
                src = (acc[0] / acc[3], acc[1] / acc[3], acc[2] / acc[3])
                dr, dg, db, da = self.px[y][x]
                da /= 255.0
                oa = a + da * (1 - a)
                out = [(src[i] * a + (dr, dg, db)[i] * da * (1 - a)) / oa for i in range(3)]
                self.px[y][x] = (round(out[0]), round(out[1]), round(out[2]), round(oa * 255))

    def write_png(self, path):
        raw = b"".join(b"\x00" + bytes(v for p in row for v in p) for row in self.px)

        def chunk(kind, data):
            body = kind + data
            return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

        with open(path, "wb") as f:
            f.write(b"\x89PNG\r\n\x1a\n")
            f.write(chunk(b"IHDR", struct.pack(">IIBBBBB", self.width, self.height, 8, 6, 0, 0, 0)))
            f.write(chunk(b"IDAT", zlib.compress(raw, 9)))
            f.write(chunk(b"IEND", b""))

    def write_bmp(self, path, channel=None):
        """24-bit bottom-up BMP of the colours (alpha dropped), or of one grey channel: 'alpha'."""
        pad = (4 - self.width * 3 % 4) % 4
        rows = []
        for row in reversed(self.px):
            data = bytearray()
            for r, g, b, a in row:
                if channel == "alpha":
                    data += bytes((a, a, a))
                else:
                    data += bytes((b, g, r))
            rows.append(bytes(data) + b"\x00" * pad)
        pixels = b"".join(rows)
        header = struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54)
        info = struct.pack("<IiiHHIIiiII", 40, self.width, self.height, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
        with open(path, "wb") as f:
            f.write(header + info + pixels)


def mix(a, b, t):
    return tuple(round(a[i] + (b[i] - a[i]) * t) for i in range(len(a)))


def disc(cx, cy, r, colour):
    return lambda x, y: colour if (x - cx) ** 2 + (y - cy) ** 2 <= r * r else None


def knob(frames=32, size=48):
    img = Image(size, size * frames)
    c = size / 2
    for f in range(frames):
        top = f * size
        # Body: a vertical gradient disc with a darker rim.
        img.paint(0, top, size, size, lambda x, y, t=top: (
            mix((70, 74, 82), (30, 32, 36), (y - t) / size) + (255,)
            if (x - c) ** 2 + (y - t - c) ** 2 <= (c - 2) ** 2 else None))
        img.paint(0, top, size, size, lambda x, y, t=top: (
            (200, 200, 210, 255) if (c - 5) ** 2 <= (x - c) ** 2 + (y - t - c) ** 2 <= (c - 4) ** 2 else None))
        # Indicator: from -135 degrees (frame 0) to +135 degrees (last frame), 0 pointing up.
        angle = math.radians(-135 + 270 * f / (frames - 1))
        dx, dy = math.sin(angle), -math.cos(angle)

        def pointer(x, y, t=top, dx=dx, dy=dy):
            px, py = x - c, y - t - c
            along = px * dx + py * dy
            across = abs(px * dy - py * dx)
            return (255, 170, 40, 255) if 4 <= along <= c - 7 and across <= 1.6 else None

        img.paint(0, top, size, size, pointer)
    return img


def slider(width=24, height=100, handle=20):
    """Two frames: 0 the handle at its resting place (the top), 1 the track behind it."""
    img = Image(width, height * 2)
    img.paint(0, 0, width, handle, lambda x, y: (
        mix((230, 230, 235), (150, 150, 160), y / handle) + (255,) if 2 <= x <= width - 2 and 1 <= y <= handle - 1 else None))
    img.paint(0, 0, width, handle, lambda x, y: (40, 40, 40, 255) if abs(y - handle / 2) <= 1 and 5 <= x <= width - 5 else None)
    img.paint(0, height, width, height, lambda x, y: (
        (20, 20, 24, 255) if abs(x - width / 2) <= 2.5 and height + 8 <= y <= 2 * height - 8 else None))
    return img


def button(width=60, height=24):
    img = Image(width, height * 2)
    for f, (top_c, bottom_c) in enumerate((((90, 94, 104), (50, 52, 58)), ((60, 170, 90), (20, 110, 50)))):
        top = f * height

        def body(x, y, t=top, a=top_c, b=bottom_c):
            r = 5
            lx, ly = x, y - t
            qx = max(r - lx, 0, lx - (width - r))
            qy = max(r - ly, 0, ly - (height - r))
            return mix(a, b, ly / height) + (255,) if qx * qx + qy * qy <= r * r and 0 <= ly <= height else None

        img.paint(0, top, width, height, body)
    return img


def clamp01(t):
    return 0.0 if t < 0 else 1.0 if t > 1 else t


def seg_dist(px, py, ax, ay, bx, by):
    """Distance from (px, py) to the segment a-b."""
    vx, vy = bx - ax, by - ay
    wx, wy = px - ax, py - ay
    length2 = vx * vx + vy * vy
    t = clamp01((wx * vx + wy * vy) / length2) if length2 else 0.0
    dx, dy = wx - t * vx, wy - t * vy
    return math.sqrt(dx * dx + dy * dy)


def in_rounded_rect(x, y, x0, y0, x1, y1, r):
    qx = max(x0 + r - x, 0, x - (x1 - r))
    qy = max(y0 + r - y, 0, y - (y1 - r))
    return x0 <= x <= x1 and y0 <= y <= y1 and qx * qx + qy * qy <= r * r


def polyline(points, width, colour, top=0):
    """A shader for a line through points (frame coordinates), moved down by top."""
    xs = [p[0] for p in points]
    ys = [p[1] for p in points]
    x0, x1, y0, y1 = min(xs) - width, max(xs) + width, min(ys) - width, max(ys) + width
    segments = list(zip(points, points[1:]))

    def shade(x, y):
        ly = y - top
        if not (x0 <= x <= x1 and y0 <= ly <= y1):
            return None
        for (ax, ay), (bx, by) in segments:
            if seg_dist(x, ly, ax, ay, bx, by) <= width / 2:
                return colour
        return None

    return shade


AMBER = (255, 170, 40)
RIDGES = 18


def dial(frames=64, size=56):
    """A rotary knob: a fixed scale of ticks, a lit arc up to the pointer, a cap turning from -135 to +135
    degrees (0 pointing up)."""
    img = Image(size, size * frames)
    c = size / 2
    ticks = [math.radians(-135 + 27 * i) for i in range(11)]
    for f in range(frames):
        top = f * size
        turn = -135 + 270 * f / (frames - 1)

        def polar(x, y, t=top):
            px, py = x - c, y - t - c
            return math.sqrt(px * px + py * py), math.degrees(math.atan2(px, -py))

        def scale(x, y):
            r, a = polar(x, y)
            if not 23.5 <= r <= 27.5:
                return None
            for i, t in enumerate(ticks):
                along = math.radians(a) - t
                if abs(math.sin(along)) * r <= 0.7 and math.cos(along) > 0 and (r <= 26 or i in (0, 5, 10)):
                    return (150, 156, 166, 255)
            return None

        def arc(x, y, t=turn):
            r, a = polar(x, y)
            return AMBER + (235,) if 20.6 <= r <= 22.2 and -135 <= a <= t else None

        def shadow(x, y, t=top):
            return (0, 0, 0, 110) if (x - c) ** 2 + (y - t - c - 1.2) ** 2 <= 19.5 ** 2 else None

        def body(x, y, t=top):
            r, _ = polar(x, y)
            if r > 18.5:
                return None
            shade = (y - t - c + 18.5) / 37
            if r > 17.3:  # a bevel catching the light at the top
                return mix((150, 156, 168), (40, 42, 48), shade) + (255,)
            if r > 12.5:
                return mix((92, 96, 106), (38, 40, 46), shade) + (255,)
            return mix((44, 46, 52), (82, 86, 96), shade) + (255,)  # the dished cap, lit from below

        theta = math.radians(turn)
        dx, dy = math.sin(theta), -math.cos(theta)
        pointer = polyline([(c + 4 * dx, c + 4 * dy), (c + 16 * dx, c + 16 * dy)], 2.6, (255, 214, 140, 255), top)
        for shader in (scale, arc, shadow, body, pointer):
            img.paint(0, top, size, size, shader)
    return img


def hslider(width=100, height=24, handle=20):
    """Two frames like the vertical slider's: 0 the handle at rest (the left end), 1 the track."""
    img = Image(width, height * 2)
    img.paint(0, 0, handle, height, lambda x, y: (
        mix((230, 230, 235), (150, 150, 160), y / height) + (255,)
        if in_rounded_rect(x, y, 1, 1.5, handle - 1, height - 1.5, 3) else None))
    img.paint(0, 0, handle, height, lambda x, y: (
        (40, 40, 40, 255) if abs(x - handle / 2) <= 1 and 5 <= y <= height - 5 else None))
    img.paint(0, height, width, height, lambda x, y: (
        (20, 20, 24, 255) if abs(y - height * 1.5) <= 2.5 and 8 <= x <= width - 8 else None))
    img.paint(0, height, width, height, lambda x, y: (
        (110, 114, 122, 255) if any(abs(x - (10 + 10 * i)) <= 0.6 for i in range(9))
        and (height + 2 <= y <= height + 6 or 2 * height - 6 <= y <= 2 * height - 2) else None))
    return img


def toggle_switch(width=28, height=52):
    """Two frames: 0 the lever down (off), 1 the lever up (on) with its lamp lit."""
    img = Image(width, height * 2)
    cx, cy = width / 2, height / 2 + 2
    for f in range(2):
        top = f * height
        img.paint(0, top, width, height, lambda x, y, t=top: (
            mix((74, 78, 88), (38, 40, 46), (y - t) / height) + (255,)
            if in_rounded_rect(x, y - t, 0.5, 0.5, width - 0.5, height - 0.5, 4) else None))
        lamp = (90, 230, 120) if f else (36, 62, 44)
        img.paint(0, top, width, height, disc(cx, top + 5.5, 2.4, lamp + (255,)))
        img.paint(0, top, width, height, lambda x, y, t=top: (
            mix((186, 190, 198), (96, 100, 110), (y - t - cy + 8) / 16) + (255,)
            if (x - cx) ** 2 + (y - t - cy) ** 2 <= 8 ** 2 else None))
        img.paint(0, top, width, height, disc(cx, top + cy, 4.6, (22, 22, 26, 255)))
        tip = cy - 15 if f else cy + 15
        img.paint(0, top, width, height, lambda x, y, t=top, tip=tip: (
            mix((235, 236, 240), (120, 124, 132), abs(x - cx) / 3) + (255,)
            if seg_dist(x, y - t, cx, cy, cx, tip) <= 2.6 else None))
        img.paint(0, top, width, height, lambda x, y, t=top, tip=tip: (
            mix((250, 250, 252), (130, 134, 142), clamp01(((x - cx + 1.5) ** 2 + (y - t - tip + 1.5) ** 2) / 20)) + (255,)
            if (x - cx) ** 2 + (y - t - tip) ** 2 <= 4.2 ** 2 else None))
    return img


def selector(width=64, height=40):
    """A stepping waveform selector, one frame per shape (sine, triangle, saw, square) with a row of
    position dots; each click steps to the next and wraps round."""
    shapes = (
        lambda u: math.sin(2 * math.pi * u),
        lambda u: 1 - 4 * abs(u - 0.25) if u < 0.75 else 4 * u - 4,
        lambda u: 2 * u - 1,
        lambda u: 1 if u < 0.5 else -1,
    )
    img = Image(width, height * len(shapes))
    for f, shape in enumerate(shapes):
        top = f * height
        img.paint(0, top, width, height, lambda x, y, t=top: (
            mix((64, 66, 74), (40, 42, 48), (y - t) / height) + (255,)
            if in_rounded_rect(x, y - t, 0.5, 0.5, width - 0.5, height - 0.5, 5) else None))
        img.paint(0, top, width, height, lambda x, y, t=top: (
            mix((10, 16, 16), (22, 32, 30), (y - t) / 30) + (255,)
            if in_rounded_rect(x, y - t, 4, 4, width - 4, 30, 3) else None))
        if f == 3:
            points = [(10, 17), (10, 9), (32, 9), (32, 25), (54, 25), (54, 17)]
        elif f == 2:
            points = [(10, 17), (32, 9), (32, 25), (54, 17)]
        else:
            points = [(10 + 44 * i / 48, 17 - 8 * shape(i / 48)) for i in range(49)]
        img.paint(0, top, width, height, polyline(points, 1.8, AMBER + (255,), top))
        for i in range(len(shapes)):
            colour = AMBER if i == f else (84, 86, 94)
            img.paint(0, top, width, height, disc(width / 2 + (i - 1.5) * 9, top + 35, 1.9, colour + (255,)))
    return img


def jog(frames=49, size=72):
    """An endless jog wheel: a knurled rubber rim round a metal platter with a finger dimple. Frame k is
    turned clockwise by k/(frames - 1) of a turn, so the last frame equals the first and the strip wraps
    without a jump; the light stays fixed while the wheel turns. A frame turns the rim by well under half
    a ridge, so the ridges are seen to move the way the wheel turns."""
    img = Image(size, size * frames)
    c = size / 2
    for f in range(frames):
        top = f * size
        theta = 2 * math.pi * f / (frames - 1)

        def wheel(x, y, t=top, theta=theta):
            px, py = x - c, y - t - c
            r = math.sqrt(px * px + py * py)
            if r > 34.5:
                return None
            light = (py + 34.5) / 69
            if r > 28.5:
                ridge = 0.5 + 0.5 * math.cos(RIDGES * (math.atan2(px, -py) - theta))
                return mix(mix((84, 84, 92), (26, 26, 30), light), (16, 16, 18), 0.55 * ridge) + (255,)
            if r > 27.3:
                return (14, 14, 16, 255)
            # Brushed metal: a soft sheen across the platter from the top left.
            sheen = clamp01(1 - math.hypot(px + 9, py + 9) / 30)
            return mix(mix((160, 164, 174), (88, 91, 100), light), (214, 218, 226), 0.5 * sheen) + (255,)

        def shadow(x, y, t=top):
            return (0, 0, 0, 100) if (x - c) ** 2 + (y - t - c - 1.5) ** 2 <= 35.5 ** 2 else None

        dx, dy = c + 17 * math.sin(theta), c - 17 * math.cos(theta)

        def dimple(x, y, t=top, dx=dx, dy=dy):
            px, py = x - dx, y - t - dy
            r2 = px * px + py * py
            if r2 > 6.5 ** 2:
                return None
            if r2 > 5.6 ** 2:
                return (58, 60, 66, 255)
            return mix((78, 80, 88), (198, 202, 210), clamp01((px + py + 8) / 16)) + (255,)  # lit from below: a hollow

        hub = lambda x, y, t=top: (
            mix((60, 62, 70), (24, 24, 28), (y - t - c + 5) / 10) + (255,)
            if (x - c) ** 2 + (y - t - c) ** 2 <= 5 ** 2 else None)
        for shader in (shadow, wheel, dimple, hub):
            img.paint(0, top, size, size, shader)
    return img


def polar_handle(size=16):
    """The polar picker's handle: a white ring with a dark edge (visible on any background); frame 1,
    for a pressed handle, has a lit centre."""
    img = Image(size, size * 2)
    c = size / 2
    for f in range(2):
        top = f * size
        img.paint(0, top, size, size, disc(c, top + c, 7.4, (16, 16, 20, 230)))
        img.paint(0, top, size, size, lambda x, y, t=top: (
            (244, 244, 248, 255) if 3.4 ** 2 <= (x - c) ** 2 + (y - t - c) ** 2 <= 6.2 ** 2 else None))
        if f:
            img.paint(0, top, size, size, disc(c, top + c, 2.6, AMBER + (255,)))
    return img


def joystick_handle(size=28):
    """The joystick's handle: a glossy red ball in a dark rubber collar, with a soft shadow below it.
    Frame 1, for a held handle, rings the collar with amber light. The metadata pads each frame by 2
    pixels all round, so the ball keeps clear of the pad's edges."""
    img = Image(size, size * 2)
    c = size / 2
    for f in range(2):
        top = f * size
        img.paint(0, top, size, size, lambda x, y, t=top: (
            (0, 0, 0, 90) if (x - c) ** 2 + (y - t - c - 1.2) ** 2 <= 13.6 ** 2 else None))
        img.paint(0, top, size, size, lambda x, y, t=top: (
            mix((58, 60, 66), (18, 18, 22), (y - t) / size) + (255,)
            if (x - c) ** 2 + (y - t - c) ** 2 <= 12.6 ** 2 else None))
        if f:
            img.paint(0, top, size, size, lambda x, y, t=top: (
                AMBER + (255,) if 10.6 ** 2 <= (x - c) ** 2 + (y - t - c) ** 2 <= 12.2 ** 2 else None))

        def ball(x, y, t=top):
            px, py = x - c, y - t - c
            r2 = px * px + py * py
            if r2 > 9.4 ** 2:
                return None
            # Lit from the top left: brightest toward (-4, -4), darkest at the far rim.
            light = clamp01(1 - math.hypot(px + 4, py + 4) / 15)
            return mix((96, 14, 14), (232, 64, 52), light) + (255,)

        img.paint(0, top, size, size, ball)
        img.paint(0, top, size, size, lambda x, y, t=top: (
            (255, 236, 228, round(200 * clamp01(1 - math.hypot(x - c + 3.6, y - t - c + 4) / 3.4)))
            if math.hypot(x - c + 3.6, y - t - c + 4) <= 3.4 else None))
    return img


def led(size=16):
    """Two frames, off and on; the alpha goes to the mask file, the BMP itself has none."""
    img = Image(size, size * 2)
    for f, colour in enumerate(((70, 20, 20), (255, 60, 40))):
        img.paint(0, f * size, size, size, disc(size / 2, f * size + size / 2, size / 2 - 1, colour + (255,)))
    return img


def meter(width=14, height=100, segments=12, pitch=8, bottom=2):
    """A bar graph: frame 0 unlit, frame 1 lit. Segment k (from 1, counted from the bottom) is pitch - 2
    pixels high with its lower edge bottom + (k - 1) x pitch from the foot, so lighting k x pitch + 1
    pixels (metadata "segment 2 8": offset 2, pitch 8) shows exactly k segments; green, then amber, then
    red at the top."""
    img = Image(width, height * 2)
    for f in range(2):
        top = f * height
        img.paint(0, top, width, height, lambda x, y, t=top: (12, 13, 16, 255) if 0 <= y - t < height else None)
        for k in range(1, segments + 1):
            colour = (70, 200, 90) if k <= segments * 0.6 else (240, 180, 40) if k <= segments * 0.85 else (235, 60, 45)
            if not f:
                colour = mix(colour, (20, 22, 26), 0.78)
            y1 = top + height - bottom - (k - 1) * pitch
            img.paint(0, y1 - (pitch - 2), width, pitch - 2, lambda x, y, c=colour: c + (255,) if 2 <= x <= width - 2 else None)
    return img


STYLES = """\
FONT_CATEGORY normal
font-family "DejaVu Sans" Verdana
font-size 12
font-color #E0E0E0
background-color #202024

FONT_CATEGORY title
font-family "DejaVu Sans"
font-size 16
font-weight bold
text-align center
font-color #FFB030

FONT_CATEGORY small
font-family "DejaVu Sans"
font-size 9
font-weight 300
font-color #A0A8B0

FONT_CATEGORY label
font-family "DejaVu Sans"
font-size 10
font-weight bold
font-color #8C96A8

FONT_CATEGORY caption
font-family "DejaVu Sans"
font-size 10
text-align center
font-color #A0A8B0

FONT_CATEGORY readout
font-family "DejaVu Sans Mono"
font-size 13
text-align center
font-color #FFB030
background-color #121316
"""

METADATA = {
    "knob.txt": "type knob\nframe_size 48 48\npadding 0 0 0 0\nmouse_response vertical\n",
    "slider.txt": "type slider\nframe_size 24 100\nhandle_rect 0 0 24 20\nhandle_range 0 80\norientation vertical\n"
                  "padding 0 0 0 0\n",
    "button.txt": "type button\nframe_size 60 24\npadding 0 0 0 0\nmouse_response click\n",
    "led.txt": "type button\nframe_size 16 16\npadding 0 0 0 0\nmouse_response click\n",
    "dial.txt": "type knob\nframe_size 56 56\npadding 0 0 0 0\nmouse_response rotary\n",
    "hslider.txt": "type slider\nframe_size 100 24\nhandle_rect 0 0 20 24\nhandle_range 0 80\n"
                   "orientation horizontal\npadding 0 0 0 0\n",
    "switch.txt": "type button\nframe_size 28 52\npadding 0 0 0 0\nmouse_response click\n",
    "selector.txt": "type knob\nframe_size 64 40\npadding 0 0 0 0\nmouse_response step\n",
    "jog.txt": "type knob\nframe_size 72 72\npadding 0 0 0 0\nmouse_response rotary\n",
    "handle.txt": "type knob\nframe_size 16 16\npadding 0 0 0 0\n",
    "meter.txt": "type bargraph\nframe_size 14 100\npadding 0 0 0 0\nsegment 2 8\nsegment_count 12\n",
    "stick.txt": "type knob\nframe_size 28 28\npadding 2 2 2 2\n",
}


def main():
    knob().write_png(os.path.join(HERE, "knob.png"))
    slider().write_png(os.path.join(HERE, "slider.png"))
    button().write_png(os.path.join(HERE, "button.png"))
    dial().write_png(os.path.join(HERE, "dial.png"))
    hslider().write_png(os.path.join(HERE, "hslider.png"))
    toggle_switch().write_png(os.path.join(HERE, "switch.png"))
    selector().write_png(os.path.join(HERE, "selector.png"))
    jog().write_png(os.path.join(HERE, "jog.png"))
    polar_handle().write_png(os.path.join(HERE, "handle.png"))
    meter().write_png(os.path.join(HERE, "meter.png"))
    joystick_handle().write_png(os.path.join(HERE, "stick.png"))
    l = led()
    l.write_bmp(os.path.join(HERE, "led.bmp"))
    l.write_bmp(os.path.join(HERE, "led_mask.bmp"), channel="alpha")
    for name, text in METADATA.items():
        with open(os.path.join(HERE, name), "w", newline="\n") as f:
            f.write(text)
    with open(os.path.join(HERE, "global.txt"), "w", newline="\n") as f:
        f.write(STYLES)


if __name__ == "__main__":
    main()
