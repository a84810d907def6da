"""Sensor calibration: the DAC setting and the best of several frames.

The analogue front end has gains of 1, 2, 4, 5.6, 7, 8, 11.3 or 14 in its first stage, of 1 to 4 in its other two.
In modes 1 and 2 the mean gray rises with the DAC value, in every other mode it falls.
"""

from __future__ import annotations

import ctypes
from ctypes import byref, c_uint8
from typing import NamedTuple, Sequence

import numpy as np

from . import errors
from ._arrays import Bytes, Image, byte_string, gray, same_shape, sized
from ._library import c, integer

__all__ = [
    "GainSettings", "FingerMean", "tev_GetFingerMean", "tev_AutoGainDacpInside", "tev_AutoGainDacp",
    "FP_ChooseBestHist",
]


class GainSettings(NamedTuple):
    """Settings of the front end: gain indices 0 to 7, 0 to 3 and 0 to 3, a DAC value 0 to 255; carried goes through."""

    carried: int
    first_stage: int
    second_stage: int
    third_stage: int
    dac: int


class FingerMean(NamedTuple):
    """Mean gray of the finger, 255 when there is none, and its coverage in percent."""

    mean: int
    coverage: int


def tev_GetFingerMean(frame: Image) -> FingerMean:
    """Measures the finger in a frame: the 8 x 8 blocks whose mean gray is below 220."""
    mean, coverage = c_uint8(), c_uint8()
    c.tev_GetFingerMean.check(*sized(gray("frame", frame)), byref(mean), byref(coverage))
    return FingerMean(mean.value, coverage.value)


def tev_AutoGainDacpInside(settings_in: GainSettings, target: int, mode: int, mean: float) -> GainSettings:
    """The settings with the DAC value that brings a mean gray to a target at the present gains."""
    if len(settings_in) != 5:
        raise ValueError(f"settings_in: expected 5 settings, got {len(settings_in)}")
    present = np.array([integer("settings_in", setting, 0, 255) for setting in settings_in], np.uint8)
    new = np.zeros(5, np.uint8)
    c.tev_AutoGainDacpInside.check(present, new, target, mode, float(mean))
    return GainSettings(*new.tolist())


def tev_AutoGainDacp(frame: Image | None, packed_in: Bytes, target: int, mode: int,
                     measured_mean: int | None = None) -> bytes:
    """New settings, packed in three bytes, that bring the finger's mean gray to a target.

    The frame may be None when the mean is given; without it the mean is measured in the frame.
    """
    if frame is None and measured_mean is None:
        raise ValueError("frame: needed when there is no measured_mean")
    packed, new = byte_string("packed_in", packed_in), np.zeros(3, np.uint8)
    if packed.size != 3:
        raise ValueError(f"packed_in: expected 3 bytes, got {packed.size}")
    mean = None if measured_mean is None else byref(c_uint8(integer("measured_mean", measured_mean, 0, 255)))
    c.tev_AutoGainDacp.check(*((None, 0, 0) if frame is None else sized(gray("frame", frame))), mean, packed, new,
                             target, mode, errors={2: errors.NoFingerError})
    return new.tobytes()


def FP_ChooseBestHist(frames: Sequence[Image | None]) -> int:
    """Index of the frame with the best distribution of gray levels, of 1 to 255 frames of one shape.

    None stands for a frame that is missing.
    """
    count = integer("frames", len(frames), 1, 255)
    images: list[Image | None] = []
    first: Image | None = None
    for i, frame in enumerate(frames):
        name = f"frames[{i}]"
        image = None if frame is None else gray(name, frame) if first is None else same_shape(name, frame, first)
        first = image if first is None else first
        images.append(image)
    pointers = (ctypes.c_void_p * count)(*[None if image is None else image.ctypes.data for image in images])
    height, width = (0, 0) if first is None else first.shape
    chosen = c_uint8()
    c.FP_ChooseBestHist.check(pointers, count, width, height, byref(chosen), errors={10: errors.NoCandidateError})
    return chosen.value
