"""Summit Fury, a mountain racing game: a car climbs towards a burning sunset."""

from studio import *


HORIZON = 684
REACH = 1080 - HORIZON


def road_edge(y, side):
    """Where the road's edge lies at height y; side is -1 or 1. The road leaves the canvas at the bottom right."""
    depth = np.clip((y - HORIZON) / REACH, 0, 1)
    middle = 1105 + 130 * np.sin(depth * 2.6 + 0.2) * (1 - depth) + 330 * depth**1.15
    return middle + side * (8 + 640 * depth**1.55)


def road(canvas):
    heights = np.arange(float(HORIZON), 1081, 4)

    def surface(context):
        left = [(road_edge(y, -1), y) for y in heights]
        right = [(road_edge(y, 1), y) for y in heights[::-1]]
        polygon(context, left + right)
        paint(context, linear(0, HORIZON, 0, 1080, (0, "#f09a6c"), (0.1, "#9a5068"), (0.4, "#54305e"), (1, "#2a1a42")))

    def markings(context):
        for side in (-0.93, 0.93):
            inner = [(road_edge(y, side), y) for y in heights]
            outer = [(road_edge(y, side * 1.025), y) for y in heights[::-1]]
            polygon(context, inner + outer)
            paint(context, linear(0, HORIZON, 0, 1080, (0, "#ffd9a0"), (1, "#f3b37e")))
        start = 0.03
        while start < 1.1:
            end = start * 1.28 + 0.012
            ys = HORIZON + REACH * np.linspace(start, end, 8)
            polygon(context, [(road_edge(y, -0.012), y) for y in ys] + [(road_edge(y, 0.012), y) for y in ys[::-1]])
            paint(context, linear(0, HORIZON, 0, 1080, (0, "#ffe3b5"), (1, "#ffcf8f")))
            start = end * 1.3 + 0.012

    def rail(context):
        for share in np.linspace(0.02, 1, 26) ** 1.5:
            y = HORIZON + REACH * share
            x, tall = road_edge(y, -1.1), 4 + 62 * share**1.2
            context.rectangle(x - 1 - 4 * share, y - tall, 2 + 8 * share, tall)
        paint(context, "#180e2b")
        top = [(road_edge(y, -1.1), y - 4 - 62 * ((y - HORIZON) / REACH) ** 1.2) for y in heights]
        low = [(road_edge(y, -1.1), y - 2 - 40 * ((y - HORIZON) / REACH) ** 1.2) for y in heights[::-1]]
        polygon(context, top + low)
        paint(context, linear(700, 0, 1500, 0, (0, "#5b2d55"), (0.6, "#ff9c6a"), (1, "#6b3358")))

    canvas.draw(surface).draw(markings, opacity=0.85).draw(rail)


