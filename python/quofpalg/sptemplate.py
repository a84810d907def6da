"""Sp templates: a compact description of a frame by six binarised line profiles.

Templates and profile records are one-dimensional uint8 arrays; bytes are taken too. The memory behind them is NumPy's,
so there is nothing to delete.
"""

from __future__ import annotations

from ctypes import byref, c_uint32, c_void_p
from typing import NamedTuple

from . import errors
from ._arrays import Bytes, Image, byte_string, change, elements, gray, sized, take
from ._library import c

__all__ = [
    "SP_MAX_READ", "LocalMatch", "AdaptiveLineBinary", "ExtractSpTemplates", "EncodeSpTemplates", "DecodeSpTemplates",
    "MatchSpTemplates", "LocalMatchSpTemplates", "FP_ExtractSpTemplates", "FP_MatchSpTemplates",
]

SP_MAX_READ = 2042  # bytes of a template that are read at most


class LocalMatch(NamedTuple):
    """Length of the stretch compared, and the number of positions in it that are equal."""

    span: int
    equal: int


def _record(name: str, value: object) -> Image:
    """A profile record: a version byte, a length T as two bytes, the highest first, and T bytes."""
    record = byte_string(name, value)
    if record.size < 3 or record.size != int(record[1]) * 256 + int(record[2]) + 3:
        raise ValueError(f"{name}: {record.size} bytes are not the length that a profile record states")
    return record


def _frame(value: object) -> Image:
    frame = gray("frame", value, least=25)
    if sum(frame.shape) > 21889:
        raise ValueError(f"frame: width + height is above 21889, got shape {frame.shape}")
    return frame


def AdaptiveLineBinary(line: Image, out: Image | None = None) -> Image:
    """Binarises a line of pixels against the mean of the 31 around each; pixels of 254 and 255 stay."""
    result: Image = change(elements("line", line, dimensions=1), out)
    c.AdaptiveLineBinary.check(result, result.size)
    return result


def ExtractSpTemplates(frame: Image) -> Image:
    """Samples the six profiles of a frame of at least 25 x 25 pixels into a profile record."""
    record, size = c_void_p(), c_uint32()
    c.ExtractSpTemplates.check(*sized(_frame(frame)), byref(record), byref(size))
    return take(record, (size.value,))


def EncodeSpTemplates(record: Bytes) -> Image:
    """Codes a profile record as an Sp template."""
    template, size = c_void_p(), c_uint32()
    c.EncodeSpTemplates.check(_record("record", record), byref(template), byref(size),
                              errors={1: errors.BadRecordError})
    return take(template, (size.value,))


def DecodeSpTemplates(sp_template: Bytes) -> Image:
    """Decodes an Sp template, any bytes, into the profile record that it was made from."""
    record, size = c_void_p(), c_uint32()
    c.DecodeSpTemplates.check(byte_string("sp_template", sp_template, SP_MAX_READ), byref(record), byref(size),
                              errors={2: errors.BadTemplateError})
    return take(record, (size.value,))


def MatchSpTemplates(first: Bytes, second: Bytes) -> int:
    """Scores how alike two profile records are, 0 to 100."""
    score = c_uint32()
    c.MatchSpTemplates.check(_record("first", first), _record("second", second), byref(score),
                             errors={1: errors.TemplateMisfitError})
    return score.value


def LocalMatchSpTemplates(first: Bytes, second: Bytes) -> LocalMatch:
    """Compares two profiles of equal length, at most 65535, from the first to the last position dark in either."""
    one, other = byte_string("first", first), byte_string("second", second)
    if one.size != other.size:
        raise ValueError(f"second: expected {one.size} positions, got {other.size}")
    span, equal = c_uint32(), c_uint32()
    c.LocalMatchSpTemplates(one, other, one.size, byref(span), byref(equal))
    return LocalMatch(span.value, equal.value)


def FP_ExtractSpTemplates(frame: Image) -> Image:
    """Makes the Sp template of a frame of at least 25 x 25 pixels; width + height above 384 cannot be matched."""
    template, size = c_void_p(), c_uint32()
    c.FP_ExtractSpTemplates.check(*sized(_frame(frame)), byref(template), byref(size))
    return take(template, (size.value,))


def FP_MatchSpTemplates(first: Bytes, second: Bytes) -> int:
    """Scores how alike two Sp templates, any bytes, are: 0 to 100."""
    score = c_uint32()
    c.FP_MatchSpTemplates.check(byte_string("first", first, SP_MAX_READ), byte_string("second", second, SP_MAX_READ),
                                byref(score), errors={8: errors.TemplateMisfitError})
    return score.value
