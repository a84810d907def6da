"""Finds and loads the shared library, and calls its functions with every number checked against its C type."""

from __future__ import annotations

import ctypes
import operator
import os
import pathlib
from typing import Any

import numpy as np

from .errors import LibraryError, NoMemoryError, QuoError

VERSION = 75
_FILES = (f"libquoFPAlg.so.{VERSION}", "libquoFPAlg.so")

# The interface: result, name, parameters. Every pointer is a ptr.
PROTOTYPES = """
i32 FP_GetVersion()
ptr quo_memset(ptr destination, u8 value, u32 count)
ptr quo_memcpy(ptr destination, ptr source, u32 count)
f32 quo_sqrt(f32 x)
void quo_short(ptr values, i32 count)
u8 CalcHistogram(ptr pixels, i32 count, ptr histogram, u32 bins)
void GetGrayIntegralImage(ptr source, ptr integral, i32 width, i32 height, i32 stride)
void ZoomImg(ptr source, ptr destination, i32 width, i32 height, u8 mode)

u8 FindBgValue(ptr image, i32 width, i32 height, ptr bg_out)
u8 GetValidArea(ptr image, i32 width, i32 height, u8 bg, ptr percentage_out, ptr mean_out, ptr centre_x_out,
    ptr centre_y_out)
u32 FP_GetImageBgValue(ptr image, i32 width, i32 height, ptr bg_out)
u32 FP_GetValidArea(ptr image, i32 width, i32 height, u8 bg, ptr percentage_out, ptr mean_out)
u32 FP_GetFingerprintInfo(ptr image, i32 width, i32 height, ptr mean_out, ptr percentage_out, ptr centre_x_out,
    ptr centre_y_out)
u32 FP_GetBlockValidArea(ptr frame, i32 width, i32 height, ptr top_left, ptr top_right, ptr bottom_left,
    ptr bottom_right)
void FillBorders(ptr image, i32 width, i32 height, u8 flags)
u8 RemoveVerticalStripes(ptr source, ptr destination, i32 width, i32 height)
u8 RemoveVerticalStripes_All(ptr source, ptr destination, i32 width, i32 height)
u8 RemoveVerticalStripes_Sector(ptr source, ptr destination, i32 width, i32 height)
f64 GetEnhanceCoef(ptr image, u32 width, u32 height, i32 target)
u8 LocalGrayBalance_Slice(ptr image, i32 width, i32 height, u32 radius, u32 band_rows, u8 gain, u8 top_context,
    u8 bottom_context)
u32 FP_ImagePreproc(ptr frame, i32 width, i32 height, u8 bg, ptr area, u8 border_flags)
u32 FP_ImagePreproc_Step1(ptr frame, i32 width, i32 height, u8 bg, ptr area, u8 border_flags)
u32 FP_ImagePreproc_Step2(ptr frame, i32 width, i32 height)
u32 FP_ImagePreproc_MCU(ptr frame, i32 width, i32 height, u8 border_flags)
u32 FP_ImageEnhance_Slice(ptr frame, i32 width, i32 height, i32 slice_rows, i32 target)

u32 FP_ImageQuality(ptr image, i32 width, i32 height, ptr quality, ptr area, ptr bright, ptr mean_gray)
u32 FP_ImageQuality_MCU(ptr image, i32 width, i32 height, ptr quality, ptr area, ptr bright, ptr mean_gray)
u32 ImageQuality_MCU(ptr image, i32 width, i32 height, ptr quality, ptr area, ptr bright, ptr mean_gray)
u32 BlockOrientation_MCU(ptr image, i32 width, i32 height, ptr blocks, ptr count)
u32 BlockOrientation(ptr image, i32 width, i32 height, ptr blocks, i32 nbx, i32 nby, i32 radius, ptr area)
u32 DDIndex8(i32 orientation)
u32 ImageQuality(ptr image, i32 width, i32 height, ptr quality, ptr area, ptr bright, ptr mean_gray)
u32 Orientation(ptr image, ptr output, i32 width, i32 height, i32 radius)

u32 CheckBadLine(ptr image, i32 width, i32 height, u8 reference, ptr column_pixels, ptr row_pixels, ptr column_marks,
    ptr row_marks)
u32 FP_GetBadLinePixelsNum(ptr image, i32 width, i32 height, ptr line_pixels, ptr mark_image)
u32 CheckBadPixelsNum(ptr image, i32 width, i32 height, i32 allowance, ptr bad_pixels, ptr mark_image, u8 level_limit)
void MyErodeEx(ptr image, i32 width, i32 height, i32 border, u8 threshold, i32 allowance, ptr count, ptr mark_image)
u32 FP_GetBadPixelsNum(ptr frame, i32 width, i32 height, ptr defect_pixels, ptr mark_image)
u32 FP_CheckBadPixelsNum_MCU(ptr frame, i32 width, i32 height, i32 allowance, ptr fail)
u32 FP_CheckBadPixelsNum(ptr frame, i32 width, i32 height, i32 allowance, ptr fail)

u32 AdaptiveLineBinary(ptr line, i32 n)
u32 ExtractSpTemplates(ptr frame, i32 width, i32 height, ptr record, ptr size)
u32 EncodeSpTemplates(ptr record, ptr sp_template, ptr size)
u32 DecodeSpTemplates(ptr sp_template, ptr record, ptr size)
u32 MatchSpTemplates(ptr first, ptr second, ptr score)
void LocalMatchSpTemplates(ptr first, ptr second, u16 n, ptr span, ptr equal)
u32 FP_ExtractSpTemplates(ptr frame, u32 width, u32 height, ptr sp_template, ptr size)
void FP_DeleteSpTemplates(ptr sp_template)
u32 FP_MatchSpTemplates(ptr first, ptr second, ptr score)

u32 GasssianSmooth(ptr image, ptr scratch, i32 width, i32 height)
f64 Variance(ptr data, i32 count)
u32 ImgBlockVariance(ptr image, i32 width, i32 height, u8 margin, i32 size, ptr variances, ptr blocks_across,
    ptr blocks_down)
u32 FP_ComputeSNR(ptr frame, u32 width, u32 height, ptr snr, ptr signal, ptr noise)
u32 CreateBubbleImage(ptr frame, u32 width, u32 height, ptr count, ptr bubble_image)
void MyRectErode(ptr mask, ptr output, i32 width, i32 height, i32 border, ptr count)

u32 tev_GetFingerMean(ptr frame, i32 width, i32 height, ptr mean, ptr coverage)
u32 tev_AutoGainDacpInside(ptr settings_in, ptr settings_out, u8 target, u32 mode, f64 mean)
u32 tev_AutoGainDacp(ptr frame, i32 width, i32 height, ptr measured_mean, ptr packed_in, ptr packed_out, u8 target,
    u32 mode)
u32 FP_ChooseBestHist(ptr frames, u8 count, i32 width, i32 height, ptr chosen)

u32 DDIndex(i32 degrees)
u32 OrientEnhance(ptr image, ptr directions, i32 width, i32 height)
i32 FingerprintImageSegment(ptr image, i32 width, i32 height, i32 threshold)
ptr BinaryThreshold(ptr data, i32 count, u8 threshold)
void AdaptiveThreshold(ptr source, ptr output, i32 width, i32 height, i32 window, i32 offset)
u32 AreaGrayStretch(ptr source, ptr output, i32 width, i32 height, i32 window_width, i32 window_height)
u32 BlockGrayStretch(ptr source, ptr output, i32 width, i32 height, i32 block_width, i32 block_height)
u32 ValidAreaGrayStretch(ptr image, i32 width, i32 height)
u32 LocalGrayBalance(ptr source, ptr output, i32 width, u32 height, i32 window_width, i32 window_height)
void MedianFilter(ptr source, ptr destination, i32 width, i32 height)
void MyCrossErode(ptr mask, ptr output, i32 width, i32 height, i32 border, ptr count)
u32 RegionGrowByEightNeighbor(i32 seed_x, i32 seed_y, u32 label, ptr image, u32 width, u32 height, ptr labels,
    ptr count, ptr min_x, ptr min_y, ptr max_x, ptr max_y)
"""

