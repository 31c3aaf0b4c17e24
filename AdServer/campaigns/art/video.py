"""What videos are made of: layers that are drawn once and laid over one another anew for each frame."""

import numpy as np
from PIL import Image

from studio import Canvas

WIDTH, HEIGHT, RATE = 1920, 1080, 30


def ease(t, begin, end):
    """From 0 to 1 while `t` goes from `begin` to `end`, gently at both ends."""
    share = min(max((t - begin) / (end - begin), 0), 1)
    return share * share * (3 - 2 * share)


def shown(t, begin, end, fade=0.5):
    """How visible something is that fades in from `begin` and is gone at `end`."""
    return ease(t, begin, begin + fade) * (1 - ease(t, end - fade, end))


def frame_of(canvas):
    return canvas.image()


class Layer:
    """What was drawn, apart from what lies behind it. Drawing the same over black and over white tells how much light
    each pixel adds and how much of the light behind it holds back, glows and shadows included."""

    def __init__(self, *draw):
        dark, bright = Canvas(colour="#000000"), Canvas(colour="#ffffff")
        for work in draw:
            work(dark)
            work(bright)
        black, white = np.clip(dark.light, 0, 1), np.clip(bright.light, 0, 1)
        self._light = self._picture(black)
        self._cover = self._picture(1 - (white - black))

    @staticmethod
    def _picture(values):
        return Image.fromarray((np.clip(values, 0, 1) * 255 + 0.5).astype(np.uint8))

    def over(self, behind, visible=1.0, **place):
        """Lays it over `behind` (light from 0 to 255), moved as `moved` says."""
        if visible <= 0:
            return behind
        light, cover = (np.asarray(moved(image, **place), np.float32) for image in (self._light, self._cover))
        return light * visible + behind * (1 - cover * (visible / 255))


def moved(image, x=0.0, y=0.0, zoom=1.0, centre=(WIDTH / 2, HEIGHT / 2)):
    """Zooms about `centre`, then shifts by (x, y) pixels; what was outside is black."""
    if (x, y, zoom) == (0, 0, 1):
        return image
    columns = (1 / zoom, 0, centre[0] - (centre[0] + x) / zoom)
    rows = (0, 1 / zoom, centre[1] - (centre[1] + y) / zoom)
    return image.transform(image.size, Image.Transform.AFFINE, columns + rows, Image.Resampling.BICUBIC)
