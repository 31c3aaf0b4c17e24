"""Starlite Drive-In, an open-air cinema: cars under the stars before a glowing screen."""

from studio import *

SCREEN = [(1010, 236), (1746, 190), (1746, 640), (1010, 606)]


def sky(canvas):
    canvas.gradient([(0, "#070b2a"), (0.3, "#14184f"), (0.52, "#4a2276"), (0.66, "#b23a7f"), (0.74, "#ff7d6b"), (0.8, "#ffb27a"), (1, "#ffb27a")])
    random = np.random.default_rng(2)
    field = np.zeros(canvas.shape)
    field[random.integers(0, 560, 620), random.integers(0, 1920, 620)] = random.uniform(0.3, 1, 620)
    canvas.blend("#ffffff", ndimage.gaussian_filter(field, 0.8) * 4.2 * (1 - smooth(canvas.y, 250, 600)), "add")
    clouds = fractal(canvas.shape, 280, 8, octaves=7, stretch=(3.4, 0.6))
    band = smooth(canvas.y, 330, 560) * (1 - smooth(canvas.y, 700, 800))
    canvas.blend("#2a1456", smooth(clouds, 0.5, 0.95) * band * 0.55)
    canvas.blend("#ff9f8a", smooth(1 - clouds, 0.62, 1) * band * 0.35, "screen")


def palm(canvas, x, y, height, lean, colour, seed):
    random = np.random.default_rng(seed)
    top_x, top_y = x + lean, y - height

    def tree(context):
        trunk = [(x + lean * t**1.7, y - height * t) for t in np.linspace(0, 1, 12)]
        for i in range(len(trunk) - 1):
            wide = height * (0.036 - 0.02 * i / 11)
            polygon(context, [(trunk[i][0] - wide, trunk[i][1]), (trunk[i + 1][0] - wide * 0.9, trunk[i + 1][1] - 2), (trunk[i + 1][0] + wide * 0.9, trunk[i + 1][1] - 2), (trunk[i][0] + wide, trunk[i][1])])
            paint(context, colour)
        for frond in range(13):
            angle = -math.pi * (0.02 + 0.96 * frond / 12) + random.uniform(-0.1, 0.1)
            length = height * random.uniform(0.36, 0.47)
            droop = height * random.uniform(0.12, 0.26)
            spine = [(top_x + length * t * math.cos(angle), top_y + length * t * math.sin(angle) * 0.75 + droop * t * t) for t in np.linspace(0, 1, 14)]
            for i in range(1, 14):
                sx, sy = spine[i]
                reach = height * 0.1 * math.sin(math.pi * min(1, i / 14 + 0.12)) + 3
                heading = math.atan2(sy - spine[i - 1][1], sx - spine[i - 1][0])
                for side in (-1, 1):
                    tip = heading + side * 1.05
                    polygon(context, [spine[i - 1], (sx + reach * math.cos(tip), sy + reach * math.sin(tip) + reach * 0.25), (sx, sy)])
                    paint(context, colour)
            spline(context, spine)
            context.set_line_width(height * 0.008)
            context.set_source_rgb(*rgb(colour))
            context.stroke()

    canvas.draw(tree)


