"""What every canvas here is made with: a canvas of light, soft layers, noise and type.

Colours are "#rrggbb" or (r, g, b) from 0 to 1. Positions are pixels from the top left.
"""

import math

import cairo
import gi
import numpy as np
from PIL import Image
from scipy import ndimage

gi.require_version("Pango", "1.0")
gi.require_version("PangoCairo", "1.0")
from gi.repository import Pango, PangoCairo  # noqa: E402

SAFE = 60


def rgb(colour):
    if not isinstance(colour, str):
        return tuple(colour)
    return tuple(int(colour[i : i + 2], 16) / 255 for i in (1, 3, 5))


def mix(a, b, share):
    return tuple(x + (y - x) * share for x, y in zip(rgb(a), rgb(b)))


def smooth(x, low, high):
    t = np.clip((x - low) / (high - low), 0, 1)
    return t * t * (3 - 2 * t)


def fractal(shape, scale, seed, octaves=6, gain=0.5, stretch=(1, 1)):
    """Cloudy noise from 0 to 1. `scale` is the size of its largest features, `stretch` (x, y) pulls them long."""
    random = np.random.default_rng(seed)
    height, width = shape
    total = np.zeros(shape)
    weight = 1.0
    for octave in range(octaves):
        cell_x = max(scale * stretch[0] / 2**octave, 1)
        cell_y = max(scale * stretch[1] / 2**octave, 1)
        grid = random.random((int(height / cell_y) + 4, int(width / cell_x) + 4))
        ys = (np.arange(height) / cell_y + 1)[:, None] * np.ones(width)
        xs = (np.arange(width) / cell_x + 1)[None, :] * np.ones(height)[:, None]
        total += weight * ndimage.map_coordinates(grid, [ys, xs], order=3, mode="nearest")
        weight *= gain
    low, high = np.percentile(total, (0.5, 99.5))
    return np.clip((total - low) / (high - low), 0, 1)


def ridge(width, base, height, roughness, seed, points=9):
    """The upper edge of a mountain range: a height in pixels for each column."""
    random = np.random.default_rng(seed)
    line = random.random(points) * height
    amplitude = height * roughness
    while len(line) < width * 2:
        middle = (line[:-1] + line[1:]) / 2 + (random.random(len(line) - 1) - 0.5) * amplitude
        merged = np.empty(len(line) + len(middle))
        merged[0::2], merged[1::2] = line, middle
        line, amplitude = merged, amplitude * 0.52
    return base - np.interp(np.linspace(0, len(line) - 1, width), np.arange(len(line)), line)


