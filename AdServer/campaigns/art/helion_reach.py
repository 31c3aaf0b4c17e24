"""Helion Reach, a space strategy game: a fleet passes a ringed planet at its sunrise."""

from studio import *

PLANET_X, PLANET_Y, PLANET = 1420, 640, 400
TILT = -0.34
SUN = np.array([-0.72, -0.5, 0.34])


def stars(canvas):
    random = np.random.default_rng(6)
    for size, count, strength in ((0.55, 1500, 0.65), (0.9, 420, 0.9), (1.6, 70, 1.2)):
        field = np.zeros(canvas.shape)
        field[random.integers(0, canvas.height, count), random.integers(0, canvas.width, count)] = random.uniform(0.3, 1, count)
        field = ndimage.gaussian_filter(field, size) * size * size * 7 * strength
        canvas.blend(random.choice(("#cfe0ff", "#ffffff", "#ffe9cf")), field, "add")
    for x, y, size in ((820, 130, 60), (1760, 210, 46), (610, 860, 34), (1090, 70, 30)):
        canvas.glow(x, y, size, "#cfe2ff", 0.8, 5)
        canvas.blend("#dbe8ff", np.exp(-np.abs(canvas.x - x) / (size * 0.3)) * np.exp(-np.abs(canvas.y - y) / 1.1) * 0.9, "add")
        canvas.blend("#dbe8ff", np.exp(-np.abs(canvas.y - y) / (size * 0.3)) * np.exp(-np.abs(canvas.x - x) / 1.1) * 0.9, "add")


def nebula(canvas):
    drift = fractal(canvas.shape, 520, 3, octaves=5) - 0.5
    along = (canvas.x * 0.42 + canvas.y) / 1080 - 0.92 + drift * 0.55
    band = np.exp(-((along / 0.34) ** 2))
    dust = fractal(canvas.shape, 330, 17, octaves=8, gain=0.56)
    canvas.blend("#3d2a8f", band * smooth(dust, 0.25, 0.9) * 0.75, "screen")
    canvas.blend("#c2418c", band**2 * smooth(fractal(canvas.shape, 260, 23, octaves=7), 0.52, 1) * 0.55, "screen")
    canvas.blend("#2aa6c9", np.exp(-(((along + 0.3) / 0.2) ** 2)) * smooth(dust, 0.5, 1) * 0.45, "screen")
    canvas.blend("#03040f", band * smooth(fractal(canvas.shape, 210, 29, octaves=8), 0.6, 0.95) * 0.7)


def planet(canvas):
    x, y = (canvas.x - PLANET_X) / PLANET, (canvas.y - PLANET_Y) / PLANET
    reach = np.hypot(x, y)
    disc = np.clip((1 - reach) * PLANET + 0.5, 0, 1)
    z = np.sqrt(np.clip(1 - reach**2, 0, 1))
    light = SUN / np.linalg.norm(SUN)
    sunlit = x * light[0] + y * light[1] + z * light[2]
    # Bands follow latitude on a tilted globe, stirred by noise.
    latitude = y * math.cos(TILT) - x * math.sin(TILT)
    stir = fractal(canvas.shape, 240, 51, octaves=6, stretch=(2.6, 0.5)) - 0.5
    place = latitude * (1.1 - 0.25 * z) + stir * 0.16
    bands = np.zeros(canvas.shape + (3,))
    stops = [(-1.2, "#7d4a3a"), (-0.7, "#d59a62"), (-0.5, "#8e4a3c"), (-0.3, "#f0c48c"), (-0.12, "#c87a4a"), (0.02, "#ffe2b0"), (0.14, "#b5623f"), (0.36, "#e5ab70"), (0.52, "#7b3f3a"), (0.8, "#c98a5e"), (1.2, "#5d3430")]
    for channel in range(3):
        bands[..., channel] = np.interp(place, [p for p, _ in stops], [rgb(c)[channel] for _, c in stops])
    fine = fractal(canvas.shape, 70, 52, octaves=6, stretch=(3.4, 0.35))
    bands *= (0.82 + 0.36 * fine)[..., None]
    shade = smooth(sunlit, -0.12, 0.75) ** 1.15
    bands = bands * shade[..., None] + np.array(rgb("#0a0a1f")) * (1 - shade[..., None]) * 0.9
    # The ring's shadow on the globe.
    ring_shadow = np.exp(-(((latitude - 0.2 - 0.1 * z) / 0.035) ** 2)) * (x > -0.95)
    bands *= (1 - 0.5 * ring_shadow * shade)[..., None]
    rim = smooth(reach, 0.82, 1.0) * smooth(sunlit, -0.1, 0.5)
    bands += rim[..., None] * np.array(rgb("#7fb4ff")) * 0.6
    halo = np.clip(1 - (reach - 1) / 0.16, 0, 1) ** 3 * (reach > 1) * smooth(x * light[0] + y * light[1], -0.1, 0.9)
    canvas.blend("#6ea6ff", halo * 0.65, "screen")
    canvas.blend(bands, disc)


