"""Sensor defect inspection. Mark images, of the shape of the frame, hold 255 at a defect and 0 elsewhere."""

from __future__ import annotations

from ctypes import byref, c_uint8, c_uint32, c_void_p
from typing import NamedTuple

from ._arrays import Image, gray, sized, take, to_change
from ._library import _Function, c, integer
from .errors import NoMemoryError

__all__ = [
    "BadLines", "Defects", "DefectCheck", "CheckBadLine", "FP_GetBadLinePixelsNum", "CheckBadPixelsNum", "MyErodeEx",
    "FP_GetBadPixelsNum", "FP_CheckBadPixelsNum_MCU", "FP_CheckBadPixelsNum",
]


class BadLines(NamedTuple):
    """Pixels on marked columns and rows; a byte a column and a byte a row, 1 on a defect and 0 otherwise."""

    column_pixels: int
    row_pixels: int
    column_marks: Image
    row_marks: Image


class Defects(NamedTuple):
    """Number of defect pixels, and where they are."""

    pixels: int
    mark_image: Image


class DefectCheck(NamedTuple):
    """The frame, its line defects repaired when it passes, and whether it fails."""

    frame: Image
    fail: bool


def CheckBadLine(image: Image, reference: int) -> BadLines:
    """Finds line defects from the sums of columns and rows; reference is the gray level of the uncovered sensor."""
    frame = gray("image", image)
    columns, rows, column_marks, row_marks = c_uint32(), c_uint32(), c_void_p(), c_void_p()
    c.CheckBadLine.check(*sized(frame), reference, byref(columns), byref(rows), byref(column_marks), byref(row_marks))
    across = take(column_marks, (frame.shape[1],))
    down = take(row_marks, (frame.shape[0],))
    return BadLines(columns.value, rows.value, across, down)


def FP_GetBadLinePixelsNum(image: Image, line_pixels: int = 0) -> Defects:
    """Counts the pixels on line defects, on top of line_pixels; a pixel on both a column and a row counts twice."""
    frame = gray("image", image)
    count, marks = c_uint32(integer("line_pixels", line_pixels, 0, 0xFFFFFFFF)), c_void_p()
    function = c.FP_GetBadLinePixelsNum
    try:
        function.check(*sized(frame), byref(count), byref(marks))
    finally:  # marks may be there although the call failed
        mark_image = take(marks, frame.shape)
    return Defects(count.value, mark_image)


def _marks(function: _Function, count: int, block: c_void_p, frame: Image) -> Image:
    """A mark image: none when nothing was counted, and missing when there was no memory for it."""
    if count > 0 and not block.value:
        raise NoMemoryError(function.name, 0)
    return take(block, frame.shape)


def CheckBadPixelsNum(image: Image, allowance: int, level_limit: int) -> Defects:
    """Counts pixels far below the mean of the levels below level_limit, in clusters; stops beyond the allowance."""
    frame = gray("image", image)
    count, marks = c_uint32(), c_void_p()
    c.CheckBadPixelsNum.check(*sized(frame), allowance, byref(count), byref(marks), level_limit)
    return Defects(count.value, _marks(c.CheckBadPixelsNum, count.value, marks, frame))


def MyErodeEx(image: Image, border: int, threshold: int, allowance: int) -> Defects:
    """Counts the pixels below a threshold with a direct neighbour below it; stops beyond the allowance."""
    frame = gray("image", image)
    count, marks = c_uint32(), c_void_p()
    c.MyErodeEx(*sized(frame), border, threshold, allowance, byref(count), byref(marks))
    return Defects(count.value, _marks(c.MyErodeEx, count.value, marks, frame))


def FP_GetBadPixelsNum(frame: Image) -> Defects:
    """Measures the defects of a frame: four times the bad pixels of its half, and the pixels on line defects."""
    image = gray("frame", frame)
    count, marks = c_uint32(), c_void_p()
    try:
        c.FP_GetBadPixelsNum.check(*sized(image), byref(count), byref(marks))
    finally:
        mark_image = take(marks, image.shape)
    return Defects(count.value, mark_image)


def _checked(function: _Function, frame: Image, allowance: int, out: Image | None) -> DefectCheck:
    result = to_change("frame", frame, out)
    fail = c_uint8()
    function.check(*sized(result), allowance, byref(fail))
    return DefectCheck(result, fail.value != 0)


def FP_CheckBadPixelsNum_MCU(frame: Image, allowance: int, out: Image | None = None) -> DefectCheck:
    """Whether the defects of a frame exceed an allowance in pixels; repairs its line defects when they do not."""
    return _checked(c.FP_CheckBadPixelsNum_MCU, frame, allowance, out)


def FP_CheckBadPixelsNum(frame: Image, allowance: int, out: Image | None = None) -> DefectCheck:
    """The same as FP_CheckBadPixelsNum_MCU()."""
    return _checked(c.FP_CheckBadPixelsNum, frame, allowance, out)