_C_TYPES: dict[str, Any] = {
    "void": None,
    "ptr": ctypes.c_void_p,
    "f32": ctypes.c_float,
    "f64": ctypes.c_double,
    "u8": ctypes.c_uint8,
    "u16": ctypes.c_uint16,
    "u32": ctypes.c_uint32,
    "i32": ctypes.c_int32,
}
_RANGES = {"u8": (0, 0xFF), "u16": (0, 0xFFFF), "u32": (0, 0xFFFFFFFF), "i32": (-0x80000000, 0x7FFFFFFF)}


def integer(name: str, value: object, low: int, high: int) -> int:
    """The value as an int from low to high, whatever kind of integer it is."""
    try:
        number = operator.index(value)  # type: ignore[arg-type]
    except TypeError:
        raise TypeError(f"{name}: expected an integer, got {type(value).__name__}") from None
    if not low <= number <= high:
        raise ValueError(f"{name}: {number} is not in {low} to {high}")
    return number


def _as_parameter(kind: str, name: str, value: Any) -> Any:
    if kind in _RANGES:
        return integer(name, value, *_RANGES[kind])
    return value.ctypes.data if isinstance(value, np.ndarray) else value


class _Function:
    """A function of the library. Numbers outside their C type are refused: ctypes alone would cut them off.

    Pointers are given as arrays, which live at least as long as the call.
    """

    def __init__(self, library: ctypes.CDLL, prototype: str) -> None:
        head, parameters = prototype.rstrip(")").split("(")
        result, self.name = head.split()
        parameter_list = [parameter.split() for parameter in parameters.split(", ") if parameter]
        self.kinds = [kind for kind, _ in parameter_list]
        self.names = [name for _, name in parameter_list]
        self._call = getattr(library, self.name)
        self._call.restype = _C_TYPES[result]
        self._call.argtypes = [_C_TYPES[kind] for kind in self.kinds]

    def __call__(self, *arguments: Any) -> Any:
        return self._call(*map(_as_parameter, self.kinds, self.names, arguments))

    def check(self, *arguments: Any, errors: dict[int, type[QuoError]] | None = None) -> None:
        """Calls the function and raises what its result code stands for, 1 being a want of memory."""
        code = self(*arguments)
        if code != 0:
            raise (errors or {}).get(code, NoMemoryError if code == 1 else QuoError)(self.name, code)

    def done(self, *arguments: Any, error: type[QuoError] = NoMemoryError) -> None:
        """Calls an operator that answers 1 for done and 0 otherwise, and raises the error for 0."""
        answer = self(*arguments)
        if answer == 0:
            raise error(self.name, answer)


