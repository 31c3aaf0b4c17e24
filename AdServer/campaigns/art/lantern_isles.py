"""Lantern Isles, an adventure at sea: a cover, five screenshots and a banner, each at another hour."""

from studio import *

HOURS = {
    "dawn": dict(sky=[(0, "#6a7fc9"), (0.4, "#f3b5b0"), (0.62, "#ffe2b8")], sea=("#e8b7a4", "#2c5b86"), land="#4c5d86", near="#27365f", light="#fff0cf", disc=(0.7, 0.5), glow="#ffdca6"),
    "noon": dict(sky=[(0, "#3f9be0"), (0.45, "#9fd8f2"), (0.62, "#e9f8f4")], sea=("#8fe0de", "#157aa8"), land="#4f9a7a", near="#1f6a55", light="#ffffff", disc=(0.24, 0.2), glow="#fffbe0"),
    "dusk": dict(sky=[(0, "#2c2266"), (0.35, "#a5427f"), (0.52, "#ff8a5c"), (0.62, "#ffd08a")], sea=("#f29a6b", "#2a2060"), land="#5b2f6e", near="#2a1749", light="#fff2c8", disc=(0.42, 0.55), glow="#ffb06a"),
    "night": dict(sky=[(0, "#060b2c"), (0.4, "#14255c"), (0.62, "#3f5f9e")], sea=("#35568f", "#060c28"), land="#1c2c5c", near="#0b1434", light="#eaf2ff", disc=(0.76, 0.2), glow="#9fc0ff"),
    "aurora": dict(sky=[(0, "#04122b"), (0.4, "#0c3350"), (0.62, "#2c6f7e")], sea=("#2a7f86", "#04142a"), land="#123a52", near="#06202f", light="#e6fff6", disc=(0.2, 0.24), glow="#8ff0cf"),
}


def isle(canvas, x, y, wide, tall, colour, dark, seed, lanterns=0):
    """A rock with trees that stands in the sea; (x, y) is the middle of its waterline."""
    random = np.random.default_rng(seed)
    points = [(x - wide / 2, y)]
    for share in np.linspace(0.06, 0.94, 10):
        crown = math.sin(math.pi * share) ** 0.7
        points.append((x - wide / 2 + wide * share, y - tall * crown * random.uniform(0.72, 1.05)))
    points.append((x + wide / 2, y))

    def rock(context):
        spline(context, points)
        context.close_path()
        paint(context, linear(x - wide / 2, y - tall, x + wide / 2, y, (0, mix(colour, "#ffffff", 0.16)), (0.4, colour), (1, dark)))

    def trees(context):
        for _ in range(max(5, int(wide / 26))):
            share = random.uniform(0.12, 0.88)
            tx = x - wide / 2 + wide * share
            ty = np.interp(tx, [p[0] for p in points], [p[1] for p in points]) + 4
            size = tall * random.uniform(0.12, 0.24) + 6
            context.rectangle(tx - size * 0.05, ty - size * 0.5, size * 0.1, size * 0.55)
            paint(context, dark)
            for dx, dy, r in ((0, -0.86, 0.42), (-0.3, -0.62, 0.34), (0.3, -0.64, 0.32)):
                ellipse(context, tx + dx * size, ty + dy * size, r * size, r * size * 0.82)
                paint(context, radial(tx + dx * size, ty + dy * size, r * size, (0, mix(colour, "#fff6cf", 0.22)), (1, mix(colour, dark, 0.55)), fx=tx + (dx - 0.15) * size, fy=ty + (dy - 0.2) * size))

    canvas.draw(rock).draw(trees)
    for _ in range(lanterns):
        share = random.uniform(0.15, 0.85)
        lx = x - wide / 2 + wide * share
        lantern(canvas, lx, np.interp(lx, [p[0] for p in points], [p[1] for p in points]) - tall * 0.06, max(7, tall * 0.07))


def lantern(canvas, x, y, size):
    canvas.glow(x, y, size * 6.5, "#ffb347", 0.75, 2.6)

    def glass(context):
        spline(context, [(x - size * 0.5, y - size * 0.6), (x + size * 0.5, y - size * 0.6), (x + size * 0.72, y), (x + size * 0.45, y + size * 0.75), (x - size * 0.45, y + size * 0.75), (x - size * 0.72, y)], True)
        paint(context, radial(x, y, size, (0, "#fffce8"), (0.5, "#ffd56b"), (1, "#f58a2a")))
        for top in (-0.78, 0.66):
            rounded(context, x - size * 0.5, y + top * size, size, size * 0.2, size * 0.08)
            paint(context, "#5b2a1a")

    canvas.draw(glass)