def ring(canvas, front):
    turn = math.radians(-19)
    u = ((canvas.x - PLANET_X) * math.cos(turn) + (canvas.y - PLANET_Y) * math.sin(turn)) / PLANET
    v = (-(canvas.x - PLANET_X) * math.sin(turn) + (canvas.y - PLANET_Y) * math.cos(turn)) / PLANET / 0.2
    reach = np.hypot(u, v)
    random = np.random.default_rng(8)
    marks = np.linspace(1.3, 2.2, 140)
    grooves = ndimage.gaussian_filter1d(random.random(140), 1.2)
    grooves = (grooves - grooves.min()) / (grooves.max() - grooves.min())
    density = np.interp(reach, marks, grooves * 0.65 + 0.35)
    density *= smooth(reach, 1.3, 1.36) * (1 - smooth(reach, 2.08, 2.2))
    density *= 1 - 0.9 * np.exp(-(((reach - 1.82) / 0.03) ** 2))
    half = v > 0 if front else v <= 0
    # The globe's shadow falls on the part of the ring that lies behind it, away from the sun.
    dark = np.exp(-(((u - 1.05 - 0.12 * v) / 0.5) ** 4)) * (v <= 0)
    colour = np.array(rgb("#f1d3a6")) * (0.75 + 0.35 * density[..., None]) * (1 - 0.85 * dark[..., None])
    canvas.blend(colour, density * half * 0.82)


def ship(context, length):
    """A cruiser that flies to the right, its nose at (0, 0)."""
    hull = [(0, 0), (-0.28, -0.055), (-0.5, -0.075), (-0.56, -0.12), (-0.78, -0.14), (-0.82, -0.09), (-1, -0.085), (-1.02, 0.05), (-0.7, 0.1), (-0.3, 0.06)]
    context.scale(length, length)
    polygon(context, hull)
    paint(context, linear(0, -0.13, 0, 0.1, (0, "#c3d0ea"), (0.35, "#5a6788"), (0.75, "#232a45"), (1, "#0c1024")))
    polygon(context, [(-0.12, -0.01), (-0.5, -0.045), (-0.95, -0.05), (-0.95, -0.03), (-0.5, -0.02)])
    paint(context, "#e8f0ff")
    polygon(context, [(-0.55, -0.12), (-0.62, -0.2), (-0.7, -0.2), (-0.74, -0.14)])
    paint(context, "#7f8cae")
    polygon(context, [(-0.45, 0.05), (-0.78, 0.17), (-0.98, 0.19), (-0.86, 0.07)])
    paint(context, "#2a3252")
    for window in range(9):
        context.rectangle(-0.36 - window * 0.055, -0.008 + 0.004 * window, 0.024, 0.011)
    paint(context, "#ffd27a")
    for y in (-0.06, 0.0):
        ellipse(context, -1.015, y, 0.02, 0.027)
        paint(context, "#dff6ff")


