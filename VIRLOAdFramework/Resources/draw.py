#!/usr/bin/env python3
"""Draws the framework's pictures beside this file. Sharp ones have two pixels to a point: the very pixels of
a 3840x2160 set, and a 1920x1080 set shows the mean of four; shapes are signed distances in points, which gives exact smooth edges."""

import math
import pathlib
import struct
import zlib

SCALE = 2
WHITE = (255, 255, 255)
BLACK = (0, 0, 0)
DARK_GREY = (0x2E, 0x2E, 0x2E)


def write_png(path, side, pixel, scale=SCALE):
    """`pixel` answers (red, green, blue, alpha 0 to 1) for a point of the square of `side` points."""
    size = side * scale
    rows = bytearray()
    for row in range(size):
        rows.append(0)
        for column in range(size):
            red, green, blue, alpha = pixel((column + 0.5) / scale, (row + 0.5) / scale)
            rows += bytes((red, green, blue, round(255 * alpha)))
    per_metre = round(72 * scale / 0.0254)

    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    path.write_bytes(b"\x89PNG\r\n\x1a\n"
                     + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0))
                     + chunk(b"pHYs", struct.pack(">IIB", per_metre, per_metre, 1))
                     + chunk(b"IDAT", zlib.compress(bytes(rows), 9))
                     + chunk(b"IEND", b""))


def coverage(distance):
    return min(1.0, max(0.0, 0.5 - distance * SCALE))


