"""Square images of twelve made-up products, one sign on one ground each, for grids and lists."""

from studio import *

SIZE = 512


def ground(top, bottom, glow=None):
    canvas = Canvas(SIZE, SIZE)
    canvas.gradient([(0, top), (1, bottom)], 62)
    if glow:
        canvas.glow(170, 120, 460, glow, 0.55, 1.8)
    return canvas


def sign(canvas, work, shadow=0.55):
    """Draws a sign with its soft shadow."""

    def cast(context):
        context.translate(6, 14)
        work(context, "#000000")

    canvas.draw(cast, blur=13, opacity=shadow)
    canvas.draw(lambda context: work(context, None))
    return canvas.grain(0.006)


def summit_fury():
    canvas = ground("#4a1b6b", "#ff7a3c", "#ffb56b")
    canvas.draw(lambda c: (ellipse(c, 330, 178, 74, 74), paint(c, "#fff0c4")))

    def work(context, flat):
        for points, light, dark in (
            ([(-60, 540), (180, 170), (300, 330), (380, 240), (600, 540)], "#6b2a6b", "#2a1040"),
            ([(-20, 540), (120, 330), (230, 430), (330, 350), (540, 540)], "#2c1148", "#150724"),
        ):
            polygon(context, points)
            paint(context, flat or linear(0, 170, 0, 520, (0, light), (1, dark)))
        polygon(context, [(180, 170), (236, 244), (204, 262), (178, 238), (152, 268), (126, 252)])
        paint(context, flat or "#ffe2c4")
        spline(context, [(150, 512), (250, 440), (214, 396), (268, 356)])
        context.set_line_width(26)
        context.set_source_rgb(*rgb(flat or "#ff6a3c"))
        context.stroke()

    return sign(canvas, work, 0.3)


def helion_reach():
    canvas = ground("#070a26", "#2a1a6b", "#4a5cff")
    random = np.random.default_rng(5)
    field = np.zeros(canvas.shape)
    field[random.integers(0, SIZE, 90), random.integers(0, SIZE, 90)] = 1
    canvas.blend("#ffffff", ndimage.gaussian_filter(field, 1) * 5, "add")

    def ring(context, flat, begin, end):
        context.save()
        context.translate(256, 262)
        context.rotate(-0.36)
        context.scale(1, 0.27)
        context.new_sub_path()
        context.arc(0, 0, 208, begin, end)
        context.restore()
        context.set_line_width(28)
        context.set_source(linear(60, 0, 450, 0, (0, flat or "#ffe6b8"), (1, flat or "#c98f5a")))
        context.stroke()

    def work(context, flat):
        ring(context, flat, math.pi, 2 * math.pi)
        ellipse(context, 256, 262, 134, 134)
        paint(context, flat or radial(256, 262, 140, (0, "#ffdca0"), (0.55, "#e08a4a"), (1, "#5a2440"), fx=205, fy=205))
        ring(context, flat, 0, math.pi)

    return sign(canvas, work)


def lantern_isles():
    canvas = ground("#221a5c", "#e0607a", "#ff9a6a").glow(256, 260, 250, "#ffc45a", 0.9, 2)

    def work(context, flat):
        context.arc(256, 128, 46, math.pi, 2 * math.pi)
        context.set_line_width(14)
        context.set_source_rgb(*rgb(flat or "#fff0d0"))
        context.stroke()
        spline(context, [(190, 168), (322, 168), (352, 262), (318, 372), (194, 372), (160, 262)], True)
        paint(context, flat or radial(256, 280, 150, (0, "#fffbe0"), (0.5, "#ffd056"), (1, "#f07a2a")))
        for y, wide in ((136, 150), (368, 150)):
            rounded(context, 256 - wide / 2, y, wide, 34, 12)
            paint(context, flat or "#4a1f3a")
        context.set_line_width(7)
        for x in (222, 290):
            context.move_to(x, 174)
            context.curve_to(x + (x - 256) * 0.7, 230, x + (x - 256) * 0.7, 310, x, 366)
            context.set_source_rgba(*rgb(flat or "#7a2f1a"), 0.6)
            context.stroke()

    return sign(canvas, work, 0.4)


