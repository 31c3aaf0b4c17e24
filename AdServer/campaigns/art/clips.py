#!/usr/bin/env python3
"""Makes the clips of the campaigns beside this folder: videos and colour bars, nothing in them but what the code here draws.

    /usr/bin/python3 clips.py [NAME…]      all of them, or those of "helion", "wildgrove" and "bars"

Needs the Debian packages of the group "art" in scripts/packages.txt.
"""

import subprocess
import sys
import tempfile
import wave
from pathlib import Path

sys.dont_write_bytecode = True

import numpy as np
from PIL import Image

import helion_video
from video import HEIGHT, RATE, WIDTH, ease, moved

CLIPS = Path(__file__).resolve().parent.parent / "clips"
PICTURES = CLIPS.parent / "images"
SOUND_RATE = 48000
BAR_SECONDS = 4
# Three quarters of full light, so that a wrong range shows and nothing is cut off.
BARS = [(191 * red, 191 * green, 191 * blue) for green in (1, 0) for red in (1, 0) for blue in (1, 0)]

# A key frame every two seconds lets players seek, the index in front lets them begin before the end has come.
# Three images to refer to, as broadcasters have it: a decoder keeps as many for each that it shows.
H264 = ["-c:v", "libx264", "-preset", "veryslow", "-refs", "3", "-bf", "2", "-profile:v", "high", "-g", "60", "-movflags", "+faststart"]
AAC = ["-c:a", "aac", "-b:a", "80k"]
VP9 = ["-c:v", "libvpx-vp9", "-b:v", "0", "-deadline", "good", "-cpu-used", "1", "-row-mt", "1", "-g", "60"]
OPUS = ["-c:a", "libopus", "-b:a", "64k"]


def ffmpeg(*words, frames=()):
    """Hands it the frames, one after another."""
    command = ["ffmpeg", "-hide_banner", "-loglevel", "error", "-y", *map(str, words)]
    process = subprocess.Popen(command, stdin=subprocess.PIPE)
    for frame in frames:
        process.stdin.write(frame.tobytes())
    process.stdin.close()
    if process.wait() != 0:
        raise SystemExit(f"clips: ffmpeg failed: {' '.join(command)}")


def raw(width, height, pixels):
    return ["-f", "rawvideo", "-pixel_format", pixels, "-video_size", f"{width}x{height}", "-framerate", RATE, "-i", "-"]


def colours(standard):
    """Says in the file what its numbers mean: limited range, of that standard."""
    transfer = "bt709" if standard == "bt709" else "smpte170m"
    return ["-pix_fmt", "yuv420p", "-colorspace", transfer, "-color_primaries", transfer, "-color_trc", transfer, "-color_range", "tv"]


def finish(path, *words):
    path.parent.mkdir(exist_ok=True)
    ffmpeg(*words, "-map_metadata", "-1", "-fflags", "+bitexact", path)
    print(f"{path.name}: {path.stat().st_size // 1024} KiB")


def write_sound(path, channels):
    with wave.open(str(path), "wb") as file:
        file.setnchannels(2)
        file.setsampwidth(2)
        file.setframerate(SOUND_RATE)
        file.writeframes((np.clip(channels, -1, 1) * 32767).astype("<i2").tobytes())


def helion(folder):
    """Drawn once without loss, then made into each of its clips."""
    master, sound = folder / "helion.mkv", folder / "helion.wav"
    write_sound(sound, helion_video.sound(SOUND_RATE))
    ffmpeg(*raw(WIDTH, HEIGHT, "rgb24"), "-c:v", "libx264rgb", "-qp", "0", "-preset", "ultrafast", master, frames=helion_video.frames())
    for name, height, codecs in (
        ("helion-1080p.mp4", 1080, [*H264, "-crf", 32, *AAC]),
        ("helion-720p.mp4", 720, [*H264, "-crf", 31, *AAC]),
        ("helion-720p.webm", 720, [*VP9, "-crf", 47, *OPUS]),
    ):
        scale = f"scale=-2:{height}:flags=lanczos:out_color_matrix=bt709:out_range=tv,format=yuv420p"
        finish(CLIPS / name, "-i", master, "-i", sound, "-vf", scale, *colours("bt709"), *codecs)


def wildgrove_frames():
    canvas = Image.open(PICTURES / "wildgrove.jpg").convert("RGB")
    count = BAR_SECONDS * RATE
    for number in range(count):
        t = number / RATE
        frame = np.asarray(moved(canvas, zoom=1 + 0.015 * t, centre=(560, 440)), np.float32)
        yield (frame * ease(t, -0.1, 0.4) * (1 - ease(t, BAR_SECONDS - 0.3, BAR_SECONDS))).astype(np.uint8)


def wildgrove(folder):
    """The one without sound."""
    scale = "scale=-2:720:flags=lanczos:out_color_matrix=bt709:out_range=tv,format=yuv420p"
    master = folder / "wildgrove.mkv"
    ffmpeg(*raw(WIDTH, HEIGHT, "rgb24"), "-c:v", "libx264rgb", "-qp", "0", "-preset", "ultrafast", master, frames=wildgrove_frames())
    finish(CLIPS / "wildgrove-silent-720p.mp4", "-i", master, "-vf", scale, *colours("bt709"), *H264, "-crf", 30, "-an")


def limited(colour, red, blue):
    """A colour's luma and chroma for the share that red and blue have in the luma."""
    r, g, b = (part / 255 for part in colour)
    luma = red * r + (1 - red - blue) * g + blue * b
    numbers = 16 + 219 * luma, 128 + 112 * (b - luma) / (1 - blue), 128 + 112 * (r - luma) / (1 - red)
    return [int(number + 0.5) for number in numbers]


def bar_frame(width, height, red, blue):
    values = np.array([limited(colour, red, blue) for colour in BARS])
    bar = np.arange(width) * len(BARS) // width
    planes = [np.tile(values[bar, 0], height)]
    for plane in (1, 2):
        planes.append(np.tile(values[bar[::2], plane], height // 2))
    return np.concatenate(planes).astype(np.uint8)


def bars(folder):
    """The numbers themselves go into the encoder, so no conversion stands between them and the player's."""
    sound = folder / "bars.wav"
    t = np.arange(BAR_SECONDS * SOUND_RATE) / SOUND_RATE
    write_sound(sound, 0.1 * np.stack([np.sin(2 * np.pi * pitch * t) for pitch in (440, 660)], axis=1))
    for name, width, height, standard, red, blue in (
        ("bars-bt709-720p.mp4", 1280, 720, "bt709", 0.2126, 0.0722),
        ("bars-bt601-480p.mp4", 640, 480, "bt601", 0.299, 0.114),
    ):
        frame = bar_frame(width, height, red, blue)
        master = folder / name
        ffmpeg(*raw(width, height, "yuv420p"), "-c:v", "libx264", "-qp", "0", "-preset", "ultrafast", master, frames=[frame] * (BAR_SECONDS * RATE))
        finish(CLIPS / name, "-i", master, "-i", sound, *colours(standard), *H264, "-crf", 8, *AAC)


def main(names):
    makers = {"helion": helion, "wildgrove": wildgrove, "bars": bars}
    for name in names or makers:
        if name not in makers:
            raise SystemExit(f"clips: there is no clip {name!r}, only {', '.join(makers)}")
        with tempfile.TemporaryDirectory() as folder:
            makers[name](Path(folder))


if __name__ == "__main__":
    main(sys.argv[1:])