def boat(canvas, x, y, size, dark, sail):
    def craft(context):
        context.translate(x, y)
        context.scale(size / 100, size / 100)
        context.rectangle(-3, -128, 5, 118)
        paint(context, dark)
        spline(context, [(4, -124), (52, -86), (64, -34), (4, -24)], False)
        context.close_path()
        paint(context, linear(0, -124, 66, -20, (0, mix(sail, "#ffffff", 0.55)), (1, mix(sail, dark, 0.25))))
        spline(context, [(-6, -112), (-36, -72), (-46, -30), (-6, -26)], False)
        context.close_path()
        paint(context, linear(-46, -112, 0, -20, (0, sail), (1, mix(sail, dark, 0.5))))
        spline(context, [(-78, -14), (-60, -8), (0, -4), (62, -10), (84, -22), (70, 6), (50, 16), (-46, 16), (-66, 6)], True)
        paint(context, linear(0, -22, 0, 16, (0, mix("#8a4a2a", "#ffffff", 0.12)), (0.4, "#6d3720"), (1, dark)))
        context.move_to(-72, -8)
        context.curve_to(-30, 2, 40, 0, 80, -16)
        context.set_line_width(3)
        context.set_source_rgb(*rgb("#e8b46a"))
        context.stroke()

    canvas.draw(craft)
    lantern(canvas, x + 0.84 * size, y - 0.36 * size, size * 0.1)


def scene(width, height, hour, seed, boat_at=0.3, isles=5, lanterns=2):
    tone = HOURS[hour]
    random = np.random.default_rng(seed)
    canvas = Canvas(width, height)
    horizon = height * 0.6
    canvas.gradient([(p / 0.62 * 0.6, c) for p, c in tone["sky"]] + [(1, tone["sky"][-1][1])])
    dark_hours = hour in ("night", "aurora")
    if dark_hours:
        field = np.zeros(canvas.shape)
        count = width * height // 3600
        field[random.integers(0, int(horizon), count), random.integers(0, width, count)] = random.uniform(0.3, 1, count)
        canvas.blend("#ffffff", ndimage.gaussian_filter(field, 0.8) * 4, "add")
    if hour == "aurora":
        for base, colour in ((0.16, "#3effb0"), (0.27, "#41d0ff"), (0.08, "#a27bff")):
            wave = fractal(canvas.shape, height * 0.55, seed + int(base * 100), octaves=4, stretch=(1.5, 4))
            curtain = np.exp(-(((canvas.y / height - base - 0.12 * np.sin(canvas.x / width * 7 + base * 30)) / 0.12) ** 2))
            canvas.blend(colour, curtain * smooth(wave, 0.3, 0.9) * 0.6, "screen")
    sx, sy = tone["disc"][0] * width, tone["disc"][1] * height
    clouds = fractal(canvas.shape, height * 0.34, seed + 3, octaves=7, stretch=(2.8, 0.7))
    canvas.blend(tone["light"], smooth(clouds, 0.55, 1) * (1 - smooth(canvas.y / height, 0.3, 0.56)) * (0.2 if dark_hours else 0.6), "screen")
    canvas.glow(sx, sy, height * 0.95, tone["glow"], 0.7, 2.2)
    radius = height * (0.075 if hour != "dusk" else 0.12)
    canvas.draw(lambda c: (ellipse(c, sx, sy, radius, radius), paint(c, tone["light"])), blur=0.8)
    line = ridge(width, horizon + 4, height * 0.15, 0.5, seed + 9, 8)
    canvas.mountains(line, mix(tone["land"], tone["sky"][-1][1], 0.55), tone["sky"][-1][1], height * 0.16)

    surface = canvas.y >= horizon
    depth = np.clip((canvas.y - horizon) / (height - horizon), 0, 1)
    sea = np.array(rgb(tone["sea"][0])) * (1 - depth[..., None]) + np.array(rgb(tone["sea"][1])) * depth[..., None]
    canvas.blend(sea, surface.astype(float))
    waves = fractal(canvas.shape, height * 0.08, seed + 5, octaves=6, stretch=(5, 0.42))
    canvas.blend(tone["light"], surface * smooth(waves, 0.62, 0.98) * (0.16 + 0.22 * depth), "screen")
    canvas.blend(tone["sea"][1], surface * smooth(1 - waves, 0.6, 1) * 0.35)
    path = np.exp(-(((canvas.x - sx) / (width * (0.03 + 0.11 * depth))) ** 2))
    canvas.blend(tone["light"], surface * path * smooth(waves, 0.45, 0.8) * 0.75, "screen")

    places = np.linspace(0.06, 0.94, isles) + random.uniform(-0.05, 0.05, isles)
    nearness = [0.03 if abs(place - boat_at) < 0.13 else random.uniform(0.05, 0.38) for place in places]
    for i in np.argsort(nearness):
        near = nearness[i]
        y = horizon + (height - horizon) * near
        wide = height * (0.28 + 0.85 * near) * random.uniform(0.9, 1.25)
        tall = wide * random.uniform(0.42, 0.66)
        shade = np.clip(near * 2.4, 0, 1)
        canvas.blend(tone["near"], np.exp(-(((canvas.x - places[i] * width) / (wide * 0.5)) ** 2)) * np.exp(-np.abs(canvas.y - y) / (tall * 0.28)) * surface * 0.42)
        isle(canvas, places[i] * width, y, wide, tall, mix(mix(tone["land"], tone["sky"][-1][1], 0.35), tone["land"], shade), mix(tone["land"], tone["near"], 0.4 + 0.6 * shade), seed + 20 + int(i), lanterns if near > 0.1 else 0)
    by = horizon + (height - horizon) * 0.52
    canvas.blend(tone["near"], np.exp(-(((canvas.x - boat_at * width) / (height * 0.16)) ** 2)) * np.exp(-np.abs(canvas.y - by - height * 0.03) / (height * 0.05)) * 0.5)
    boat(canvas, boat_at * width, by, height * 0.2, tone["near"], "#fff0d8" if hour != "noon" else "#ff8f6b")
    for _ in range(lanterns * 3):
        lantern(canvas, random.uniform(0.05, 0.95) * width, random.uniform(0.1, 0.5) * height, height * random.uniform(0.012, 0.024))
    return canvas


