"""Saffron & Salt, a cooking app: a bowl of ramen on a dark table, seen from above."""

from PIL import ImageDraw

from studio import *

BOWL_X, BOWL_Y, BOWL = 1370, 540, 430


def table(canvas):
    canvas.gradient([(0, "#16302f"), (0.5, "#1d3b38"), (1, "#0f2423")], 35)
    grain = fractal(canvas.shape, 300, 5, octaves=8, gain=0.62, stretch=(9, 0.16))
    canvas.blend("#2f5650", smooth(grain, 0.5, 0.95) * 0.5)
    canvas.blend("#081615", smooth(1 - grain, 0.55, 0.98) * 0.6)
    for board, y in enumerate((-20, 268, 556, 844)):
        canvas.blend("#050d0d", np.exp(-(((canvas.y - y) / 2.2) ** 2)) * 0.85)
        canvas.blend("#4a776c", np.exp(-(((canvas.y - y - 4) / 1.6) ** 2)) * 0.25)
    canvas.glow(1250, 60, 1300, "#ffd9a0", 0.22, 1.6)


def soft_shadow(canvas, shape, dx=26, dy=38, blur=26, strength=0.75):
    def cast(context):
        context.translate(dx, dy)
        shape(context)
        paint(context, "#030a0a")

    canvas.draw(cast, blur=blur, opacity=strength)


def bowl(canvas):
    disc = lambda context, radius: ellipse(context, BOWL_X, BOWL_Y, radius, radius)
    soft_shadow(canvas, lambda context: disc(context, BOWL), 34, 48, 38, 0.85)

    def ware(context):
        disc(context, BOWL)
        paint(context, linear(BOWL_X - 300, BOWL_Y - 300, BOWL_X + 300, BOWL_Y + 320, (0, "#f4ece0"), (0.5, "#c9bdac"), (1, "#7d7468")))
        disc(context, BOWL - 18)
        paint(context, linear(BOWL_X - 280, BOWL_Y - 280, BOWL_X + 280, BOWL_Y + 280, (0, "#8f8577"), (0.35, "#cfc3b2"), (1, "#fbf4e8")))
        disc(context, BOWL - 34)
        paint(context, linear(BOWL_X - 280, BOWL_Y - 280, BOWL_X + 280, BOWL_Y + 280, (0, "#2a4a63"), (1, "#4f7f9c")))
        disc(context, BOWL - 42)
        paint(context, linear(BOWL_X - 280, BOWL_Y - 280, BOWL_X + 280, BOWL_Y + 280, (0, "#6f675b"), (0.5, "#b8ac9a"), (1, "#efe6d8")))
        disc(context, BOWL - 76)
        paint(context, radial(BOWL_X, BOWL_Y, BOWL - 76, (0, "#d98b34"), (0.7, "#b9621f"), (0.93, "#8d4216"), (1, "#57260d"), fx=BOWL_X + 60, fy=BOWL_Y + 80))

    canvas.draw(ware)
    random = np.random.default_rng(12)
    speckles = [(random.uniform(0, 2 * math.pi), random.uniform(BOWL - 17, BOWL - 2), random.uniform(0.8, 2.4)) for _ in range(170)]

    def glaze(context):
        for angle, reach, size in speckles:
            ellipse(context, BOWL_X + reach * math.cos(angle), BOWL_Y + reach * math.sin(angle), size, size)
        paint(context, "#5d5144")

    canvas.draw(glaze, opacity=0.6)


def broth(canvas):
    random = np.random.default_rng(5)
    inside = np.hypot(canvas.x - BOWL_X, canvas.y - BOWL_Y) < BOWL - 78
    swirl = fractal(canvas.shape, 130, 14, octaves=5)
    canvas.blend("#f2b45a", inside * smooth(swirl, 0.55, 0.95) * 0.45)
    canvas.blend("#7a3210", inside * smooth(1 - swirl, 0.6, 1) * 0.5)

    def oil(context):
        for _ in range(120):
            angle, reach, size = random.uniform(0, 2 * math.pi), (BOWL - 92) * random.uniform(0.2, 1) ** 0.5, random.uniform(2, 10)
            x, y = BOWL_X + reach * math.cos(angle), BOWL_Y + reach * math.sin(angle)
            ellipse(context, x, y, size, size * 0.94)
            paint(context, radial(x, y, size, (0, "#ffd488", 0.25), (0.75, "#ffca70", 0.3), (1, "#fff0c8", 0.75)))

    canvas.draw(oil)