def saffron_salt():
    canvas = ground("#1f5a52", "#0c2725", "#4a9a84")

    def work(context, flat):
        context.set_line_width(13)
        for x in (200, 256, 312):
            spline(context, [(x, 206), (x - 18, 172), (x + 18, 138), (x, 100)])
            context.set_source_rgba(*rgb(flat or "#fff4dc"), 0.85)
            context.stroke()
        context.move_to(92, 242)
        context.line_to(420, 242)
        context.curve_to(420, 350, 350, 408, 256, 408)
        context.curve_to(162, 408, 92, 350, 92, 242)
        context.close_path()
        paint(context, flat or linear(92, 240, 420, 410, (0, "#fff8ec"), (1, "#c9b48e")))
        rounded(context, 204, 400, 104, 24, 10)
        paint(context, flat or "#b39a70")
        rounded(context, 76, 226, 360, 34, 17)
        paint(context, flat or linear(0, 226, 0, 260, (0, "#f5c25a"), (1, "#d98f2a")))
        context.set_line_width(12)
        for x0, x1 in ((300, 448), (336, 470)):
            context.move_to(x0, 226)
            context.line_to(x1, 84)
            context.set_source_rgb(*rgb(flat or "#e5573f"))
            context.stroke()

    return sign(canvas, work)


def wildgrove():
    canvas = ground("#1c6a44", "#0b3428", "#5fb070")

    def work(context, flat):
        context.translate(256, 250)
        for ring, (count, reach, light, dark) in enumerate(((12, 186, "#ffc2d4", "#e8517f"), (10, 128, "#ff9fbc", "#c73568"))):
            for i in range(count):
                context.save()
                context.rotate(2 * math.pi * i / count + ring * 0.26)
                context.move_to(0, 0)
                context.curve_to(reach * 0.3, -reach * 0.26, reach * 0.9, -reach * 0.3, reach, 0)
                context.curve_to(reach * 0.9, reach * 0.3, reach * 0.3, reach * 0.26, 0, 0)
                paint(context, flat or linear(0, 0, reach, 0, (0, dark), (1, light)))
                context.restore()
        ellipse(context, 0, 0, 56, 56)
        paint(context, flat or radial(0, 0, 56, (0, "#ffe58a"), (1, "#e59a1c")))

    return sign(canvas, work)


def starlite():
    canvas = ground("#12104a", "#7a1f7a", "#ff5aa8")

    def star(context):
        polygon(context, [(256 + r * math.sin(i * math.pi / 5), 262 - r * math.cos(i * math.pi / 5)) for i, r in enumerate([178, 78] * 5)])

    def tube(context):
        star(context)
        context.set_line_width(22)
        context.set_source_rgb(*rgb("#ff6ab4"))
        context.stroke()

    for blur in (34, 12):
        canvas.draw(tube, blur=blur, how="screen")
    canvas.draw(tube)

    def core(context):
        star(context)
        context.set_line_width(9)
        context.set_source_rgb(*rgb("#fff0f8"))
        context.stroke()

    return canvas.draw(core).grain(0.006)


def nordlys():
    canvas = ground("#7fb4ea", "#eef6ff", "#ffffff")

    def work(context, flat):
        polygon(context, [(36, 420), (200, 150), (290, 290), (346, 214), (476, 420)])
        paint(context, flat or linear(0, 150, 0, 420, (0, "#5f8cc8"), (1, "#a9c8ec")))
        polygon(context, [(200, 150), (248, 226), (222, 240), (200, 216), (176, 246), (150, 232)])
        paint(context, flat or "#ffffff")
        for x, tall in ((150, 170), (372, 210), (296, 130)):
            for tier in range(4):
                low, half = 428 - tall * 0.2 * tier, tall * (0.28 - 0.055 * tier)
                polygon(context, [(x - half, low), (x, low - tall * 0.42), (x + half, low)])
                paint(context, flat or linear(x - half, 0, x + half, 0, (0, "#3f6ea8"), (1, "#1c3a68")))
        rounded(context, -20, 420, 560, 140, 20)
        paint(context, flat or "#fbfdff")

    return sign(canvas, work, 0.2)


