"""Arrays on their way into the library and out of it."""

from __future__ import annotations

import ctypes
import math
from typing import Any, Union

import numpy as np
import numpy.typing as npt

from ._library import c

Image = npt.NDArray[np.uint8]
Bytes = Union[bytes, bytearray, memoryview, Image]


def _array(name: str, value: object, dtype: npt.DTypeLike, dimensions: int | None) -> npt.NDArray[Any]:
    if not isinstance(value, np.ndarray):
        raise TypeError(f"{name}: expected a NumPy array, got {type(value).__name__}")
    if value.dtype != dtype:
        raise TypeError(f"{name}: expected an array of {np.dtype(dtype)}, got {value.dtype}")
    if dimensions is not None and value.ndim != dimensions:
        raise ValueError(f"{name}: expected {dimensions} dimension{'s'[: dimensions > 1]}, got shape {value.shape}")
    return value


def any_gray(name: str, value: object, least: int = 0) -> Image:
    """A gray image of at least that width and height."""
    image = _array(name, value, np.uint8, 2)
    if min(image.shape) < least:
        raise ValueError(f"{name}: expected at least {least} x {least} pixels, got shape {image.shape}")
    return image


def gray(name: str, value: object, least: int = 0) -> Image:
    """A gray image whose rows have no gaps: the array itself, or a copy."""
    return np.ascontiguousarray(any_gray(name, value, least))


def same_shape(name: str, value: object, other: Image) -> Image:
    """A gray image of the shape of another."""
    image = gray(name, value)
    if image.shape != other.shape:
        raise ValueError(f"{name}: expected shape {other.shape}, got {image.shape}")
    return image


def elements(name: str, value: object, dtype: npt.DTypeLike = np.uint8,
             dimensions: int | None = None) -> npt.NDArray[Any]:
    """An array of a type, of any shape unless dimensions are given, without gaps."""
    return np.ascontiguousarray(_array(name, value, dtype, dimensions))


def byte_string(name: str, value: object, padded_to: int = 0) -> Image:
    """Bytes, or a one-dimensional array of them; zeros fill them up to a size."""
    if isinstance(value, (bytes, bytearray, memoryview)):
        value = np.frombuffer(value, np.uint8)
    data: Image = elements(name, value, dimensions=1)
    return data if data.size >= padded_to else np.pad(data, (0, padded_to - data.size))


def _writable(name: str, value: object, dtype: npt.DTypeLike, shape: tuple[int, ...]) -> npt.NDArray[Any]:
    array = _array(name, value, dtype, None)
    if array.shape != shape:
        raise ValueError(f"{name}: expected shape {shape}, got {array.shape}")
    if not array.flags.c_contiguous:
        raise ValueError(f"{name}: the array has gaps between its elements or rows")
    if not array.flags.writeable:
        raise ValueError(f"{name}: the array is read-only")
    return array


def to_change(name: str, value: object, out: object, least: int = 0) -> Image:
    """The image for a function that works in place: a copy, or out, which may be the image itself."""
    return change(any_gray(name, value, least), out)


def change(array: npt.NDArray[Any], out: object) -> npt.NDArray[Any]:
    """A copy of the array, in out if there is one."""
    if out is None:
        return np.array(array, order="C")
    target = _writable("out", out, array.dtype, array.shape)
    if target is not array:
        np.copyto(target, array)
    return target


def output(out: object, *sources: Image, shape: tuple[int, ...] | None = None, in_place: bool = False,
           default: Image | None = None) -> Image:
    """An image to be written: out, or a copy of the default, or zeros. It lies apart from the sources; with in_place
    it may also be the first of them."""
    shape = sources[0].shape if shape is None else shape
    if out is None:
        return np.zeros(shape, np.uint8) if default is None else default.copy()
    target = _writable("out", out, np.uint8, shape)
    if not (in_place and target.ctypes.data == sources[0].ctypes.data):
        if any(np.may_share_memory(target, source) for source in sources):
            raise ValueError("out: the array overlaps an input")
    return target


def sized(image: Image) -> tuple[Image, int, int]:
    """Image, width and height, as the library takes them."""
    return image, image.shape[1], image.shape[0]


def take(block: ctypes.c_void_p, shape: tuple[int, ...], dtype: npt.DTypeLike = np.uint8) -> npt.NDArray[Any]:
    """Moves a buffer that the library handed out into an array, and gives it back; zeros when there is none.

    It goes back by a call that the library makes itself: only that reaches a hook that a preloaded library defines.
    """
    if not block.value:
        return np.zeros(shape, dtype)
    try:
        array = np.empty(shape, dtype)
        ctypes.memmove(array.ctypes.data, block, math.prod(shape) * array.itemsize)
        return array
    finally:
        c.FP_DeleteSpTemplates(ctypes.byref(block))