def noodles(canvas):
    random = np.random.default_rng(9)
    strands = []
    for bundle in range(9):
        turn, cx, cy = random.uniform(0, math.pi), BOWL_X + random.uniform(-150, 110), BOWL_Y + random.uniform(-60, 190)
        sway = random.uniform(50, 110)
        for strand in range(9):
            offset = (strand - 4) * 13 + random.uniform(-3, 3)
            points = []
            for step in range(9):
                t = step / 8 * 2 - 1
                u, v = t * 215, offset + sway * math.sin(t * 2.6 + bundle) + random.uniform(-4, 4)
                x, y = cx + u * math.cos(turn) - v * math.sin(turn), cy + u * math.sin(turn) + v * math.cos(turn)
                reach = math.hypot(x - BOWL_X, y - BOWL_Y)
                most = BOWL - 104
                if reach > most:
                    x, y = BOWL_X + (x - BOWL_X) * most / reach, BOWL_Y + (y - BOWL_Y) * most / reach
                points.append((x, y))
            strands.append(points)

    def lay(context):
        for points in strands:
            for wide, colour, dx in ((15, "#7d430f", 2.5), (12, "#e9b45c", 0), (8, "#f6cf82", -1.5), (3, "#ffeab8", -3)):
                context.save()
                context.translate(dx * 0.4, dx)
                spline(context, points)
                context.set_line_width(wide)
                context.set_source_rgb(*rgb(colour))
                context.stroke()
                context.restore()

    canvas.draw(lay)


def egg(canvas, x, y, angle, size=1.0):
    shape = lambda context: ellipse(context, x, y, 92 * size, 74 * size, angle)
    soft_shadow(canvas, shape, 8, 14, 9, 0.6)

    def halves(context):
        shape(context)
        paint(context, linear(x - 70, y - 70, x + 70, y + 80, (0, "#fffdf4"), (0.6, "#f7ecd2"), (1, "#d9bd8c")))
        ellipse(context, x + 5 * size, y + 3 * size, 53 * size, 45 * size, angle)
        paint(context, radial(x, y, 58 * size, (0, "#ff9d1c"), (0.6, "#f78a0d"), (0.86, "#ffb63d"), (1, "#ffd46f")))
        ellipse(context, x - 12 * size, y - 14 * size, 17 * size, 9 * size, angle - 0.5)
        paint(context, radial(x - 12 * size, y - 14 * size, 18 * size, (0, "#ffffff", 0.9), (1, "#ffffff", 0)))

    canvas.draw(halves)


def meat(canvas, x, y, size, seed):
    random = np.random.default_rng(seed)
    edge = [(x + size * (1 + random.uniform(-0.05, 0.05)) * math.cos(a), y + size * 0.94 * (1 + random.uniform(-0.05, 0.05)) * math.sin(a)) for a in np.linspace(0, 2 * math.pi, 15)[:-1]]
    soft_shadow(canvas, lambda context: spline(context, edge, True), 9, 14, 9, 0.65)

    def slice_(context):
        spline(context, edge, True)
        paint(context, linear(x - size, y - size, x + size, y + size, (0, "#d88a63"), (0.5, "#b9623f"), (1, "#6c2a18")), keep=True)
        context.clip()
        for turn in np.linspace(0, 4.6 * math.pi, 130):
            reach = size * (0.06 + 0.9 * turn / (4.6 * math.pi))
            px, py = x + reach * math.cos(turn), y + reach * 0.94 * math.sin(turn)
            ellipse(context, px, py, 7 + 4 * math.sin(turn * 2.3), 6)
            paint(context, "#f0c3a0")
        for _ in range(70):
            angle, reach = random.uniform(0, 2 * math.pi), size * random.uniform(0, 1)
            ellipse(context, x + reach * math.cos(angle), y + reach * math.sin(angle), random.uniform(3, 12), 2.2, random.uniform(0, 3))
            paint(context, random.choice(("#8a3a20", "#e6ad88", "#a04a2b")))
        context.reset_clip()
        spline(context, edge, True)
        context.set_line_width(8)
        context.set_source(linear(x - size, y - size, x + size, y + size, (0, "#f2b184"), (0.6, "#7c3018"), (1, "#3d130a")))
        context.stroke()

    canvas.draw(slice_)


