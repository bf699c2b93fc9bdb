#!/usr/bin/env python3
"""Draws the demo skin: film strips for a knob, a slider and a button, an LED as a BMP with a
_mask.bmp beside it, a metadata .txt beside each image, and the text-style file global.txt.

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


def led(size=16):
    """Two frames, off and on; the alpha goes to the mask file, the BMP itself has none."""
    img = Image(size, size * 2)
    for f, colour in enumerate(((70, 20, 20), (255, 60, 40))):
        img.paint(0, f * size, size, size, disc(size / 2, f * size + size / 2, size / 2 - 1, colour + (255,)))
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
"""

METADATA = {
    "knob.txt": "type knob\nframe_size 48 48\npadding 0 0 0 0\nmouse_response vertical\n",
    "slider.txt": "type slider\nframe_size 24 100\nhandle_rect 0 0 24 20\nhandle_range 0 80\norientation vertical\n"
                  "padding 0 0 0 0\n",
    "button.txt": "type button\nframe_size 60 24\npadding 0 0 0 0\nmouse_response click\n",
    "led.txt": "type button\nframe_size 16 16\npadding 0 0 0 0\nmouse_response click\n",
}


def main():
    knob().write_png(os.path.join(HERE, "knob.png"))
    slider().write_png(os.path.join(HERE, "slider.png"))
    button().write_png(os.path.join(HERE, "button.png"))
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
