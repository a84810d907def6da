"""Capture preprocessing: background and coverage, borders, stripes, gray balance, and the steps made of them.

Blocks are 8 x 8 pixels. A block is valid, that is finger, when its mean is below the background value.
"""

from __future__ import annotations

from ctypes import byref, c_int32, c_uint8
from typing import NamedTuple

from . import errors
from ._arrays import Image, gray, output, sized, to_change
from ._library import _Function, c, integer

__all__ = [
    "BORDER_TOP", "BORDER_BOTTOM", "BORDER_LEFT", "BORDER_RIGHT", "ValidArea", "FingerArea", "QuarterMeans",
    "Preprocessed", "FindBgValue", "GetValidArea", "FP_GetImageBgValue", "FP_GetValidArea", "FP_GetFingerprintInfo",
    "FP_GetBlockValidArea", "FillBorders", "RemoveVerticalStripes", "RemoveVerticalStripes_All",
    "RemoveVerticalStripes_Sector", "GetEnhanceCoef", "LocalGrayBalance_Slice", "FP_ImagePreproc",
    "FP_ImagePreproc_Step1", "FP_ImagePreproc_Step2", "FP_ImagePreproc_MCU", "FP_ImageEnhance_Slice",
]

BORDER_TOP, BORDER_BOTTOM, BORDER_LEFT, BORDER_RIGHT = 1, 2, 4, 8


class ValidArea(NamedTuple):
    """Valid blocks per hundred, and the mean of their pixels, 255 when no block is valid."""

    percentage: int
    mean: int


class FingerArea(NamedTuple):
    """As ValidArea, and the mean top left corner of the valid blocks, 0 when no block is valid."""

    percentage: int
    mean: int
    centre_x: int
    centre_y: int


class QuarterMeans(NamedTuple):
    """Mean gray of the finger in each quarter of a frame, 255 where there is no finger."""

    top_left: int
    top_right: int
    bottom_left: int
    bottom_right: int


class Preprocessed(NamedTuple):
    """The cleaned frame and the coverage found in percent, None when it was not asked for."""

    frame: Image
    area: int | None


def FindBgValue(image: Image) -> int | None:
    """Gray level of the background, 93 or more, from the corners of a frame; None when none is found."""
    value = c_uint8()
    return value.value if c.FindBgValue(*sized(gray("image", image)), byref(value)) else None


def GetValidArea(image: Image, bg: int) -> FingerArea:
    """How much of a frame the finger covers, how dark it is, and where it lies, given the background value."""
    percentage, mean, x, y = c_uint8(), c_uint8(), c_int32(), c_int32()
    c.GetValidArea(*sized(gray("image", image)), bg, byref(percentage), byref(mean), byref(x), byref(y))
    return FingerArea(percentage.value, mean.value, x.value, y.value)


def FP_GetImageBgValue(image: Image) -> int:
    """Background value of a frame, 255 when none is found."""
    value = c_uint8()
    c.FP_GetImageBgValue.check(*sized(gray("image", image)), byref(value))
    return value.value


def FP_GetValidArea(image: Image, bg: int = 0) -> ValidArea:
    """Coverage of a frame in percent and the mean gray of the finger; a background value of 0 is estimated."""
    percentage, mean = c_uint8(), c_uint8()
    c.FP_GetValidArea.check(*sized(gray("image", image)), bg, byref(percentage), byref(mean))
    return ValidArea(percentage.value, mean.value)


def FP_GetFingerprintInfo(image: Image) -> FingerArea:
    """GetValidArea() with the estimated background value, or 255 when none is found."""
    percentage, mean, x, y = c_uint8(), c_uint8(), c_int32(), c_int32()
    c.FP_GetFingerprintInfo.check(*sized(gray("image", image)), byref(mean), byref(percentage), byref(x), byref(y))
    return FingerArea(percentage.value, mean.value, x.value, y.value)


def FP_GetBlockValidArea(frame: Image) -> QuarterMeans:
    """Mean gray of the finger in each quarter, (height // 2, width // 2), of a frame."""
    means = [c_uint8() for _ in range(4)]
    c.FP_GetBlockValidArea.check(*sized(gray("frame", frame)), *map(byref, means))
    return QuarterMeans(*(mean.value for mean in means))


def FillBorders(image: Image, flags: int, out: Image | None = None) -> Image:
    """Replaces border lines by copies of the lines inside them; flags are a sum of BORDER_ values."""
    result = to_change("image", image, out)
    c.FillBorders(*sized(result), flags)
    return result