def nori(canvas):
    points = [(1560, 236), (1690, 330), (1640, 486), (1496, 404)]
    soft_shadow(canvas, lambda context: polygon(context, points), 12, 18, 10, 0.65)

    def sheet(context):
        polygon(context, points)
        paint(context, linear(1500, 240, 1690, 480, (0, "#2f4a37"), (0.5, "#172a20"), (1, "#0a1711")))

    canvas.draw(sheet)
    plain = Image.new("L", (canvas.width, canvas.height))
    ImageDraw.Draw(plain).polygon(points, fill=255)
    mask = np.asarray(plain) / 255
    canvas.blend("#5a8a63", mask * smooth(fractal(canvas.shape, 14, 3, octaves=4), 0.55, 0.9) * 0.4)


def greens(canvas):
    random = np.random.default_rng(31)
    rings = []
    for _ in range(46):
        angle, reach = random.uniform(0, 2 * math.pi), 150 * random.uniform(0, 1) ** 0.6
        rings.append((1425 + reach * math.cos(angle) * 1.15, 505 + reach * math.sin(angle) * 0.8, random.uniform(14, 25), random.uniform(0.75, 1), random.uniform(0, 3)))

    def cast(context):
        for x, y, size, squash, turn in rings:
            ellipse(context, x + 5, y + 8, size, size * squash, turn)
            paint(context, "#1a1206")

    def lay(context):
        for x, y, size, squash, turn in rings:
            for share, colour in ((1, "#3f8a2e"), (0.9, "#79c24a"), (0.72, "#cdeb9a"), (0.5, "#5fa83a"), (0.38, "#8a4a16")):
                ellipse(context, x, y, size * share, size * share * squash, turn)
                paint(context, colour)
            context.arc(x, y, size * 0.82, 3.4, 4.6)
            context.set_line_width(2.5)
            context.set_source_rgba(1, 1, 1, 0.7)
            context.stroke()

    def seeds(context):
        for _ in range(80):
            angle, reach = random.uniform(0, 2 * math.pi), (BOWL - 120) * random.uniform(0, 1) ** 0.5
            x, y, turn = BOWL_X + reach * math.cos(angle), BOWL_Y + reach * math.sin(angle), random.uniform(0, 3)
            ellipse(context, x + 1.5, y + 2.5, 7, 4, turn)
            paint(context, "#5d3210")
            ellipse(context, x, y, 6.5, 3.8, turn)
            paint(context, "#fbe6bd")

    def chilli(context):
        for _ in range(26):
            x, y, turn = 1425 + random.normal(0, 70), 490 + random.normal(0, 45), random.uniform(0, 6)
            spline(context, [(x, y), (x + 26 * math.cos(turn), y + 26 * math.sin(turn)), (x + 44 * math.cos(turn + 0.7), y + 44 * math.sin(turn + 0.7))])
            context.set_line_width(3.4)
            context.set_source_rgb(*rgb(random.choice(("#d8281c", "#b3160f", "#f04a2a"))))
            context.stroke()

    canvas.draw(cast, blur=4, opacity=0.6).draw(lay).draw(seeds).draw(chilli)


def chopsticks(canvas):
    pairs = [((1130, 1010), (1905, 742)), ((1150, 1046), (1912, 790))]

    def shape(context):
        for (x0, y0), (x1, y1) in pairs:
            angle = math.atan2(y1 - y0, x1 - x0)
            nx, ny = -math.sin(angle), math.cos(angle)
            polygon(context, [(x0 + nx * 4, y0 + ny * 4), (x1 + nx * 12, y1 + ny * 12), (x1 - nx * 12, y1 - ny * 12), (x0 - nx * 4, y0 - ny * 4)])

    soft_shadow(canvas, shape, 16, 26, 10, 0.7)

    def wood(context):
        for (x0, y0), (x1, y1) in pairs:
            angle = math.atan2(y1 - y0, x1 - x0)
            nx, ny = -math.sin(angle), math.cos(angle)
            polygon(context, [(x0 + nx * 4, y0 + ny * 4), (x1 + nx * 12, y1 + ny * 12), (x1 - nx * 12, y1 - ny * 12), (x0 - nx * 4, y0 - ny * 4)])
            paint(context, linear(x0 - nx * 12, y0 - ny * 12, x0 + nx * 12, y0 + ny * 12, (0, "#c4573a"), (0.35, "#8c2a1c"), (1, "#3f0f0b")))
            ex, ey = x0 + (x1 - x0) * 0.83, y0 + (y1 - y0) * 0.83
            polygon(context, [(ex + nx * 11, ey + ny * 11), (x1 + nx * 12, y1 + ny * 12), (x1 - nx * 12, y1 - ny * 12), (ex - nx * 11, ey - ny * 11)])
            paint(context, linear(ex - nx * 12, ey - ny * 12, ex + nx * 12, ey + ny * 12, (0, "#fff0c4"), (0.4, "#d9a441"), (1, "#7a4f12")))

    canvas.draw(wood)


