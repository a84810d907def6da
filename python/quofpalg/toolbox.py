"""Image operators that no entry point calls. Images are (height, width)."""

from __future__ import annotations

from ctypes import byref, c_int32, c_uint32
from typing import NamedTuple

import numpy as np
import numpy.typing as npt

from . import errors
from ._arrays import Image, change, elements, gray, output, same_shape, sized, to_change
from ._library import _Function, c, integer, loaded
from .signal import Eroded

__all__ = [
    "g_DDSite", "Segmented", "Stretched", "Region", "DDIndex", "OrientEnhance", "FingerprintImageSegment",
    "BinaryThreshold", "AdaptiveThreshold", "AreaGrayStretch", "BlockGrayStretch", "ValidAreaGrayStretch",
    "LocalGrayBalance", "MedianFilter", "MyCrossErode", "RegionGrowByEightNeighbor",
]


def _direction_sites() -> npt.NDArray[np.int32]:
    table = np.array((c_int32 * (12 * 7 * 2)).in_dll(loaded, "g_DDSite"), np.int32).reshape(12, 7, 2)
    table.flags.writeable = False
    return table


g_DDSite: npt.NDArray[np.int32] = _direction_sites()
"""Sites of each direction class, (12, 7, 2): seven pixel offsets (dx, dy) on a line through the pixel."""


class Segmented(NamedTuple):
    """The image, its background 255, and the number of unmarked pixels, lower when line ends were marked twice."""

    image: Image
    pixels: int


class Stretched(NamedTuple):
    """The stretched image and the number of pixels that were stretched or written."""

    output: Image
    pixels: int


class Region(NamedTuple):
    """The labels with the region, its number of pixels, and its first and last column and row."""

    labels: Image
    pixels: int
    min_x: int
    min_y: int
    max_x: int
    max_y: int


def DDIndex(degrees: int) -> int:
    """Direction class of an angle of 0 to 180 degrees: k for 15 * k - 7 to 15 * k + 7, 0 out of range."""
    return int(c.DDIndex(degrees))


def OrientEnhance(image: Image, directions: Image, out: Image | None = None) -> Image:
    """Enhances ridges along a direction field of the same shape, in degrees as for DDIndex()."""
    result = to_change("image", image, out)
    field = same_shape("directions", directions, result)
    _, width, height = sized(result)
    if np.may_share_memory(result, field):
        field = field.copy()
    c.OrientEnhance.done(result, field, width, height)
    return result


def FingerprintImageSegment(image: Image, threshold: int, out: Image | None = None) -> Segmented:
    """Marks the background around a fingerprint, brighter than the threshold, with 255."""
    result = to_change("image", image, out)
    return Segmented(result, int(c.FingerprintImageSegment(*sized(result), threshold)))


def BinaryThreshold(data: Image, threshold: int, out: Image | None = None) -> Image:
    """Binarises a uint8 array of any shape: 255 above the threshold, 0 otherwise."""
    result: Image = change(elements("data", data), out)
    c.BinaryThreshold(result, result.size, threshold)
    return result


def AdaptiveThreshold(source: Image, window: int, offset: int, out: Image | None = None) -> Image:
    """Binarises an image against the mean of the window around each pixel, less the offset in gray levels."""
    image = gray("source", source)
    result = output(out, source)
    _, width, height = sized(image)
    c.AdaptiveThreshold(image, result, width, height, window, offset)
    return result


def _stretched(function: _Function, source: Image, across: int, down: int, out: Image | None) -> Stretched:
    image = gray("source", source)
    result = output(out, source, default=image)
    _, width, height = sized(image)
    return Stretched(result, int(function(image, result, width, height, across, down)))


def AreaGrayStretch(source: Image, window_width: int, window_height: int, out: Image | None = None) -> Stretched:
    """Stretches the contrast of each pixel against the extremes of the window around it; 255 is background.

    Pixels of 0 are not written: there the output keeps what out holds, or is 0.
    """
    return _stretched(c.AreaGrayStretch, source, window_width, window_height, out)


def BlockGrayStretch(source: Image, block_width: int, block_height: int, out: Image | None = None) -> Stretched:
    """Stretches the contrast of each block of a grid to 0..254.

    Blocks that span 10 or less are not written: there the output keeps what out holds, or is the source.
    """
    return _stretched(c.BlockGrayStretch, source, block_width, block_height, out)


def ValidAreaGrayStretch(image: Image, out: Image | None = None) -> Image:
    """Stretches an image so that all but its darkest and brightest thousandth fill 0..254; 255 is background.

    :raises NotDoneError: no pixel is below 255
    """
    result = to_change("image", image, out)
    c.ValidAreaGrayStretch.done(*sized(result), error=errors.NotDoneError)
    return result


def LocalGrayBalance(source: Image, window_width: int, window_height: int, out: Image | None = None) -> Image:
    """Evens out brightness and contrast over an image of at least 3 x 3 pixels; windows are odd and at least 3.

    :raises NotDoneError: the pixels below 255 are all equal, or a window is too small
    """
    image = gray("source", source)
    result = output(out, source)
    _, width, height = sized(image)
    c.LocalGrayBalance.done(image, result, width, height, window_width, window_height, error=errors.NotDoneError)
    return result


def MedianFilter(source: Image, out: Image | None = None) -> Image:
    """Median of the 3 x 3 neighbourhood of each pixel; out=source works in place."""
    image = gray("source", source)
    result = output(out, source, in_place=True)
    _, width, height = sized(image)
    c.MedianFilter(image, result, width, height)
    return result


def MyCrossErode(mask: Image, border: int = 0, out: Image | None = None) -> Eroded:
    """Keeps the pixels of 255 whose four direct neighbours are 255; out keeps what it holds at the others."""
    image, count = gray("mask", mask), c_uint32()
    result = output(out, mask)
    _, width, height = sized(image)
    c.MyCrossErode(image, result, width, height, border, byref(count))
    return Eroded(result, count.value)


def RegionGrowByEightNeighbor(seed_x: int, seed_y: int, label: int, image: Image, labels: Image | None = None,
                              out: Image | None = None) -> Region:
    """Grows a region from a seed over the pixels of its gray value, eight neighbours a pixel, and labels it.

    :param label: 1 to 255
    :param labels: labels of earlier regions, 0 where there is none; pixels that carry one do not join
    :param out: receives the labels; may be labels
    """
    source = gray("image", image)
    seed_x = integer("seed_x", seed_x, 0, source.shape[1] - 1)
    seed_y = integer("seed_y", seed_y, 0, source.shape[0] - 1)
    label = integer("label", label, 1, 255)
    result = change(np.zeros_like(source) if labels is None else same_shape("labels", labels, source), out)
    numbers = [c_uint32() for _ in range(5)]
    _, width, height = sized(source)
    c.RegionGrowByEightNeighbor.check(seed_x, seed_y, label, source, width, height, result, *map(byref, numbers))
    return Region(result, *(number.value for number in numbers))
