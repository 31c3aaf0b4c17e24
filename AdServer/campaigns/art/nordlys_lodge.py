"""Nordlys Lodge, a winter holiday: a warm cabin in bright snow. The bottom left is almost white."""

from studio import *


def bough(context, random, x, low, top, half, teeth):
    """One tier of a spruce: a cone whose lower edge hangs in ragged tips."""
    edge = []
    for tip in range(teeth * 2 + 1):
        share = tip / (teeth * 2) * 2 - 1
        hang = (low - top) * (0.16 if tip % 2 else -0.06) * random.uniform(0.6, 1.4)
        edge.append((x + share * half, low + (low - top) * 0.12 * (1 - share * share) + hang))
    spline(context, [(x, top)] + edge[::-1] + [(x, top)])
    context.close_path()


def pine(context, x, y, height, colour, snow):
    random = np.random.default_rng(int(x * 7 + y))
    width = height * 0.44
    context.rectangle(x - height * 0.016, y - height * 0.09, height * 0.032, height * 0.1)
    paint(context, mix(colour, "#1b1420", 0.55))
    tiers = 11
    for tier in range(tiers):
        share = tier / tiers
        low = y - height * (0.07 + 0.84 * share)
        half = width * 0.5 * (1 - share) ** 0.86 * random.uniform(0.93, 1.07) + height * 0.012
        top = low - height * 0.2 * (1 - share * 0.35)
        teeth = max(3, int(7 * (1 - share)))
        bough(context, random, x, low, top, half, teeth)
        paint(context, linear(x - half, 0, x + half, 0, (0, mix(colour, "#ffffff", 0.14)), (0.5, colour), (1, mix(colour, "#0d1830", 0.45))))
        bough(context, random, x - half * 0.08, low - height * 0.045, top, half * 0.72, teeth)
        paint(context, linear(x - half, 0, x + half, 0, (0, snow), (0.45, snow), (1, mix(snow, colour, 0.5))))


def cabin(canvas, x, y, size):
    def at(context):
        context.translate(x, y)
        context.scale(size / 100, size / 100)

    def shadow(context):
        at(context)
        polygon(context, [(-92, 2), (150, 2), (260, 26), (10, 30)])
        paint(context, "#7f9cc9")

    def walls(context):
        at(context)
        polygon(context, [(-20, -4), (118, -4), (118, -62), (-20, -66)])
        paint(context, linear(-20, 0, 118, 0, (0, "#6d4430"), (1, "#4a2d25")))
        polygon(context, [(-92, 0), (-20, 0), (-20, -66), (-56, -104), (-92, -66)])
        paint(context, linear(-92, 0, -20, 0, (0, "#8a5a3c"), (1, "#74482f")))
        context.set_line_width(0.9)
        for log in range(1, 11):
            context.move_to(-92, -6.2 * log)
            context.line_to(-20, -6.2 * log)
            context.line_to(118, -5.8 * log)
        context.set_source_rgba(0.15, 0.07, 0.05, 0.45)
        context.stroke()

    def windows(context):
        at(context)
        for left, top, wide, tall in ((-78, -50, 18, 24), (-52, -50, 18, 24), (-64, -84, 16, 15), (4, -46, 22, 24), (40, -46, 22, 24), (88, -45, 18, 23)):
            rounded(context, left, top, wide, tall, 1.2)
            paint(context, linear(0, top, 0, top + tall, (0, "#fff1c0"), (0.6, "#ffc766"), (1, "#ff9d3c")))
        rounded(context, 68, -40, 14, 38, 1)
        paint(context, "#3a211b")

    def frames(context):
        at(context)
        context.set_line_width(1.4)
        for left, top, wide, tall in ((-78, -50, 18, 24), (-52, -50, 18, 24), (-64, -84, 16, 15), (4, -46, 22, 24), (40, -46, 22, 24), (88, -45, 18, 23)):
            rounded(context, left, top, wide, tall, 1.2)
            context.move_to(left + wide / 2, top)
            context.line_to(left + wide / 2, top + tall)
            context.move_to(left, top + tall * 0.5)
            context.line_to(left + wide, top + tall * 0.5)
        context.set_source_rgb(*rgb("#3a2018"))
        context.stroke()

    def roof(context):
        at(context)
        context.rectangle(60, -128, 18, 34)
        paint(context, linear(60, 0, 78, 0, (0, "#8d827f"), (1, "#574e50")))
        spline(context, [(57, -127), (69, -136), (81, -127), (69, -124)], True)
        paint(context, "#ffffff")
        polygon(context, [(-60, -112), (86, -104), (134, -58), (-14, -60)])
        paint(context, linear(0, -112, 0, -56, (0, "#ffffff"), (1, "#cbdcf4")))
        spline(context, [(-14, -60), (20, -57), (60, -59), (100, -55), (134, -58), (136, -50), (100, -48), (64, -52), (24, -50), (-14, -52)], True)
        paint(context, linear(0, -60, 0, -48, (0, "#f4f9ff"), (1, "#a9c0e4")))
        spline(context, [(-104, -56), (-82, -84), (-58, -116), (-34, -84), (-10, -54), (-16, -48), (-36, -70), (-57, -97), (-78, -72), (-98, -48)], True)
        paint(context, linear(-104, 0, -10, 0, (0, "#ffffff"), (0.6, "#eaf2fd"), (1, "#b9cdea")))

    canvas.draw(shadow, blur=14, opacity=0.55)
    canvas.draw(walls).draw(windows)
    canvas.draw(windows, blur=16, how="screen", opacity=0.9)
    canvas.draw(frames).draw(roof)
    for left, top in ((-69, -38), (-43, -38), (15, -34), (51, -34)):
        canvas.glow(x + left * size / 100, y + top * size / 100, size * 0.62, "#ffb44f", 0.42, 2.4)
    canvas.glow(x - 0.2 * size, y + 0.14 * size, size * 1.3, "#ffbf6b", 0.35, 2, squash=0.24)