class Canvas:
    def __init__(self, width=1920, height=1080, colour="#000000"):
        self.width, self.height = width, height
        self.light = np.ones((height, width, 3)) * rgb(colour)
        self.y, self.x = np.mgrid[0:height, 0:width].astype(float)

    @property
    def shape(self):
        return self.height, self.width

    # Layers from numbers

    def gradient(self, stops, angle=90, start=0.0, end=1.0):
        """Fills with [(position, colour), …] along `angle` degrees, 90 from the top down."""
        dx, dy = math.cos(math.radians(angle)), math.sin(math.radians(angle))
        along = (self.x / self.width) * dx + (self.y / self.height) * dy
        along = (along - start) / (end - start)
        places = [place for place, _ in stops]
        for channel in range(3):
            self.light[..., channel] = np.interp(along, places, [rgb(colour)[channel] for _, colour in stops])
        return self

    def blend(self, colour, coverage, how="normal"):
        """Lays a colour, or a canvas's light, over it as far as `coverage` (0 to 1 for each pixel) says."""
        paint = colour if isinstance(colour, np.ndarray) else np.array(rgb(colour))
        cover = np.clip(coverage, 0, 1)[..., None]
        if how == "add":
            self.light += paint * cover
        elif how == "screen":
            self.light = 1 - (1 - self.light) * (1 - paint * cover)
        elif how == "multiply":
            self.light *= 1 - cover + paint * cover
        else:
            self.light = self.light * (1 - cover) + paint * cover
        return self

    def glow(self, x, y, radius, colour, strength=1.0, falloff=2.0, squash=1.0):
        distance = np.hypot(self.x - x, (self.y - y) / squash) / radius
        return self.blend(colour, strength * np.clip(1 - distance, 0, 1) ** falloff, "screen")

    # Layers from lines

    def draw(self, work, blur=0.0, opacity=1.0, how="normal", mask=None):
        """Paints what `work` draws on a cairo context; `mask` (0 to 1 for each pixel) holds parts of it back."""
        surface = cairo.ImageSurface(cairo.FORMAT_ARGB32, self.width, self.height)
        context = cairo.Context(surface)
        context.set_line_cap(cairo.LINE_CAP_ROUND)
        context.set_line_join(cairo.LINE_JOIN_ROUND)
        work(context)
        surface.flush()
        pixels = np.frombuffer(surface.get_data(), np.uint8).reshape(self.height, surface.get_stride() // 4, 4)
        pixels = pixels[:, : self.width].astype(float) / 255
        if blur:
            pixels = ndimage.gaussian_filter(pixels, (blur, blur, 0))
        if mask is not None:
            pixels = pixels * mask[..., None]
        paint, cover = pixels[..., 2::-1] * opacity, pixels[..., 3:] * opacity
        if how == "add":
            self.light += paint
        elif how == "screen":
            self.light = 1 - (1 - self.light) * (1 - paint)
        else:
            self.light = self.light * (1 - cover) + paint
        return self

    def mountains(self, line, top, bottom, depth=320):
        """Fills below a ridge, from the colour `top` at the ridge to `bottom` in the mist `depth` pixels further down."""
        below = self.y - line[None, :]
        share = np.clip(below / depth, 0, 1)[..., None]
        paint = np.array(rgb(top)) * (1 - share) + np.array(rgb(bottom)) * share
        return self.blend(paint, np.clip(below + 0.5, 0, 1))

    # The end

    def vignette(self, strength=0.35, x=0.5, y=0.5):
        distance = np.hypot((self.x / self.width - x) * 1.1, self.y / self.height - y)
        self.light *= (1 - strength * smooth(distance, 0.35, 0.95))[..., None]
        return self

    def grain(self, strength=0.012, seed=1):
        noise = np.random.default_rng(seed).normal(0, strength, self.shape)
        self.light += noise[..., None]
        return self

    def image(self):
        return Image.fromarray((np.clip(self.light, 0, 1) * 255 + 0.5).astype(np.uint8))

    def save(self, path, quality=86, limit=395_000):
        """As a progressive JPEG below `limit` bytes."""
        canvas = self.image()
        while True:
            canvas.save(path, quality=quality, optimize=True, progressive=True, subsampling=0 if quality > 80 else 2)
            if path.stat().st_size < limit:
                return
            quality -= 3


def layout(context, text, font, size, tracking=0.0, width=None, align="left", leading=1.0):
    """A block of type. `font` is a Pango description without a size, `size` in pixels, `tracking` in thousandths of it."""
    block = PangoCairo.create_layout(context)
    description = Pango.FontDescription(font)
    description.set_absolute_size(size * Pango.SCALE)
    block.set_font_description(description)
    attributes = Pango.AttrList()
    attributes.insert(Pango.attr_letter_spacing_new(int(tracking * size / 1000 * Pango.SCALE)))
    block.set_attributes(attributes)
    block.set_alignment({"left": Pango.Alignment.LEFT, "centre": Pango.Alignment.CENTER, "right": Pango.Alignment.RIGHT}[align])
    block.set_line_spacing(leading)
    if width:
        block.set_width(int(width * Pango.SCALE))
    block.set_text(text, -1)
    return block


def type_path(context, x, y, text, font, size, safe=True, **style):
    """Adds the outlines of a block whose ink begins at (x, y); returns the ink's (left, top, right, bottom).

    Type that leaves the television's safe area is a mistake and stops the making."""
    block = layout(context, text, font, size, **style)
    ink, _ = block.get_pixel_extents()
    left, top = x - (ink.x if style.get("align", "left") == "left" else 0), y - ink.y
    if style.get("align") == "centre" and not style.get("width"):
        left = x - ink.width / 2 - ink.x
    context.move_to(left, top)
    PangoCairo.layout_path(context, block)
    box = (left + ink.x, top + ink.y, left + ink.x + ink.width, top + ink.y + ink.height)
    surface = context.get_target()
    if safe and (box[0] < SAFE - 2 or box[1] < SAFE - 2 or box[2] > surface.get_width() - SAFE + 2 or box[3] > surface.get_height() - SAFE + 2):
        raise ValueError(f"{text!r} leaves the safe area: {box}")
    return box


def write(canvas, x, y, text, font, size, colour, shadow=None, opacity=1.0, slant=0.0, **style):
    """Type in one colour, or in a vertical gradient of two, with an optional soft shadow (colour, blur, dy, strength).
    Returns the ink's box."""
    box = []

    def outline(context):
        if slant:
            baseline = y + 0.7 * size
            context.transform(cairo.Matrix(1, 0, -slant, 1, slant * baseline, 0))
        box[:] = type_path(context, x, y, text, font, size, **style)

    def fill(context):
        outline(context)
        if isinstance(colour, (list, tuple)) and isinstance(colour[0], str):
            paint = cairo.LinearGradient(0, box[1], 0, box[3])
            for place, one in enumerate(colour):
                paint.add_color_stop_rgb(place / (len(colour) - 1), *rgb(one))
            context.set_source(paint)
        else:
            context.set_source_rgb(*rgb(colour))
        context.fill()

    if shadow:
        tint, blur, down, strength = shadow

        def cast(context):
            context.translate(0, down)
            outline(context)
            context.set_source_rgb(*rgb(tint))
            context.fill()

        canvas.draw(cast, blur=blur, opacity=strength)
    canvas.draw(fill, opacity=opacity)
    return tuple(box)


def polygon(context, points):
    context.move_to(*points[0])
    for point in points[1:]:
        context.line_to(*point)
    context.close_path()


def spline(context, points, closed=False):
    """A smooth line through points (Catmull-Rom)."""
    count = len(points)
    at = (lambda i: points[i % count]) if closed else (lambda i: points[min(max(i, 0), count - 1)])
    context.move_to(*points[0])
    for i in range(count if closed else count - 1):
        (x0, y0), (x1, y1), (x2, y2), (x3, y3) = at(i - 1), at(i), at(i + 1), at(i + 2)
        context.curve_to(x1 + (x2 - x0) / 6, y1 + (y2 - y0) / 6, x2 - (x3 - x1) / 6, y2 - (y3 - y1) / 6, x2, y2)
    if closed:
        context.close_path()


def ellipse(context, x, y, rx, ry, angle=0.0):
    context.save()
    context.translate(x, y)
    context.rotate(angle)
    context.scale(rx, ry)
    context.new_sub_path()
    context.arc(0, 0, 1, 0, 2 * math.pi)
    context.restore()


def rounded(context, x, y, width, height, radius):
    context.new_sub_path()
    context.arc(x + width - radius, y + radius, radius, -math.pi / 2, 0)
    context.arc(x + width - radius, y + height - radius, radius, 0, math.pi / 2)
    context.arc(x + radius, y + height - radius, radius, math.pi / 2, math.pi)
    context.arc(x + radius, y + radius, radius, math.pi, 3 * math.pi / 2)
    context.close_path()


def linear(x0, y0, x1, y1, *stops):
    """A gradient of (place, colour[, alpha])."""
    paint = cairo.LinearGradient(x0, y0, x1, y1)
    for place, colour, *alpha in stops:
        paint.add_color_stop_rgba(place, *rgb(colour), *(alpha or [1]))
    return paint


def radial(x, y, radius, *stops, inner=0.0, fx=None, fy=None):
    paint = cairo.RadialGradient(x if fx is None else fx, y if fy is None else fy, inner, x, y, radius)
    for place, colour, *alpha in stops:
        paint.add_color_stop_rgba(place, *rgb(colour), *(alpha or [1]))
    return paint


def paint(context, source, keep=False):
    if isinstance(source, (str, tuple)):
        context.set_source_rgb(*rgb(source))
    else:
        context.set_source(source)
    context.fill_preserve() if keep else context.fill()