def segment(x, y, ax, ay, bx, by, radius):
    dx, dy = bx - ax, by - ay
    along = max(0.0, min(1.0, ((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy)))
    return math.hypot(x - ax - along * dx, y - ay - along * dy) - radius


def rounded_box(x, y, left, top, right, bottom, radius):
    dx = abs(x - (left + right) / 2) - (right - left) / 2 + radius
    dy = abs(y - (top + bottom) / 2) - (bottom - top) / 2 + radius
    return math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - radius


def circle(x, y, cx, cy, radius):
    return math.hypot(x - cx, y - cy) - radius


def arc(x, y, cx, cy, radius, start, end, half_width):
    """A stroke along the circle from `start` to `end` radians (clockwise from the right), with round ends."""
    angle = math.atan2(y - cy, x - cx) % (2 * math.pi)
    if start <= angle <= end:
        return abs(math.hypot(x - cx, y - cy) - radius) - half_width
    return min(math.hypot(x - cx - radius * math.cos(edge), y - cy - radius * math.sin(edge))
               for edge in (start, end)) - half_width


def cross(colour, rim):
    """A cross with a soft rim of the opposite tone, so that it reads on any picture."""
    def pixel(x, y):
        distance = min(segment(x, y, 9, 9, 35, 35, 3.2), segment(x, y, 35, 9, 9, 35, 3.2))
        face = coverage(distance)
        glow = 0.45 * max(0.0, 1 - max(0.0, distance) / 5) ** 2
        alpha = face + glow * (1 - face)
        if alpha == 0:
            return (*rim, 0.0)
        return (*(round((c * face + r * glow * (1 - face)) / alpha) for c, r in zip(colour, rim)), alpha)
    return pixel


def halo(colour):
    """What lies behind the countdown: full in the middle, gone at the edge."""
    def pixel(x, y):
        away = math.hypot(x - 80, y - 80) / 80
        fade = min(1.0, max(0.0, (1 - away) / 0.45))
        return (*colour, 0.55 * fade * fade * (3 - 2 * fade))
    return pixel


def glyph(distance):
    """A white shape; the button tints it with its own text colour."""
    return lambda x, y: (*WHITE, coverage(distance(x, y)))


def envelope(x, y):
    body = abs(rounded_box(x, y, 5, 10, 43, 38, 5)) - 1.9
    flap = min(segment(x, y, 7, 14, 24, 27, 1.9), segment(x, y, 41, 14, 24, 27, 1.9))
    return min(body, flap)


def handset(x, y):
    """An upright handset, then leant over by an eighth of a turn."""
    turned = math.sqrt(0.5)
    x, y = 26 + (x - 24) * turned - (y - 24) * turned, 24 + (x - 24) * turned + (y - 24) * turned
    grip = arc(x, y, 42, 24, 22, math.radians(138), math.radians(222), 4.2)
    ear = rounded_box(x, y, 20, 2.5, 35, 14, 3.4)
    mouth = rounded_box(x, y, 20, 34, 35, 45.5, 3.4)
    return min(grip, ear, mouth)


def bubble(x, y):
    body = rounded_box(x, y, 4, 7, 44, 35, 8)
    tail = max(x - 24, 33 - y, (y - 43) + (x - 12) * 0.85, 12 - x)
    dots = min(circle(x, y, 14, 21, 2.9), circle(x, y, 24, 21, 2.9), circle(x, y, 34, 21, 2.9))
    return max(min(body, tail), -dots)


def star(x, y):
    """Five points with rounded tips, 34 points wide."""
    corners = []
    for i in range(10):
        reach = 15.6 if i % 2 == 0 else 7.0
        angle = math.radians(36 * i - 90)
        corners.append((17 + reach * math.cos(angle), 18 + reach * math.sin(angle)))
    inside = False
    distance = math.inf
    for (ax, ay), (bx, by) in zip(corners, corners[1:] + corners[:1]):
        distance = min(distance, segment(x, y, ax, ay, bx, by, 0))
        if (ay > y) != (by > y) and x < ax + (y - ay) / (by - ay) * (bx - ax):
            inside = not inside
    return (-distance if inside else distance) - 1.2


def play(x, y):
    """A triangle with rounded corners in a ring."""
    ring = abs(circle(x, y, 24, 24, 19.5)) - 1.9
    edges = (segment(x, y, 20, 16.5, 20, 31.5, 0), segment(x, y, 20, 16.5, 32, 24, 0),
             segment(x, y, 20, 31.5, 32, 24, 0))
    inside = x > 20 and abs(y - 24) < 7.5 * (32 - x) / 12
    return min(ring, (-min(edges) if inside else min(edges)) - 1.6)


def app_tile(x, y):
    """The placeholder of an app's icon: four tiles on a light ground."""
    tiles = min(rounded_box(x, y, left, top, left + 38, top + 38, 9) for left in (33, 79) for top in (33, 79))
    cover = 0.55 * coverage(tiles)
    return (*(round(ground * (1 - cover) + tile * cover) for ground, tile in zip((0xC9, 0xD6, 0xDA), (0x6F, 0x86, 0x90))),
            1.0)


def main():
    folder = pathlib.Path(__file__).resolve().parent
    write_png(folder / "fullscreen_close.png", 44, cross(WHITE, BLACK))
    write_png(folder / "fullscreen_close_dark.png", 44, cross(DARK_GREY, WHITE))
    write_png(folder / "countdown_halo.png", 160, halo(BLACK), scale=1)
    write_png(folder / "countdown_halo_light.png", 160, halo(WHITE), scale=1)
    write_png(folder / "icon_email.png", 48, glyph(envelope))
    write_png(folder / "icon_phone.png", 48, glyph(handset))
    write_png(folder / "icon_sms.png", 48, glyph(bubble))
    slate = (0x33, 0x47, 0x52)
    for name, shape in (("Mail", envelope), ("Phone", handset), ("Play", play), ("SMS", bubble)):
        write_png(folder / f"AdGrid{name}.png", 48, lambda x, y, shape=shape: (*slate, coverage(shape(x, y))))
    write_png(folder / "AdGridAppStore.png", 150, app_tile)
    gold = (0xFF, 0xC2, 0x3D)
    write_png(folder / "Star34-full.png", 34, lambda x, y: (*gold, coverage(star(x, y))))
    write_png(folder / "Star34-half.png", 34, lambda x, y: (*gold, coverage(max(star(x, y), x - 17))))
    write_png(folder / "Star34-empty.png", 34, lambda x, y: (*WHITE, 0.55 * coverage(abs(star(x, y) + 1.2) - 1)))


if __name__ == "__main__":
    main()
