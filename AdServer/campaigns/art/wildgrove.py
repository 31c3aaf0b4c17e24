"""Wildgrove Seeds, a garden catalogue: a bouquet of garden flowers on deep green."""

from studio import *


def petal(context, length, wide, light, dark, heart, veins=5, notch=0.0):
    """Points away along +x from (0, 0)."""
    context.move_to(0, 0)
    context.curve_to(length * 0.25, -wide * 0.75, length * 0.75, -wide * 1.05, length, -wide * 0.2)
    context.curve_to(length * (1.02 - notch), 0, length * (1.02 - notch), 0, length, wide * 0.2)
    context.curve_to(length * 0.75, wide * 1.05, length * 0.25, wide * 0.75, 0, 0)
    context.close_path()
    paint(context, linear(0, 0, length, 0, (0, heart), (0.32, dark), (1, light)), keep=True)
    context.save()
    context.clip()
    for vein in range(-veins, veins + 1):
        context.move_to(0, 0)
        context.curve_to(length * 0.4, vein * wide * 0.13, length * 0.7, vein * wide * 0.2, length * 0.96, vein * wide * 0.17)
    context.set_line_width(max(0.8, length * 0.008))
    context.set_source_rgba(*rgb(heart), 0.35)
    context.stroke()
    context.restore()


def flower(canvas, x, y, size, light, dark, heart, centre, petals=(13, 11), seed=1, turn=0.0, squash=0.94):
    random = np.random.default_rng(seed)

    def at(context):
        context.translate(x, y)
        context.rotate(turn)
        context.scale(1, squash)

    def cast(context):
        context.translate(size * 0.07, size * 0.12)
        at(context)
        for i in range(petals[0]):
            context.save()
            context.rotate(2 * math.pi * i / petals[0])
            petal(context, size, size * 0.24, "#02100a", "#02100a", "#02100a", veins=0)
            context.restore()

    canvas.draw(cast, blur=size * 0.06, opacity=0.6)
    for ring, count in enumerate(petals):
        reach = size * (1 - 0.26 * ring)
        angles = [2 * math.pi * i / count + ring * 0.3 + random.uniform(-0.07, 0.07) for i in range(count)]

        def shade(context):
            context.translate(size * 0.02, size * 0.035)
            at(context)
            for angle in angles:
                context.save()
                context.rotate(angle)
                petal(context, reach, reach * 0.25, "#1a0612", "#1a0612", "#1a0612", veins=0)
                context.restore()

        def lay(context):
            at(context)
            for angle in angles:
                context.save()
                context.rotate(angle)
                lit = 0.5 - 0.5 * math.sin(angle + turn + 0.8)
                petal(context, reach * random.uniform(0.94, 1.04), reach * random.uniform(0.22, 0.27), mix(dark, light, 0.45 + 0.55 * lit), mix(heart, dark, 0.6 + 0.4 * lit), heart)
                context.restore()

        if ring:
            canvas.draw(shade, blur=size * 0.025, opacity=0.4)
        canvas.draw(lay)

    def seeds(context):
        at(context)
        ellipse(context, 0, 0, size * 0.24, size * 0.24)
        paint(context, radial(0, 0, size * 0.24, (0, mix(centre, "#2a1204", 0.6)), (0.7, centre), (1, mix(centre, "#1a0a02", 0.55))))
        for i in range(150):
            reach, angle = size * 0.225 * math.sqrt(i / 150), i * 2.39996
            dot = size * (0.008 + 0.009 * i / 150)
            px, py = reach * math.cos(angle), reach * math.sin(angle)
            ellipse(context, px, py + dot * 0.5, dot, dot)
            paint(context, mix(centre, "#1a0a02", 0.6))
            ellipse(context, px, py, dot * 0.8, dot * 0.8)
            paint(context, mix(centre, "#fff2b8", 0.25 + 0.6 * i / 150))

    canvas.draw(seeds)


def leaf(context, x, y, length, wide, turn, light, dark, bend=0.18):
    context.save()
    context.translate(x, y)
    context.rotate(turn)
    tip = (length, length * bend)
    context.move_to(0, 0)
    context.curve_to(length * 0.25, -wide, length * 0.75, -wide * 0.7, *tip)
    context.curve_to(length * 0.7, wide * 0.95, length * 0.25, wide * 0.8, 0, 0)
    context.close_path()
    paint(context, linear(0, -wide, 0, wide, (0, light), (0.5, mix(light, dark, 0.5)), (0.52, mix(light, dark, 0.75)), (1, dark)), keep=True)
    context.save()
    context.clip()
    context.set_source_rgba(*rgb(mix(light, "#ffffff", 0.45)), 0.4)
    context.set_line_width(max(1, length * 0.006))
    for vein in np.linspace(0.1, 0.85, 8):
        for side in (-1, 1):
            context.move_to(length * vein, length * bend * vein * vein)
            context.curve_to(length * (vein + 0.08), side * wide * 0.3, length * (vein + 0.14), side * wide * 0.6, length * (vein + 0.2), side * wide)
    context.stroke()
    context.set_line_width(max(1.4, length * 0.011))
    context.move_to(0, 0)
    context.curve_to(length * 0.3, 0, length * 0.7, length * bend * 0.35, *tip)
    context.set_source_rgba(*rgb(mix(light, "#ffffff", 0.5)), 0.65)
    context.stroke()
    context.restore()
    context.restore()