def screen(canvas):
    canvas.glow(1378, 420, 900, "#7fb6ff", 0.42, 2.2)

    def frame(context):
        for x in (1090, 1250, 1500, 1660):
            polygon(context, [(x - 9, 560), (x + 9, 560), (x + 13, 800), (x - 13, 800)])
            paint(context, "#150c30")
        context.set_line_width(5)
        for left, right in ((1090, 1250), (1500, 1660)):
            context.move_to(left, 640)
            context.line_to(right, 770)
            context.move_to(right, 640)
            context.line_to(left, 770)
        context.set_source_rgb(*rgb("#150c30"))
        context.stroke()
        polygon(context, [(x + dx, y + dy) for (x, y), (dx, dy) in zip(SCREEN, ((-20, -20), (20, -20), (20, 20), (-20, 20)))])
        paint(context, linear(0, 180, 0, 660, (0, "#2c1d55"), (1, "#120a2b")))

    canvas.draw(frame)

    def film(context):
        polygon(context, SCREEN)
        context.clip()
        context.set_source(linear(0, 190, 0, 640, (0, "#bfe6ff"), (0.45, "#fff3d6"), (0.72, "#ffd9a8"), (1, "#f6a96a")))
        context.paint()
        ellipse(context, 1510, 408, 86, 86)
        paint(context, "#ffffff")
        for base, tall, colour, seed in ((520, 90, "#c9a6c8", 5), (556, 120, "#8c6ba8", 9), (600, 110, "#4d3b7c", 14)):
            line = ridge(760, base, tall, 0.5, seed, 7)
            polygon(context, [(1000, 660)] + [(1000 + i, line[i]) for i in range(0, 760, 4)] + [(1760, 660)])
            paint(context, colour)
        for x, y, tall in ((1180, 640, 190), (1296, 640, 120), (1668, 650, 150)):
            context.set_source_rgb(*rgb("#241a44"))
            context.set_line_width(tall * 0.15)
            context.move_to(x, y)
            context.line_to(x, y - tall)
            context.stroke()
            context.set_line_width(tall * 0.1)
            for side, low, reach, high in ((-1, 0.42, 0.24, 0.74), (1, 0.55, 0.22, 0.86)):
                context.move_to(x, y - tall * low)
                context.line_to(x + side * tall * reach * 0.7, y - tall * low)
                context.curve_to(x + side * tall * reach, y - tall * low, x + side * tall * reach, y - tall * (low + 0.06), x + side * tall * reach, y - tall * high)
                context.stroke()
        type_path(context, 1378, 258, "THE LONG WAY WEST", "Bebas Neue Bold", 66, tracking=60, align="centre", safe=False)
        paint(context, "#3b2a66")

    canvas.draw(film)
    canvas.draw(lambda context: (polygon(context, SCREEN), paint(context, "#cfe4ff")), blur=46, how="screen", opacity=0.16)


def car(context, x, y, size, colour, kind):
    """Seen from behind, its people watching; (x, y) is the ground below its middle, `size` its width."""
    context.save()
    context.translate(x, y)
    context.scale(size / 200, size / 200)
    dark = mix(colour, "#0a0618", 0.72)
    for side in (-1, 1):
        rounded(context, side * 74 - 17, -26, 34, 30, 8)
        paint(context, "#06040f")
    roof = {"coupe": 96, "wagon": 108, "convertible": 66}[kind]
    if kind != "convertible":
        spline(context, [(-78, -58), (-66, -88), (-48, -roof - 4), (0, -roof - 8), (48, -roof - 4), (66, -88), (78, -58)], True)
        paint(context, linear(0, -roof - 8, 0, -58, (0, mix(colour, "#ffffff", 0.3)), (0.3, colour), (1, dark)))
        spline(context, [(-66, -60), (-57, -86), (-42, -roof + 4), (0, -roof + 1), (42, -roof + 4), (57, -86), (66, -60)], True)
        paint(context, linear(0, -roof, 0, -58, (0, "#a8c8f4"), (1, "#4b5f9e")))
    else:
        spline(context, [(-72, -58), (-62, -88), (0, -92), (62, -88), (72, -58)], False)
        context.set_line_width(4)
        context.set_source_rgb(*rgb("#cfdcf6"))
        context.stroke()
    for head_x, lean in ((-27, 5), (27, -7)):
        ellipse(context, head_x + lean, -78, 12, 14)
        paint(context, "#140d2a")
        spline(context, [(head_x - 21, -52), (head_x - 14, -66), (head_x + lean, -70), (head_x + 16, -66), (head_x + 22, -52)], True)
        paint(context, "#140d2a")
    spline(context, [(-96, -12), (-100, -42), (-92, -58), (-40, -63), (0, -64), (40, -63), (92, -58), (100, -42), (96, -12), (0, -8)], True)
    paint(context, linear(0, -64, 0, -8, (0, mix(colour, "#ffffff", 0.45)), (0.16, colour), (0.7, dark), (1, "#08051a")))
    rounded(context, -99, -24, 198, 12, 6)
    paint(context, linear(0, -24, 0, -12, (0, "#f2f5ff"), (0.5, "#7d86b0"), (1, "#23264a")))
    rounded(context, -20, -44, 40, 14, 2)
    paint(context, "#ffe9b8")
    for side in (-1, 1):
        ellipse(context, side * 82, -44, 10, 9)
        paint(context, radial(side * 82, -44, 10, (0, "#ffd0b8"), (0.4, "#ff3b3b"), (1, "#7d0a1c")))
    context.restore()