class _Functions:
    """All functions, as attributes by their names."""

    def __init__(self, library: ctypes.CDLL) -> None:
        for prototype in PROTOTYPES.replace("\n    ", " ").split("\n"):
            if prototype:
                function = _Function(library, prototype)
                setattr(self, function.name, function)

    def __getattr__(self, name: str) -> _Function:
        raise AttributeError(name)


def _candidates() -> list[str]:
    """Where the library may be, in the order of preference; QUOFP_LIBRARY leaves no choice."""
    chosen = os.environ.get("QUOFP_LIBRARY")
    if chosen:
        return [chosen]
    here = pathlib.Path(__file__).parent
    return [str(here / file) for file in _FILES if (here / file).exists()] + list(_FILES)


def _load() -> ctypes.CDLL:
    failures = []
    for candidate in _candidates():
        try:
            library = ctypes.CDLL(candidate)
            version = library.FP_GetVersion()
        except (OSError, AttributeError) as error:
            failures.append(f"  {candidate}: {error}")
            continue
        if version != VERSION:
            raise LibraryError(f"{candidate} is version {version}, this module is for version {VERSION}")
        return library
    raise LibraryError(
        "the library could not be loaded; set QUOFP_LIBRARY to the path of libquoFPAlg.so\n" + "\n".join(failures))


loaded = _load()
c = _Functions(loaded)
