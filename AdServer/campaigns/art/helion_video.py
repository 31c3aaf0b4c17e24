"""Helion Reach, the video: the last fleet crosses the sky before the ringed planet, jumps, and the title stands there."""

from video import *
from helion_reach import HEADING, SHIPS, fleet, nebula, planet, ring, stars
from studio import *

SECONDS = 8
JUMP = 4.5
SHADOW = ("#01020a", 18, 4, 0.85)


def sky():
    canvas = Canvas(colour="#050716")
    canvas.gradient([(0, "#04050f"), (0.5, "#0a0d28"), (1, "#0c0820")], 60)
    nebula(canvas)
    stars(canvas)
    return canvas.vignette(0.3).image()


def world():
    return Layer(lambda canvas: ring(canvas, False), planet, lambda canvas: ring(canvas, True))


def squadrons():
    """Near ships first; each with how fast it goes."""
    return [(Layer(lambda canvas, ships=ships: fleet(canvas, ships)), speed) for ships, speed in ((SHIPS[4:], 0.62), (SHIPS[1:4], 0.8), (SHIPS[:1], 1.0))]


def streaks(canvas):
    """The tracks that the ships leave when they jump."""

    def lines(context):
        for x, y, length in SHIPS:
            context.save()
            context.translate(x, y)
            context.rotate(HEADING)
            polygon(context, [(-length * 5, 0), (0, -length * 0.045), (2400, 0), (0, length * 0.045)])
            paint(context, linear(-length * 5, 0, 2400, 0, (0, "#2b5cff", 0), (0.35, "#7fd8ff", 0.9), (1, "#ffffff", 1)))
            context.restore()

    canvas.draw(lines, blur=3, how="add")
    canvas.draw(lines, blur=16, how="add")


def flash(canvas):
    canvas.glow(1500, 330, 1700, "#cfe6ff", 1.0, 1.6)


def words(*lines):
    return Layer(*(lambda canvas, line=line: write(canvas, *line[:6], shadow=SHADOW, **(line[6] if len(line) > 6 else {})) for line in lines))


def shade(canvas):
    canvas.blend("#04061a", (1 - smooth(canvas.x, 240, 1100)) * 0.72)


def frames():
    """Every frame as an array of bytes, height by width by three."""
    space, planets, ships = sky(), world(), squadrons()
    track, light, dusk = Layer(streaks), Layer(flash), Layer(shade)
    # Above the corner at the lower left, where players count the seconds.
    first = words((122, 760, "One fleet is left.", "Lato Bold", 78, "#ffffff"))
    second = words((122, 720, "Nine systems lie\nbetween it and home.", "Lato Bold", 58, "#ffffff"))
    title = words(
        (122, 250, "THE STRATEGY EPIC", "Jura SemiBold", 34, "#8fdcff", {"tracking": 260}),
        (118, 348, "HELION", "League Spartan ExtraBold", 176, ["#ffffff", "#bcd6ff"], {"tracking": 40}),
        (118, 518, "REACH", "League Spartan ExtraBold", 176, ["#bfe9ff", "#5aa8ff"], {"tracking": 40}),
        (122, 720, "Command the last fleet home.", "Lato Bold", 46, "#ffffff"),
    )
    along, across = math.cos(HEADING), math.sin(HEADING)
    for number in range(SECONDS * RATE):
        t = number / RATE
        canvas = np.asarray(moved(space, x=24 - 6 * t, y=3 * t - 12, zoom=1.06), np.float32)
        canvas = planets.over(canvas, x=70 - 11 * t, y=26 - 4 * t, zoom=0.94 + 0.014 * t, centre=(1420, 640))
        canvas = dusk.over(canvas, max(shown(t, 0.3, JUMP), ease(t, JUMP + 0.1, JUMP + 0.9)))
        for squadron, speed in ships:
            # They come from behind the left edge, nearly stand, and are gone within half a second.
            way = speed * (-1500 * (1 - ease(t, -1.6, 3.4)) + 90 * (t - 3) + 5200 * max(t - JUMP + 0.45, 0) ** 3)
            canvas = squadron.over(canvas, 1 - ease(t, JUMP, JUMP + 0.15), x=way * along, y=way * across)
        canvas = track.over(canvas, ease(t, JUMP - 0.2, JUMP) * (1 - ease(t, JUMP, JUMP + 0.5)))
        canvas = first.over(canvas, shown(t, 0.5, 2.3))
        canvas = second.over(canvas, shown(t, 2.4, JUMP))
        canvas = light.over(canvas, ease(t, JUMP - 0.15, JUMP) * (1 - ease(t, JUMP, JUMP + 1.0)))
        canvas = title.over(canvas, ease(t, JUMP + 0.2, JUMP + 0.8), x=-18 * (1 - ease(t, JUMP + 0.2, JUMP + 1.4)))
        canvas = canvas * (ease(t, -0.1, 0.5) * (1 - ease(t, SECONDS - 0.35, SECONDS)))
        yield np.clip(canvas + 0.5, 0, 255).astype(np.uint8)


def sound(rate):
    """Two channels from -1 to 1: a low chord, the rush of the jump, its blow, and a chord that stays."""
    count = SECONDS * rate
    t = np.arange(count) / rate

    def tone(pitch, side):
        drift = 1 + 0.002 * side
        return sum(np.sin(2 * np.pi * pitch * drift * harmonic * t + harmonic) / harmonic**1.7 for harmonic in range(1, 7))

    def rush(seed):
        noise = np.random.default_rng(seed).normal(0, 1, count)
        return ndimage.gaussian_filter1d(noise, 5) - ndimage.gaussian_filter1d(noise, 60)

    rising = np.clip((t - JUMP + 1.8) / 1.8, 0, 1) ** 3 * (t < JUMP)
    after = np.clip(t - JUMP, 0, None)
    blow = np.sin(2 * np.pi * (34 * after + 6 * (1 - np.exp(-6 * after)))) * np.exp(-2.2 * after) * (t >= JUMP)
    burst = np.exp(-7 * after) * (t >= JUMP)
    before = (1 - np.exp(-2 * t)) * np.where(t < JUMP, 1, np.exp(-4 * after))
    staying = (1 - np.exp(-9 * after)) * np.exp(-0.35 * after)
    channels = []
    for side in (-1, 1):
        chord = sum(tone(pitch, side) for pitch in (55.0, 82.41, 110.0, 130.81)) * (0.8 + 0.2 * np.sin(2 * np.pi * 0.4 * t + side))
        home = sum(tone(pitch, side) for pitch in (55.0, 110.0, 164.81, 220.0, 277.18)) * 0.8
        hiss = rush(20 + side)
        channels.append(0.1 * chord * before + 0.11 * home * staying + 2.2 * hiss * rising + 1.1 * hiss * burst + 0.75 * blow)
    ending = np.clip((SECONDS - 0.05 - t) / 0.6, 0, 1)
    mixed = np.tanh(np.stack(channels, axis=1) * 0.9) * ending[:, None]
    return mixed * (0.8 / np.abs(mixed).max())
