#!/usr/bin/env python3
"""Draws the images of the campaigns beside this folder. Each is made of nothing but the code here and of typefaces.

    /usr/bin/python3 make.py [NAME…]       all of them, or those whose file names begin with one of the names

Needs the Debian packages of the group "art" in scripts/packages.txt.
"""

import sys
from pathlib import Path

sys.dont_write_bytecode = True

import helion_reach
import icons
import lantern_isles
import nordlys_lodge
import saffron_salt
import starlite_drive_in
import summit_fury
import wildgrove

HERE = Path(__file__).resolve().parent
FULLSCREEN = (summit_fury, saffron_salt, helion_reach, nordlys_lodge, starlite_drive_in, wildgrove)


def images():
    """Every file name with what makes its canvas."""
    for module in FULLSCREEN:
        yield module.__name__.replace("_", "-"), module.make
    yield "lantern-isles-cover", lantern_isles.cover
    yield "lantern-isles-banner", lantern_isles.banner
    for number in range(len(lantern_isles.SCREENSHOTS)):
        yield f"lantern-isles-{number + 1}", lambda number=number: lantern_isles.screenshot(number)
    for icon in icons.ALL:
        yield "icon-" + icon.__name__.replace("_", "-"), icon


def main(names):
    for name, make in images():
        if names and not any(name.startswith(one) for one in names):
            continue
        path = HERE.parent / "images" / f"{name}.jpg"
        path.parent.mkdir(exist_ok=True)
        make().save(path)
        print(f"{path.name}: {path.stat().st_size // 1024} KiB")


if __name__ == "__main__":
    main(sys.argv[1:])
