"""Image quality and orientation."""

from __future__ import annotations

from ctypes import byref, c_int32, c_uint8, c_void_p
from typing import NamedTuple

import numpy as np
import numpy.typing as npt

from ._arrays import Image, gray, output, sized, take
from ._library import _Function, c, integer

__all__ = [
    "BLOCK_RECORD", "Quality", "BlockField", "FP_ImageQuality", "FP_ImageQuality_MCU", "ImageQuality_MCU",
    "ImageQuality", "BlockOrientation_MCU", "BlockOrientation", "DDIndex8", "Orientation",
]

BLOCK_RECORD = np.dtype(
    [("direction", np.int8), ("mean", np.float64), ("deviation", np.float64), ("bright", np.float64)], align=True)
"""One block: direction (-1 background, 0 none, 1 to 8), mean gray, mean absolute deviation, bright percentage."""

Blocks = npt.NDArray[np.void]


class Quality(NamedTuple):
    """Score 0 to 100, percentage that is not background, average bright percentage, and average mean gray.

    Without a block that is not background mean_gray is None.
    """

    quality: int
    area: int
    bright: int
    mean_gray: int | None


class BlockField(NamedTuple):
    """Records of BLOCK_RECORD, shape (nby, nbx), and the percentage of half-size pixels that are not background."""

    blocks: Blocks
    area: int


def _scored(function: _Function, image: Image) -> Quality:
    # A block that is not background has pixels below 255, so no average of their means is 255: that stands for none.
    quality, area, bright, mean_gray = c_uint8(), c_uint8(), c_uint8(), c_uint8(255)
    function.check(*sized(gray("image", image)), byref(quality), byref(area), byref(bright), byref(mean_gray))
    return Quality(quality.value, area.value, bright.value, None if mean_gray.value == 255 else mean_gray.value)


def FP_ImageQuality(image: Image) -> Quality:
    """Scores a captured frame (height, width) from a sparse sample, cheap enough for every frame."""
    return _scored(c.FP_ImageQuality, image)


def FP_ImageQuality_MCU(image: Image) -> Quality:
    """The same as FP_ImageQuality()."""
    return _scored(c.FP_ImageQuality_MCU, image)


def ImageQuality_MCU(image: Image) -> Quality:
    """The same as FP_ImageQuality()."""
    return _scored(c.ImageQuality_MCU, image)


def ImageQuality(image: Image) -> Quality:
    """Scores a frame from its dense orientation field."""
    return _scored(c.ImageQuality, image)


def BlockOrientation_MCU(image: Image) -> Blocks:
    """Measures the blocks of a frame from a sparse sample: records of BLOCK_RECORD, shape (rows, columns) of blocks.

    The side of a block is 16 pixels when the shorter side of the frame has 192 or more, 10 from 160 on, else 8. The
    direction code 1 + d names the line d * 22.5 degrees from horizontal, counter-clockwise.
    """
    frame = gray("image", image)
    blocks, count = c_void_p(), c_int32()
    c.BlockOrientation_MCU.check(*sized(frame), byref(blocks), byref(count))
    records = take(blocks, (count.value,), BLOCK_RECORD)
    shorter = min(frame.shape)
    side = 16 if shorter >= 192 else 10 if shorter >= 160 else 8
    return records.reshape(frame.shape[0] // side, frame.shape[1] // side)


def BlockOrientation(image: Image, nbx: int, nby: int, radius: int = 3) -> BlockField:
    """Summarises the orientation field of the half-size frame in nbx x nby blocks.

    The direction code is 1 horizontal, 3 falling to the right, 5 vertical, 7 rising. The window of the field is
    2 * radius + 1 half-size pixels wide and high.
    """
    shape = (integer("nby", nby, 0, 0x7FFFFFFF), integer("nbx", nbx, 0, 0x7FFFFFFF))
    blocks, area = np.zeros(shape, BLOCK_RECORD), c_uint8()
    c.BlockOrientation.check(*sized(gray("image", image)), blocks, nbx, nby, radius, byref(area))
    return BlockField(blocks, area.value)


def DDIndex8(orientation: int) -> int:
    """Bin of an orientation in degrees among eight, 0 to 7."""
    return int(c.DDIndex8(orientation))


def Orientation(image: Image, radius: int = 3, out: Image | None = None) -> Image:
    """Ridge orientation of every pixel: 0 to 179 degrees from the x axis (right) towards the y axis (down).

    135 where there is no gradient. The frame has at least 2 x 2 pixels; the window is 2 * radius + 1 half-size pixels
    wide and high. out=image works in place.
    """
    frame = gray("image", image, least=2)
    result = output(out, image, in_place=True)
    _, width, height = sized(frame)
    c.Orientation.done(frame, result, width, height, radius)
    return result