def _without_stripes(function: _Function, source: Image, out: Image | None) -> Image:
    image = gray("source", source)
    result = output(out, source, in_place=True)
    _, width, height = sized(image)
    function.done(image, result, width, height)
    return result


def RemoveVerticalStripes(source: Image, out: Image | None = None) -> Image:
    """The same as RemoveVerticalStripes_All()."""
    return _without_stripes(c.RemoveVerticalStripes, source, out)


def RemoveVerticalStripes_All(source: Image, out: Image | None = None) -> Image:
    """Removes columns brighter or darker than the four on either side; out=source works in place."""
    return _without_stripes(c.RemoveVerticalStripes_All, source, out)


def RemoveVerticalStripes_Sector(source: Image, out: Image | None = None) -> Image:
    """Removes stripes from the second and the third column of every sector of 16; out=source works in place."""
    result = to_change("source", source, out)
    _, width, height = sized(result)
    c.RemoveVerticalStripes_Sector.done(result, result, width, height)
    return result


def GetEnhanceCoef(image: Image, target: int = 100) -> float:
    """Gain that brings the mean absolute deviation of the pixels below 230 to a target; to be truncated."""
    return float(c.GetEnhanceCoef(*sized(gray("image", image)), target))


def LocalGrayBalance_Slice(image: Image, radius: int, band_rows: int, gain: int, top_context: int = 0,
                           bottom_context: int = 0, out: Image | None = None) -> Image:
    """Evens out brightness and stretches contrast, one band of rows after the other.

    A pixel p below 254 becomes 128 + gain * (p - m), where m is the mean of its band within radius. A gain (0 to 255)
    below 2 does nothing, band_rows of 0 makes one band. The context rows (0 to 255) of a band feed the means but are
    not changed.
    """
    result = to_change("image", image, out)
    c.LocalGrayBalance_Slice.check(*sized(result), radius, band_rows, gain, top_context, bottom_context)
    return result


def _preprocessed(function: _Function, frame: Image, bg: int, area: int | None, border_flags: int,
                  out: Image | None) -> Preprocessed:
    result = to_change("frame", frame, out)
    coverage = None if area is None else c_uint8(integer("area", area, 0, 255))
    try:
        function.check(*sized(result), bg, None if coverage is None else byref(coverage), border_flags,
                       errors={5: errors.LowCoverageError})
    except errors.LowCoverageError as error:
        error.coverage = 0 if coverage is None else coverage.value
        raise
    return Preprocessed(result, None if coverage is None else coverage.value)


def FP_ImagePreproc(frame: Image, bg: int = 0, area: int | None = 0, border_flags: int = 0,
                    out: Image | None = None) -> Preprocessed:
    """Cleans a captured frame: FP_ImagePreproc_Step1(), then FP_ImagePreproc_Step2().

    :param bg: background value; 0 to have it estimated
    :param area: coverage required in percent; None leaves coverage out
    :param border_flags: border lines to replace, a sum of BORDER_ values
    :raises LowCoverageError: the finger covers less than required
    """
    return _preprocessed(c.FP_ImagePreproc, frame, bg, area, border_flags, out)


def FP_ImagePreproc_Step1(frame: Image, bg: int = 0, area: int | None = 0, border_flags: int = 0,
                          out: Image | None = None) -> Preprocessed:
    """Replaces border lines, checks the coverage, removes vertical stripes; parameters as for FP_ImagePreproc()."""
    return _preprocessed(c.FP_ImagePreproc_Step1, frame, bg, area, border_flags, out)


def FP_ImagePreproc_Step2(frame: Image, out: Image | None = None) -> Image:
    """Balances the gray levels of the whole frame over 7 x 7 pixels, with the gain of GetEnhanceCoef() for 100."""
    result = to_change("frame", frame, out)
    c.FP_ImagePreproc_Step2.check(*sized(result))
    return result


def FP_ImagePreproc_MCU(frame: Image, border_flags: int = 0, out: Image | None = None) -> Image:
    """Cleans a captured frame, borders and vertical stripes only."""
    result = to_change("frame", frame, out)
    c.FP_ImagePreproc_MCU.check(*sized(result), border_flags)
    return result


def FP_ImageEnhance_Slice(frame: Image, slice_rows: int = 40, target: int = 100, out: Image | None = None) -> Image:
    """Balances the gray levels as FP_ImagePreproc_Step2() does, in slices of at least 3 rows to bound memory."""
    result = to_change("frame", frame, out)
    c.FP_ImageEnhance_Slice.check(*sized(result), slice_rows, target)
    return result
