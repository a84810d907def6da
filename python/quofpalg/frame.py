"""Library primitives, image statistics and resampling."""

from __future__ import annotations

import numpy as np
import numpy.typing as npt

from ._arrays import Image, any_gray, change, elements, gray, output, sized
from ._library import c, integer

__all__ = [
    "FP_GetVersion", "quo_memset", "quo_memcpy", "quo_sqrt", "quo_short", "CalcHistogram", "GetGrayIntegralImage",
    "ZoomImg",
]


def FP_GetVersion() -> int:
    """Version of the algorithm set."""
    return int(c.FP_GetVersion())


def _bytes_to_write(name: str, array: object, count: int | None, limit: int) -> int:
    if not isinstance(array, np.ndarray) or not array.flags.c_contiguous or not array.flags.writeable:
        raise ValueError(f"{name}: expected a writable array without gaps")
    return integer("count", limit if count is None else count, 0, limit)


def quo_memset(destination: Image, value: int, count: int | None = None) -> Image:
    """Sets the first count bytes (all by default) of a uint8 array to a value, in place; gives the array back."""
    size = elements("destination", destination).size
    c.quo_memset(destination, value, _bytes_to_write("destination", destination, count, size))
    return destination


def quo_memcpy(destination: Image, source: Image, count: int | None = None) -> Image:
    """Copies the first count bytes of a uint8 array, each before the one after it, in place; gives destination back.

    By default as many as the shorter array has. The arrays may be overlapping views of one array: a destination that
    begins d bytes above the source receives the first d source bytes over and over.
    """
    origin = elements("source", source)
    size = min(elements("destination", destination).size, origin.size)
    c.quo_memcpy(destination, origin, _bytes_to_write("destination", destination, count, size))
    return destination


def quo_sqrt(x: float) -> float:
    """Approximate square root in single precision; thresholds of the library follow it to the last bit."""
    return float(c.quo_sqrt(float(x)))


def quo_short(values: npt.NDArray[np.float64],
              out: npt.NDArray[np.float64] | None = None) -> npt.NDArray[np.float64]:
    """Sorts a one-dimensional float64 array into ascending order, stably.

    A NaN stays where it is, and no value passes one. out=values sorts in place.
    """
    result: npt.NDArray[np.float64] = change(elements("values", values, np.float64, 1), out)
    c.quo_short(result, result.size)
    return result


def CalcHistogram(pixels: Image, bins: int = 256) -> npt.NDArray[np.uint32]:
    """Counts the gray levels of a uint8 array of any shape: a uint32 array of bins counters.

    Values of bins or above are not counted.
    """
    data = elements("pixels", pixels)
    histogram = np.empty(integer("bins", bins, 0, 0xFFFFFFFF), np.uint32)
    c.CalcHistogram(data, data.size, histogram, histogram.size)
    return histogram


def GetGrayIntegralImage(source: Image) -> npt.NDArray[np.uint32]:
    """Summed-area table of an image (height, width): a uint32 array (height + 1, width + 1).

    Entry [Y, X] is the sum of the pixels with y < Y and x < X, modulo 2^32. A view of some columns and rows of a larger
    image is read where it lies, without a copy.
    """
    image = any_gray("source", source)
    height, width = image.shape
    if image.strides[1] != 1 or image.strides[0] < 0:
        image = np.ascontiguousarray(image)
    integral = np.empty((height + 1, width + 1), np.uint32)
    c.GetGrayIntegralImage(image, integral, width, height, image.strides[0])
    return integral


def ZoomImg(source: Image, mode: int = 0, out: Image | None = None) -> Image:
    """Halves an image (height, width) to (height // 2, width // 2).

    Mode 0 takes every second pixel of every second row, any other mode (1 to 255) the 3 x 3 binomial mean around them.
    """
    image = gray("source", source)
    half = output(out, source, shape=(image.shape[0] // 2, image.shape[1] // 2))
    _, width, height = sized(image)
    c.ZoomImg(image, half, width, height, mode)
    return half