HEADING = -0.2
# Noses and lengths.
SHIPS = [(1190, 412, 290), (1010, 590, 140), (1290, 232, 120), (1105, 690, 84), (1075, 250, 80), (1480, 322, 66)]


def fleet(canvas, ships=SHIPS):
    for x, y, length in ships[::-1]:
        turn = HEADING
        def trail(context):
            context.translate(x, y)
            context.rotate(turn)
            for offset in (-0.06, 0.0):
                polygon(context, [(-length, (offset - 0.03) * length), (-length * 3.1, offset * length), (-length, (offset + 0.03) * length)])
                paint(context, linear(-length, 0, -length * 3.1, 0, (0, "#a8ecff", 1), (0.25, "#4fb4ff", 0.55), (1, "#2b5cff", 0)))

        def craft(context):
            context.translate(x, y)
            context.rotate(turn)
            ship(context, length)

        canvas.draw(trail, blur=length * 0.035, how="add")
        canvas.draw(craft)
        ex, ey = x - length * 1.02 * math.cos(turn), y - length * 1.02 * math.sin(turn) - 0.03 * length
        canvas.glow(ex, ey, length * 0.42, "#7fd8ff", 0.95, 3)


def chart(canvas):
    """The lines of a star map, faint, as the game draws them."""

    def lines(context):
        context.set_line_width(1.6)
        for radius in (520, 640, 790):
            context.save()
            context.translate(PLANET_X, PLANET_Y)
            context.rotate(-0.33)
            context.scale(1, 0.36)
            context.arc(0, 0, radius * 1.35, math.pi * 1.2, math.pi * 1.85)
            context.restore()
            context.set_source_rgba(0.55, 0.85, 1, 0.34)
            context.set_dash([2, 11] if radius == 640 else [])
            context.stroke()
        context.set_dash([])
        for x, y, length in SHIPS[:3]:
            middle_x, middle_y = x - length * 0.5 * math.cos(HEADING), y - length * 0.5 * math.sin(HEADING)
            arm = length * 0.09
            context.set_source_rgba(0.6, 0.92, 1, 0.8)
            for right in (-1, 1):
                for down in (-1, 1):
                    cx, cy = middle_x + right * length * 0.62, middle_y + down * length * 0.34
                    context.move_to(cx - right * arm, cy)
                    context.line_to(cx, cy)
                    context.line_to(cx, cy - down * arm)
            context.stroke()

    canvas.draw(lines, how="add")


def make():
    canvas = Canvas(colour="#050716")
    canvas.gradient([(0, "#04050f"), (0.5, "#0a0d28"), (1, "#0c0820")], 60)
    nebula(canvas)
    stars(canvas)
    ring(canvas, False)
    planet(canvas)
    ring(canvas, True)
    sun_x, sun_y = PLANET_X + SUN[0] * PLANET * 1.06, PLANET_Y + SUN[1] * PLANET * 1.5 + 62
    canvas.glow(sun_x, sun_y, 420, "#ffb36b", 0.35, 2.4)
    chart(canvas)
    fleet(canvas)
    canvas.blend("#04061a", (1 - smooth(canvas.x, 240, 1000)) * 0.7)
    canvas.vignette(0.35, 0.6, 0.5).grain(0.01)

    shadow = ("#01020a", 18, 4, 0.85)
    write(canvas, 122, 170, "THE STRATEGY EPIC", "Jura SemiBold", 34, "#8fdcff", tracking=260, shadow=shadow)
    write(canvas, 118, 268, "HELION", "League Spartan ExtraBold", 176, ["#ffffff", "#bcd6ff"], tracking=40, shadow=shadow)
    write(canvas, 118, 438, "REACH", "League Spartan ExtraBold", 176, ["#bfe9ff", "#5aa8ff"], tracking=40, shadow=shadow)
    write(canvas, 122, 640, "Command the last fleet home.", "Lato Bold", 46, "#ffffff", shadow=shadow)
    return canvas