def car(canvas, x, y, size):
    """From behind; (x, y) is the middle of the ground below it, `size` its width."""

    def at(context):
        context.translate(x, y)
        context.scale(size / 400, size / 400)

    def shadow(context):
        at(context)
        ellipse(context, 0, 4, 235, 26)
        paint(context, "#0a0516")

    def body(context):
        at(context)
        for side in (-1, 1):
            context.save()
            context.scale(side, 1)
            rounded(context, 118, -76, 72, 80, 16)
            paint(context, "#07050d")
            context.restore()
        # Cabin
        spline(context, [(-132, -138), (-104, -196), (-60, -214), (0, -218), (60, -214), (104, -196), (132, -138), (0, -128)], True)
        paint(context, linear(0, -220, 0, -130, (0, "#d94326"), (1, "#7c1526")))
        spline(context, [(-112, -142), (-88, -188), (-50, -201), (0, -204), (50, -201), (88, -188), (112, -142), (0, -136)], True)
        paint(context, linear(-110, -200, 110, -136, (0, "#341a3d"), (0.45, "#ff9d5e"), (0.55, "#8d3d58"), (1, "#1a0f2a")))
        # Body
        spline(context, [(-196, -66), (-204, -104), (-182, -138), (-120, -150), (0, -154), (120, -150), (182, -138), (204, -104), (196, -66), (176, -34), (0, -28), (-176, -34)], True)
        paint(context, linear(0, -154, 0, -28, (0, "#ff7b3a"), (0.3, "#e43a22"), (0.72, "#8a1424"), (1, "#3c0a1a")))
        spline(context, [(-180, -134), (-90, -147), (0, -150), (90, -147), (180, -134), (90, -139), (0, -142), (-90, -139)], True)
        paint(context, "#ffd29a")
        # Diffuser and plate
        spline(context, [(-150, -62), (0, -68), (150, -62), (128, -26), (0, -22), (-128, -26)], True)
        paint(context, "#140914")
        for fin in range(-3, 4):
            context.rectangle(fin * 30 - 2, -58, 4, 32)
        paint(context, "#3b1c33")
        rounded(context, -34, -92, 68, 22, 4)
        paint(context, "#1b0d1c")
        for side in (-1, 1):
            ellipse(context, side * 92, -44, 15, 12)
            paint(context, "#2b2230")
            ellipse(context, side * 92, -44, 10, 8)
            paint(context, "#ffae4d")
        # Wing
        rounded(context, -206, -196, 412, 15, 7)
        paint(context, linear(-206, 0, 206, 0, (0, "#2b1030"), (0.5, "#c9452e"), (1, "#2b1030")))
        for side in (-1, 1):
            polygon(context, [(side * 100, -182), (side * 112, -182), (side * 118, -146), (side * 102, -146)])
            paint(context, "#2b1030")
            polygon(context, [(side * 206, -204), (side * 210, -168), (side * 198, -168), (side * 198, -204)])
            paint(context, "#4b1630")

    def lamps(context):
        at(context)
        for side in (-1, 1):
            spline(context, [(side * 190, -122), (side * 120, -118), (side * 64, -110), (side * 66, -102), (side * 120, -104), (side * 188, -104)], True)
            paint(context, "#ff2d2d")
        rounded(context, -66, -110, 132, 4, 2)
        paint(context, "#ff5a3c")

    canvas.draw(shadow, blur=12, opacity=0.9)
    canvas.draw(body)
    canvas.draw(lamps, blur=26, how="add")
    canvas.draw(lamps, blur=7, how="add", opacity=0.8)
    canvas.draw(lamps)
    for side in (-1, 1):
        canvas.glow(x + side * 0.33 * size, y - 0.28 * size, 0.24 * size, "#ff3b24", 0.55)
        canvas.glow(x + side * 0.23 * size, y - 0.11 * size, 0.1 * size, "#ffb04a", 0.9)


def pines(canvas, seed, count, left, right, base, tall, colour):
    random = np.random.default_rng(seed)

    def trees(context):
        for _ in range(count):
            x, height = random.uniform(left, right), random.uniform(0.55, 1) * tall
            y = base(x) + random.uniform(0, 22)
            width = height * random.uniform(0.3, 0.38)
            for tier in range(5):
                low = y - height * (0.06 + 0.17 * tier)
                half = width * (0.5 - 0.085 * tier)
                polygon(context, [(x - half, low), (x, low - height * 0.32), (x + half, low)])
                paint(context, colour)

    canvas.draw(trees)