def panel(canvas, words):
    """What the game itself writes over its images; far enough inside to be read where the focus enlarges them."""
    height = canvas.height
    left = 170
    size = height * 0.066

    def plate(context):
        ink, _ = layout(context, words, "Quicksand Bold", size).get_pixel_extents()
        rounded(context, left, height - 60 - size * 2.1, ink.width + size * 1.6, size * 2.1, size * 0.5)
        context.set_source_rgba(0.04, 0.06, 0.16, 0.62)
        context.fill()

    canvas.draw(plate)
    write(canvas, left + size * 0.8, height - 60 - size * 1.5, words, "Quicksand Bold", size, "#fff6df")


SCREENSHOTS = (
    ("dawn", 31, 0.62, "Set sail at first light"),
    ("noon", 42, 0.66, "Forty islands to explore"),
    ("dusk", 53, 0.7, "Trade what you find"),
    ("night", 64, 0.58, "Light every lantern"),
    ("aurora", 75, 0.6, "Follow the northern glow"),
)


def screenshot(number):
    hour, seed, boat_at, words = SCREENSHOTS[number]
    canvas = scene(1400, 515, hour, seed, boat_at, 6, 2 if hour != "noon" else 0)
    panel(canvas, words)
    return canvas.vignette(0.2).grain(0.008)


def cover():
    canvas = scene(720, 720, "dusk", 91, 0.5, 4, 2)
    canvas.blend("#2a1252", (1 - smooth(canvas.y, 220, 420)) * 0.55)
    shadow = ("#1a0b3a", 10, 4, 0.85)
    write(canvas, 360, 96, "Lantern", "Lobster Two Bold Italic", 138, ["#fffdf0", "#ffe0a0"], shadow=shadow, align="centre")
    write(canvas, 360, 244, "ISLES", "Bebas Neue Bold", 92, "#fff6e0", shadow=shadow, align="centre", tracking=240)
    return canvas.vignette(0.25).grain(0.008)


def banner():
    canvas = scene(1920, 640, "night", 64, 0.72, 7, 3)
    canvas.blend("#050a26", (1 - smooth(canvas.x, 300, 1050)) * 0.7)
    shadow = ("#03061a", 14, 4, 0.85)
    write(canvas, 118, 120, "Lantern Isles", "Lobster Two Bold Italic", 156, ["#fffdf0", "#ffd98a"], shadow=shadow)
    write(canvas, 122, 318, "A small boat. A very dark sea.", "Lato Bold", 44, "#ffffff", shadow=shadow)
    return canvas.vignette(0.25).grain(0.008)