def tidemark():
    canvas = ground("#10c0c8", "#0a4a9a", "#a0fff0")

    def work(context, flat):
        for base, light, dark in ((250, "#e8fffb", "#7fe0ea"), (320, "#7fd8f0", "#2a8fd0"), (392, "#2f8fd8", "#0b3f8a")):
            shift = base % 97
            crest = [(x, base + 34 * math.sin((x + shift * 2) / 62) - 12 * abs(math.sin((x + shift * 2) / 124))) for x in range(-20, 540, 8)]
            polygon(context, [(-20, 600)] + crest + [(540, 600)])
            paint(context, flat or linear(0, base - 66, 0, base + 150, (0, light), (1, dark)))

    return sign(canvas, work, 0.35)


def pocket_gambit():
    canvas = ground("#8a5a34", "#2f1a10", "#e0a868")

    def work(context, flat):
        rook = [(150, 412), (150, 384), (176, 372), (190, 226), (162, 206), (162, 120), (200, 120), (200, 152), (236, 152), (236, 120), (276, 120), (276, 152), (312, 152), (312, 120), (350, 120), (350, 206), (322, 226), (336, 372), (362, 384), (362, 412)]
        polygon(context, rook)
        paint(context, flat or linear(150, 0, 362, 0, (0, "#fff6e4"), (0.45, "#f0d6a8"), (1, "#a8763c")))
        rounded(context, 128, 400, 256, 40, 14)
        paint(context, flat or linear(128, 0, 384, 0, (0, "#fff2d8"), (1, "#a06c34")))
        if not flat:
            rounded(context, 178, 224, 156, 12, 6)
            paint(context, "#a8763c")

    return sign(canvas, work)


def morrow():
    canvas = ground("#1a1450", "#4a3aa0", "#8a7aff")

    def work(context, flat):
        ellipse(context, 240, 266, 152, 152)
        paint(context, flat or linear(120, 120, 340, 420, (0, "#fffbe6"), (1, "#ffd27a")))
        context.set_operator(cairo.OPERATOR_DEST_OUT)
        ellipse(context, 312, 226, 132, 132)
        paint(context, "#000000")
        context.set_operator(cairo.OPERATOR_OVER)
        for x, y, size in ((372, 150, 40), (428, 262, 24), (330, 250, 18)):
            context.move_to(x, y - size)
            for quarter in range(4):
                a = -math.pi / 2 + (quarter + 1) * math.pi / 2
                context.curve_to(x, y, x, y, x + size * math.cos(a), y + size * math.sin(a))
            paint(context, flat or "#ffffff")

    return sign(canvas, work)


def cadenza():
    canvas = ground("#e8443a", "#6a0f2a", "#ffb08a")

    def work(context, flat):
        for key in range(5):
            rounded(context, 82 + key * 71, 130, 64, 264, 12)
            paint(context, flat or linear(0, 130, 0, 394, (0, "#ffffff"), (1, "#e2d8d0")))
        for key in (0, 1, 3):
            rounded(context, 129 + key * 71, 122, 42, 158, 9)
            paint(context, flat or linear(0, 122, 0, 280, (0, "#3a2030"), (1, "#0e060c")))

    return sign(canvas, work)


def paper_fleet():
    canvas = ground("#ffcf5a", "#f0763a", "#fff6c8")

    def work(context, flat):
        polygon(context, [(256, 96), (150, 276), (256, 276)])
        paint(context, flat or "#ffffff")
        polygon(context, [(256, 96), (362, 276), (256, 276)])
        paint(context, flat or "#d8e4f0")
        polygon(context, [(66, 262), (186, 290), (256, 276), (326, 290), (446, 262), (356, 404), (156, 404)])
        paint(context, flat or linear(66, 0, 446, 0, (0, "#ffffff"), (0.5, "#f2f6fb"), (1, "#b8c8da")))
        polygon(context, [(186, 290), (256, 276), (326, 290), (256, 404)])
        paint(context, flat or "#dbe6f2")

    return sign(canvas, work, 0.4)


ALL = (summit_fury, helion_reach, lantern_isles, saffron_salt, wildgrove, starlite, nordlys, tidemark, pocket_gambit, morrow, cadenza, paper_fleet)