def foliage(canvas, leaves, blur=0.0, strength=1.0):
    def cast(context):
        for x, y, length, wide, turn, _, _ in leaves:
            leaf(context, x + 14, y + 22, length, wide, turn, "#010a06", "#010a06")

    canvas.draw(cast, blur=14 + blur, opacity=0.55 * strength)
    canvas.draw(lambda context: [leaf(context, *one) for one in leaves], blur=blur, opacity=strength)


def sprig(canvas, x, y, length, turn, colour, seed):
    random = np.random.default_rng(seed)

    def lay(context):
        context.translate(x, y)
        context.rotate(turn)
        context.move_to(0, 0)
        context.curve_to(length * 0.3, -length * 0.06, length * 0.7, length * 0.05, length, -length * 0.03)
        context.set_line_width(4)
        context.set_source_rgb(*rgb("#5f8a4a"))
        context.stroke()
        for i in range(70):
            t = 0.25 + 0.75 * i / 70
            spread = length * 0.075 * (1.15 - t)
            px, py = length * t, -length * 0.03 * t + random.normal(0, spread)
            size = length * 0.021 * (1.3 - t) + 2.5
            ellipse(context, px + size * 0.3, py + size * 0.5, size, size * 0.8)
            paint(context, mix(colour, "#12041f", 0.65))
            ellipse(context, px, py, size, size * 0.8)
            paint(context, mix(colour, "#ffffff", random.uniform(0, 0.45)))

    canvas.draw(lay)


def make():
    canvas = Canvas()
    canvas.gradient([(0, "#0c3b2c"), (0.55, "#0a2f26"), (1, "#06201b")], 40)
    canvas.glow(1380, 420, 1000, "#4f9a68", 0.4, 1.8)
    random = np.random.default_rng(16)
    greens = (("#6fae62", "#1f5a38"), ("#4f9460", "#123f2c"), ("#8cc06a", "#2f6a3a"), ("#3f8a78", "#0d3a36"))

    deep = []
    for _ in range(44):
        angle = random.uniform(0, 2 * math.pi)
        light, dark = greens[random.integers(0, 4)]
        deep.append((1390 + 250 * math.cos(angle), 560 + 210 * math.sin(angle), random.uniform(260, 430), random.uniform(52, 84), angle + random.uniform(-0.5, 0.5), mix(light, "#0a2f26", 0.55), mix(dark, "#06201b", 0.55)))
    foliage(canvas, deep, blur=3, strength=0.9)
    for x, y, length, turn, colour, seed in ((1240, 520, 430, -2.25, "#9a7be0", 1), (1330, 430, 420, -1.7, "#b48cf0", 2), (1600, 470, 420, -0.62, "#9a7be0", 3), (1560, 640, 400, 0.62, "#8a6ad8", 4), (1180, 700, 380, 2.75, "#a98bea", 5)):
        sprig(canvas, x, y, length, turn, colour, seed)
    front = []
    for _ in range(30):
        angle = random.uniform(0, 2 * math.pi)
        light, dark = greens[random.integers(0, 4)]
        front.append((1390 + 200 * math.cos(angle), 560 + 170 * math.sin(angle), random.uniform(230, 340), random.uniform(42, 66), angle + random.uniform(-0.5, 0.5), light, dark))
    foliage(canvas, front)

    pinks = ("#ffd0dc", "#f0608f", "#8f1547", "#f2b430")
    corals = ("#ffd9b8", "#ff7f50", "#a82a1a", "#ffcf5a")
    creams = ("#ffffff", "#ffe9c4", "#d99a3f", "#f0a020")
    plums = ("#d9b8ff", "#8a4fd0", "#371063", "#ffd24a")
    golds = ("#fff0a8", "#ffc12e", "#b9640a", "#7a3a0a")
    for x, y, size, colours, petals, seed, turn in (
        (1625, 286, 150, plums, (14, 12), 11, 0.3),
        (1126, 372, 140, golds, (16, 13), 12, 0.8),
        (1700, 600, 140, creams, (15, 12), 13, 0.1),
        (1150, 756, 160, plums, (14, 12), 14, 1.2),
        (1600, 840, 168, corals, (13, 11, 9), 15, 0.6),
        (1390, 268, 172, creams, (16, 13), 16, 0.4),
        (1360, 812, 150, golds, (15, 12), 17, 0.2),
        (1540, 520, 190, corals, (14, 12, 10), 18, 0.9),
        (1280, 560, 232, pinks, (15, 13, 11), 19, 0.15),
    ):
        flower(canvas, x, y, size, *colours, petals=petals, seed=seed, turn=turn)

    def pollen(context):
        for _ in range(70):
            size = random.uniform(1.2, 3.8)
            ellipse(context, random.uniform(880, 1900), random.uniform(40, 1040), size, size)
            context.set_source_rgba(1, 0.93, 0.65, random.uniform(0.25, 0.85))
            context.fill()

    canvas.draw(pollen, blur=1.1, how="screen")
    canvas.blend("#06231b", (1 - smooth(canvas.x, 420, 1000)) * 0.75)
    canvas.vignette(0.34, 0.66, 0.5).grain(0.009)

    shadow = ("#02120c", 14, 4, 0.7)
    write(canvas, 122, 172, "THE SPRING CATALOGUE", "Lato Bold", 29, "#ffd98a", tracking=200)
    write(canvas, 116, 268, "Wildgrove", "EB Garamond 12", 186, "#fffaf0", shadow=shadow)
    write(canvas, 118, 452, "Seeds", "EB Garamond 12 Italic", 186, "#ffb9c9", shadow=shadow)
    write(canvas, 122, 664, "Four hundred ways to bloom.", "Lato Bold", 46, "#ffffff", shadow=shadow)
    return canvas