def make(width=1920, height=1080):
    canvas = Canvas(width, height)
    canvas.gradient([(0, "#160f3d"), (0.2, "#3a1a63"), (0.38, "#8a2a70"), (0.5, "#e2574f"), (0.58, "#ff9a4a"), (0.64, "#ffd58a"), (1, "#ffd58a")])
    clouds = fractal(canvas.shape, 260, 4, octaves=7, stretch=(3.6, 0.8))
    band = smooth(canvas.y, 60, 330) * (1 - smooth(canvas.y, 480, 640))
    canvas.blend("#ffb277", smooth(clouds, 0.5, 0.95) * band * 0.75, "screen")
    canvas.blend("#2a1250", smooth(1 - clouds, 0.55, 0.95) * band * 0.5)
    sun_x, sun_y = 1215, 560
    canvas.glow(sun_x, sun_y, 1250, "#ff6a3a", 0.5, 2.2).glow(sun_x, sun_y, 560, "#ffbc66", 0.75, 2)
    canvas.draw(lambda c: (ellipse(c, sun_x, sun_y, 132, 132), paint(c, "#fff3cf")), blur=1.2)
    canvas.draw(lambda c: (ellipse(c, sun_x, sun_y, 150, 150), paint(c, "#fff0c0")), blur=34, how="screen", opacity=0.8)

    far = ridge(width, 640, 250, 0.5, 21, 7)
    valley = np.exp(-(((np.arange(width) - sun_x) / 330) ** 2))
    canvas.mountains(far + valley * 120, "#b5476b", "#ffb072", 260)
    rock = fractal(canvas.shape, 150, 8, octaves=7, stretch=(0.55, 1.3))
    near = ridge(width, 690, 400, 0.55, 35, 6) + valley * 210
    canvas.mountains(near, "#6a2b63", "#e8775c", 380)
    lit = np.gradient(ndimage.gaussian_filter(rock, 3), axis=1) * 90
    face = smooth(canvas.y - near[None, :], 0, 8) * (1 - smooth(canvas.y - near[None, :], 60, 300))
    canvas.blend("#ff9a78", face * smooth(lit, 0.1, 0.9) * 0.45)
    canvas.blend("#3d1a55", face * smooth(-lit, 0.1, 0.9) * 0.4)
    left = ridge(width, 820, 430, 0.5, 52, 5) + smooth(np.arange(width), 380, 1080) * 360
    right = ridge(width, 850, 560, 0.5, 68, 5) + smooth(-np.arange(width), -1880, -1330) * 420
    canvas.mountains(np.minimum(left, right), "#3d1c52", "#7b3461", 460)
    hill = 742 + 60 * np.sin(np.arange(width) / 260 + 0.6) + ridge(width, 0, 16, 0.7, 5, 40)
    canvas.mountains(hill, "#25133f", "#150b29", 340)
    for seed, tall, shade in ((1, 130, "#241340"), (2, 190, "#190d30")):
        pines(canvas, seed, 60, -20, 760, lambda x: np.interp(x, np.arange(width), hill) + 18, tall, shade)
        pines(canvas, seed + 10, 26, 1500, 1940, lambda x: np.interp(x, np.arange(width), hill) + 6, tall, shade)
    road(canvas)
    canvas.glow(sun_x, 660, 520, "#ff9d55", 0.5, 2, squash=0.35)
    car(canvas, 1335, 915, 430)

    random = np.random.default_rng(3)

    def sparks(context):
        for _ in range(150):
            side = random.choice((-1, 1))
            start = random.uniform(0.15, 1)
            px, py = 1335 + side * random.uniform(110, 520) * start, 905 - random.uniform(-20, 150) * start
            context.set_line_width(random.uniform(1, 2.6))
            context.move_to(px, py)
            context.line_to(px + side * 46 * start, py + random.uniform(2, 20))
            context.set_source_rgba(1, 0.75, 0.45, random.uniform(0.15, 0.7))
            context.stroke()

    canvas.draw(sparks, how="add")
    shade = (1 - smooth(canvas.x, 120, 1050)) * smooth(canvas.y, -500, 700)
    canvas.blend("#12082a", shade * 0.62)
    canvas.vignette(0.32, 0.58, 0.52).grain()

    shadow = ("#0c0420", 16, 8, 0.75)
    write(canvas, 122, 132, "REDSTONE WORKS PRESENTS", "Lato Bold", 30, "#ffd9b0", tracking=190, shadow=shadow)
    write(canvas, 126, 232, "SUMMIT", "Bebas Neue Bold", 276, ["#fffaf0", "#ffd7a1"], slant=0.16, shadow=shadow)
    write(canvas, 120, 456, "FURY", "Bebas Neue Bold", 276, ["#ffb35c", "#ff5a36"], slant=0.16, shadow=shadow)
    write(canvas, 122, 694, "Twelve peaks. One record. Yours.", "Lato Bold", 46, "#ffffff", shadow=shadow)
    return canvas