def make():
    canvas = Canvas()
    canvas.gradient([(0, "#6fa4dc"), (0.26, "#a9cdef"), (0.46, "#dfeaf6"), (0.58, "#fde9d6"), (1, "#ffffff")])
    canvas.glow(1480, 470, 1000, "#fff1d4", 0.8, 1.8).glow(1480, 470, 260, "#ffffff", 0.9, 1.6)
    clouds = fractal(canvas.shape, 300, 12, octaves=7, stretch=(3, 0.7))
    canvas.blend("#ffffff", smooth(clouds, 0.55, 1) * (1 - smooth(canvas.y, 260, 480)) * 0.55)

    width = canvas.width
    columns = np.arange(width)
    for base, height, seed, top, bottom, points, texture in (
        (560, 230, 3, "#b7cfec", "#f3ece8", 7, 0.35),
        (640, 340, 15, "#8fb0da", "#e8eef6", 6, 0.6),
    ):
        line = ridge(width, base, height, 0.52, seed, points)
        line = line + 150 * np.exp(-(((columns - 330) / 430) ** 2)) * (seed == 15)
        canvas.mountains(line, top, bottom, 300)
        below = canvas.y - line[None, :]
        # Spurs run down from the ridge: noise that is the finer across the slope the nearer it is to the top.
        spurs = 1 - np.abs(2 * fractal(canvas.shape, 260, seed + 40, octaves=7, stretch=(0.5, 1.5)) - 1)
        lean = np.gradient(ndimage.gaussian_filter(spurs + 0.004 * below, 2.5), axis=1) * 45
        face = smooth(below, 0, 10) * (1 - smooth(below, 110, 330))
        canvas.blend("#ffffff", face * smooth(lean, -0.12, 0.65) * texture * 1.2)
        canvas.blend("#5f83b8", face * smooth(-lean, 0.1, 0.9) * texture * 0.5)

    def forest(seed, base, low, high, count, left, right, colour, snow):
        random = np.random.default_rng(seed)
        trees = sorted((random.uniform(left, right), random.uniform(low, high)) for _ in range(count))
        canvas.draw(lambda context: [pine(context, x, base(x) + random.uniform(-6, 10), tall, colour, snow) for x, tall in trees])

    far = lambda x: 690 + 26 * math.sin(x / 300)
    forest(1, far, 60, 120, 90, 620, 1960, "#7797bf", "#e4eefa")
    canvas.mountains(np.array([far(x) - 8 for x in columns]), "#e9f1fb", "#ffffff", 120)
    canvas.blend("#ffffff", np.exp(-(((canvas.y - 690) / 60) ** 2)) * 0.5)
    middle = lambda x: 776 - 60 * math.exp(-(((x - 1330) / 300) ** 2)) + 18 * math.sin(x / 170)
    forest(2, middle, 130, 260, 26, 1560, 1950, "#41628f", "#eef5fd")
    forest(4, middle, 110, 200, 9, 930, 1120, "#4c6f9d", "#eef5fd")
    hill = np.array([middle(x) for x in columns])
    canvas.mountains(hill, "#f6faff", "#d7e5f7", 210)
    cabin(canvas, 1330, 742, 176)

    smoke = fractal(canvas.shape, 120, 60, octaves=5, stretch=(0.8, 1.3))
    rise = (520 - canvas.y) / 420
    drift = 1330 + 121 + 70 * rise + 26 * np.sin(rise * 7)
    plume = np.exp(-(((canvas.x - drift) / (10 + 52 * np.clip(rise, 0, 1))) ** 2)) * smooth(rise, 0, 0.05) * (1 - smooth(rise, 0.55, 1))
    canvas.blend("#ffffff", plume * smooth(smoke, 0.2, 0.8) * 0.75)

    front = 905 + 46 * np.sin(columns / 410 + 2.4) - 30 * np.exp(-(((columns - 1700) / 300) ** 2))
    canvas.mountains(front, "#fcfdff", "#eef4fc", 180)
    drifts = fractal(canvas.shape, 260, 71, octaves=5, stretch=(3.2, 0.5))
    on_snow = smooth(canvas.y - np.minimum(hill, front)[None, :], 10, 60) * smooth(canvas.x, 420, 760)
    canvas.blend("#a9c4ea", on_snow * smooth(drifts, 0.55, 1) * 0.5)
    forest(9, lambda x: 1010, 300, 430, 5, 1700, 1960, "#28466f", "#f7fbff")

    def path(context):
        points = [(1262, 750), (1235, 800), (1150, 850), (1120, 905), (1190, 970), (1150, 1080)]
        for side in (-1, 1):
            spline(context, [(x + side * (5 + (y - 740) * 0.09), y) for x, y in points])
            context.set_line_width(6)
            context.set_source_rgba(0.55, 0.69, 0.88, 0.7)
            context.stroke()

    canvas.draw(path, blur=1.6)
    random = np.random.default_rng(4)

    def flakes(context):
        for _ in range(240):
            size = random.uniform(1, 4.4)
            ellipse(context, random.uniform(0, 1920), random.uniform(0, 900), size, size)
            context.set_source_rgba(1, 1, 1, random.uniform(0.35, 0.95))
            context.fill()

    canvas.draw(flakes, blur=0.8)
    canvas.blend("#ffffff", (1 - smooth(canvas.x, 200, 940)) * smooth(canvas.y, 180, 460) * 0.5)
    canvas.blend("#ffffff", (1 - smooth(np.hypot(canvas.x - 120, canvas.y - 960), 160, 520)) * 0.9)
    canvas.grain(0.007)

    write(canvas, 124, 126, "WINTER ABOVE THE CLOUDS", "Manrope ExtraBold", 29, "#173a6b", tracking=170)
    write(canvas, 118, 214, "Nordlys", "EB Garamond 12", 206, "#10305f")
    write(canvas, 118, 408, "Lodge", "EB Garamond 12 Italic", 206, "#b04a1d")
    write(canvas, 122, 648, "Three nights. One private sauna.", "Lato Bold", 46, "#12294d")
    return canvas