def saucer(canvas, x, y, size, filling):
    soft_shadow(canvas, lambda context: ellipse(context, x, y, size, size), 14, 22, 16, 0.75)

    def dish(context):
        ellipse(context, x, y, size, size)
        paint(context, linear(x - size, y - size, x + size, y + size, (0, "#f6eee2"), (1, "#857b6d")))
        ellipse(context, x, y, size * 0.86, size * 0.86)
        paint(context, linear(x - size, y - size, x + size, y + size, (0, "#3a352f"), (1, "#c9bfae")))
        ellipse(context, x, y, size * 0.78, size * 0.78)
        paint(context, filling)

    canvas.draw(dish)


def herbs(canvas):
    random = np.random.default_rng(77)

    def leaf(context, x, y, length, turn, shade):
        context.save()
        context.translate(x, y)
        context.rotate(turn)
        context.move_to(0, 0)
        context.curve_to(length * 0.3, -length * 0.34, length * 0.8, -length * 0.26, length, 0)
        context.curve_to(length * 0.8, length * 0.26, length * 0.3, length * 0.34, 0, 0)
        paint(context, linear(0, -length * 0.3, 0, length * 0.3, (0, mix(shade, "#d8f0a0", 0.35)), (0.5, shade), (1, mix(shade, "#06160c", 0.55))))
        context.move_to(0, 0)
        context.line_to(length * 0.92, 0)
        context.set_line_width(1.8)
        context.set_source_rgba(0.85, 0.95, 0.65, 0.55)
        context.stroke()
        context.restore()

    for x, y, start in ((1790, 96, 2.4), (960, 930, -0.7)):
        leaves = [(x + random.uniform(-46, 46), y + random.uniform(-34, 34), random.uniform(62, 104), start + random.uniform(-1.5, 1.5)) for _ in range(9)]

        def cast(context):
            for lx, ly, length, turn in leaves:
                leaf(context, lx + 9, ly + 15, length, turn, "#020605")

        def lay(context):
            for lx, ly, length, turn in leaves:
                leaf(context, lx, ly, length, turn, random.choice(("#3f8c3b", "#2f7434", "#58a044")))

        canvas.draw(cast, blur=8, opacity=0.7).draw(lay)


def make():
    canvas = Canvas()
    table(canvas)
    chopsticks(canvas)
    herbs(canvas)
    saucer(canvas, 1010, 190, 104, radial(1010, 190, 82, (0, "#8d2414"), (0.7, "#5c0f0a"), (1, "#2b0504"), fx=985, fy=160))
    bowl(canvas)
    broth(canvas)
    noodles(canvas)
    nori(canvas)
    meat(canvas, 1215, 400, 118, 2)
    meat(canvas, 1330, 318, 104, 4)
    egg(canvas, 1560, 640, 0.5)
    egg(canvas, 1430, 742, -0.2, 0.94)
    greens(canvas)
    rim = np.hypot(canvas.x - BOWL_X, canvas.y - BOWL_Y)
    canvas.blend("#1c0d05", (rim < BOWL - 76) * smooth(rim, BOWL - 150, BOWL - 76) * 0.45 * smooth(-(canvas.x + canvas.y), -2300, -1500))
    steam = fractal(canvas.shape, 340, 41, octaves=5, stretch=(0.55, 1.5))
    plume = np.exp(-(((canvas.x - 1330) / 330) ** 2)) * np.exp(-(((canvas.y - 330) / 330) ** 2))
    canvas.blend("#fff4e2", smooth(steam, 0.45, 1) * plume * 0.34, "screen")
    canvas.blend("#0a1a19", (1 - smooth(canvas.x, 300, 1010)) * 0.72)
    canvas.vignette(0.4, 0.62, 0.5).grain(0.011)

    shadow = ("#04100f", 14, 5, 0.7)
    write(canvas, 120, 176, "THE KITCHEN COMPANION", "Lato Bold", 29, "#e5b96c", tracking=200)
    write(canvas, 118, 268, "Saffron", "EB Garamond 12", 196, "#fff6e6", shadow=shadow)
    write(canvas, 118, 448, "& Salt", "EB Garamond 12 Italic", 196, "#f0bf6a", shadow=shadow)
    write(canvas, 122, 668, "Dinner in twenty minutes.", "Lato Bold", 46, "#ffffff", shadow=shadow)
    return canvas
