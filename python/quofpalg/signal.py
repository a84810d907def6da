"""Signal analysis: smoothing, block variance, signal to noise, bubbles."""

from __future__ import annotations

from ctypes import byref, c_uint8, c_uint32, c_void_p
from typing import NamedTuple

import numpy as np
import numpy.typing as npt

from . import errors
from ._arrays import Image, elements, gray, output, sized, take, to_change
from ._library import c

__all__ = [
    "SignalToNoise", "Bubbles", "Eroded", "GasssianSmooth", "Variance", "ImgBlockVariance", "FP_ComputeSNR",
    "CreateBubbleImage", "MyRectErode",
]


class SignalToNoise(NamedTuple):
    """Ratio, amplitude of the signal, amplitude of the noise; each at most 255."""

    snr: int
    signal: int
    noise: int


class Bubbles(NamedTuple):
    """Number of bubble pixels, and an image of the frame's shape, 255 at bubble pixels and 0 elsewhere."""

    pixels: int
    bubble_image: Image


class Eroded(NamedTuple):
    """The image that received 255 at each pixel that stays, and their number."""

    output: Image
    pixels: int


def GasssianSmooth(image: Image, out: Image | None = None) -> Image:
    """Smooths an image with the 3 x 3 binomial kernel, rows before columns, each pass truncated."""
    result = to_change("image", image, out)
    _, width, height = sized(result)
    if result.size:
        c.GasssianSmooth.done(result, np.empty_like(result), width, height)
    return result


def Variance(data: Image) -> float:
    """Population variance of a uint8 array of any shape, 0 of an empty one."""
    array = elements("data", data)
    return float(c.Variance(array, array.size))


def ImgBlockVariance(image: Image, margin: int, size: int) -> npt.NDArray[np.float64]:
    """Variance() of every block of size x size inside a margin: a float64 array (blocks down, blocks across)."""
    variances, across, down = c_void_p(), c_uint32(), c_uint32()
    c.ImgBlockVariance.check(*sized(gray("image", image)), margin, size, byref(variances), byref(across), byref(down),
                             errors={1: errors.BadGridError, 2: errors.NoMemoryError})
    return take(variances, (down.value, across.value), np.float64)


def FP_ComputeSNR(frame: Image) -> SignalToNoise:
    """Rates a frame of at least 16 x 16 pixels by its ratio of signal to noise."""
    snr, signal, noise = c_uint8(), c_uint8(), c_uint8()
    c.FP_ComputeSNR.check(*sized(gray("frame", frame, least=16)), byref(snr), byref(signal), byref(noise))
    return SignalToNoise(snr.value, signal.value, noise.value)


def CreateBubbleImage(frame: Image) -> Bubbles:
    """Finds blobs well above the gray level of a frame, of at least 16 x 16 pixels or empty."""
    image = gray("frame", frame, least=16 if np.size(frame) else 0)
    count, bubbles = c_uint32(), c_void_p()
    c.CreateBubbleImage.check(*sized(image), byref(count), byref(bubbles))
    return Bubbles(count.value, take(bubbles, image.shape))


def MyRectErode(mask: Image, border: int = 1, out: Image | None = None) -> Eroded:
    """Keeps the pixels of 255 all of whose eight neighbours are 255; out keeps what it holds at the others."""
    source, count = gray("mask", mask), c_uint32()
    result = output(out, mask)
    _, width, height = sized(source)
    c.MyRectErode(source, result, width, height, border, byref(count))
    return Eroded(result, count.value)