def cars(canvas):
    rows = (
        (806, 118, [(1130, "#3a7bd5", "coupe"), (1290, "#d64550", "wagon"), (1455, "#e8b23a", "coupe"), (1615, "#49a078", "convertible"), (1780, "#8e5bd0", "coupe")]),
        (884, 176, [(1040, "#d98f2b", "convertible"), (1278, "#2fa3a0", "coupe"), (1520, "#c8395a", "coupe"), (1764, "#3f68c8", "wagon")]),
        (1002, 292, [(850, "#7a4fc0", "coupe"), (1262, "#e0503f", "convertible"), (1668, "#2f86c9", "coupe")]),
    )
    for y, size, row in rows:
        def shadow(context):
            for x, _, _ in row:
                ellipse(context, x, y + 4, size * 0.58, size * 0.07)
            paint(context, "#04020e")

        canvas.draw(shadow, blur=size * 0.05, opacity=0.85)
        canvas.draw(lambda context: [car(context, x, y, size, colour, kind) for x, colour, kind in row])
        for x, _, _ in row:
            for side in (-1, 1):
                canvas.glow(x + side * 0.41 * size, y - 0.22 * size, size * 0.22, "#ff4b3e", 0.6, 2.6)
            canvas.glow(x, y + 0.05 * size, size * 0.8, "#ff5a6a", 0.16, 2, squash=0.22)


def lights(canvas):
    posts = [(-40, 96), (500, 62), (1010, 120), (1500, 64), (1960, 110)]
    bulbs = []

    def wire(context):
        for (x0, y0), (x1, y1) in zip(posts, posts[1:]):
            points = [(x0 + (x1 - x0) * t, y0 + (y1 - y0) * t + 74 * 4 * t * (1 - t) * 0.55) for t in np.linspace(0, 1, 15)]
            spline(context, points)
            bulbs.extend(points[1:-1])
        context.set_line_width(3)
        context.set_source_rgb(*rgb("#0b0824"))
        context.stroke()

    canvas.draw(wire)

    def glass(context):
        for x, y in bulbs:
            ellipse(context, x, y + 9, 6.5, 9)
            paint(context, radial(x, y + 9, 9, (0, "#fffbe6"), (1, "#ffc35a")))

    canvas.draw(glass, blur=14, how="screen", opacity=1)
    canvas.draw(glass)


def neon(canvas, x, y, text, font, size, colour, core):
    for blur, opacity in ((46, 0.85), (18, 0.8), (6, 0.9)):
        canvas.draw(lambda c: (type_path(c, x, y, text, font, size), paint(c, colour)), blur=blur, how="screen", opacity=opacity)

    def tube(context):
        type_path(context, x, y, text, font, size)
        context.set_source_rgb(*rgb(colour))
        context.set_line_width(5)
        context.stroke_preserve()
        context.set_source_rgb(*rgb(core))
        context.fill()

    canvas.draw(tube)


def make():
    canvas = Canvas()
    sky(canvas)
    hills = ridge(1920, 800, 90, 0.5, 44, 9)
    canvas.mountains(hills, "#3b1a5f", "#221046", 160)
    palm(canvas, 930, 806, 330, 36, "#1b0f3d", 1)
    palm(canvas, 1830, 816, 470, -46, "#160b33", 2)
    palm(canvas, 1888, 820, 350, 20, "#120829", 3)
    screen(canvas)
    canvas.mountains(np.full(1920, 776.0), "#2b1650", "#0b0620", 240)
    canvas.glow(1378, 800, 780, "#8fb8ff", 0.34, 2, squash=0.26)
    gravel = fractal(canvas.shape, 40, 30, octaves=5, stretch=(2.6, 0.5))
    canvas.blend("#4a3a86", (canvas.y > 776) * smooth(gravel, 0.55, 1) * 0.18)
    cars(canvas)
    lights(canvas)
    canvas.blend("#090722", (1 - smooth(canvas.x, 300, 1060)) * 0.66)
    canvas.vignette(0.3, 0.62, 0.5).grain(0.011)

    shadow = ("#05031a", 14, 4, 0.8)
    neon(canvas, 116, 224, "Starlite", "Lobster Two Bold Italic", 218, "#ff4fa3", "#ffe3f1")
    write(canvas, 124, 468, "DRIVE-IN CINEMA", "Bebas Neue Bold", 104, ["#fff6d8", "#ffd27a"], tracking=66, shadow=shadow)
    write(canvas, 124, 598, "Tonight at nine. Bring a blanket.", "Lato Bold", 46, "#ffffff", shadow=shadow)
    return canvas
