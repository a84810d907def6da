"""Calls of every function, over the same inputs on every machine, and one FNV-1a hash of a function's results.

golden.json holds the hashes. They were written from the same calls made in C++; a result differs on no machine. A new
function enters with the hash that digest_of gives, once its results for small inputs were held against the header's
text and examples by hand. A hash changes only where a result of the library does, as in tests/golden/.
"""

from __future__ import annotations

import functools
import json
import pathlib
import struct
from typing import Any, Callable

import numpy as np

import quofpalg as q

GOLDEN: dict[str, str] = json.loads(pathlib.Path(__file__).with_name("golden.json").read_text())


class Digest:
    def __init__(self) -> None:
        self.value = 0xCBF29CE484222325

    def add_bytes(self, data: bytes) -> None:
        value = self.value
        for byte in data:
            value = ((value ^ byte) * 0x100000001B3) & 0xFFFFFFFFFFFFFFFF
        self.value = value

    def add(self, result: Any) -> None:
        """An array as its bytes, an integer as eight bytes, a tuple or an array of records value by value."""
        if isinstance(result, np.ndarray) and result.dtype.names:
            for record in result.ravel():
                self.add(tuple(record.item()))
        elif isinstance(result, (np.ndarray, np.float32)):
            self.add_bytes(result.tobytes())
        elif isinstance(result, bytes):
            self.add_bytes(result)
        elif isinstance(result, tuple):
            for value in result:
                self.add(value)
        elif isinstance(result, float):
            self.add_bytes(struct.pack("<d", result))
        else:
            self.add_bytes(struct.pack("<q", result))


class Frame:
    """An input: its number, from which other arguments follow, and its pixels, which no call may change."""

    def __init__(self, k: int, pixels: np.ndarray[Any, Any]) -> None:
        self.k = k
        self.pixels = pixels
        self.h, self.w = pixels.shape[:2]
        pixels.flags.writeable = False

    def noise(self, seed: int) -> np.ndarray[Any, Any]:
        return noise(100 * self.k + seed, (self.h, self.w))


def noise(seed: int, shape: tuple[int, int]) -> np.ndarray[Any, Any]:
    """The top bytes of splitmix64, all steps at once."""
    z = np.uint64(seed) + np.arange(1, shape[0] * shape[1] + 1, dtype=np.uint64) * np.uint64(0x9E3779B97F4A7C15)
    z = (z ^ (z >> np.uint64(30))) * np.uint64(0xBF58476D1CE4E5B9)
    z = (z ^ (z >> np.uint64(27))) * np.uint64(0x94D049BB133111EB)
    return ((z ^ (z >> np.uint64(31))) >> np.uint64(56)).astype(np.uint8).reshape(shape)


def _finger(x: Any, y: Any, w: int, h: int, n: Any) -> Any:
    dx, dy = 2 * x - w, 2 * y - h
    phase = (16 * x + 9 * y) & 127
    inside = 4 * (dx * dx * h * h + dy * dy * w * w) < 3 * w * w * h * h
    return np.where(inside, 60 + 2 * np.where(phase < 64, phase, 127 - phase) + n % 16, 225 + n % 8)


def _spots(x: Any, y: Any, w: int, h: int, n: Any) -> Any:
    def within(left: int, top: int, side: int) -> Any:
        return (x >= left) & (x < left + side) & (y >= top) & (y < top + side)

    lines = (x // 2 == w // 6) | (y == h // 3)
    places = [within(w // 2, h // 2, 6), within(w // 4, h // 4, 4), lines]
    return np.select(places, [255, n % 4, 160 + n % 4], 60 + n % 16)


def _make_frames() -> list[Frame]:
    frames: list[Frame] = []
    for kind in (_finger, _spots):
        for w, h in ((96, 80), (61, 47), (168, 160), (193, 192)):
            y, x = np.mgrid[0:h, 0:w]
            n = noise(100 * len(frames), (h, w)).astype(np.int64)
            frames.append(Frame(len(frames), kind(x, y, w, h, n).astype(np.uint8)))
    return frames


FRAMES = _make_frames()


def _other(f: Frame) -> Frame:
    return FRAMES[f.k ^ 4]


@functools.lru_cache(None)
def _record(k: int) -> Any:
    return q.ExtractSpTemplates(FRAMES[k].pixels)


@functools.lru_cache(None)
def _template(k: int, damaged: bool = False) -> bytes:
    template = q.FP_ExtractSpTemplates(FRAMES[k].pixels)
    if damaged:
        template[7 * k] ^= 9
    return template.tobytes()


def _spoiled_record(k: int) -> Any:
    record = _record(k).copy()
    if k == 1:
        record[3] += 1  # a section too long
    return record


def _settings(k: int) -> q.GainSettings:
    return q.GainSettings(5, k, k % 4, 1, 100)


def _dark(f: Frame) -> Any:
    return np.full((f.h, f.w), 3, np.uint8)


Call = Callable[..., Any]

# The calls of each function in turn; keyword arguments are handed on, for functions that have an out.
CALLS: dict[str, tuple[Call, ...]] = {
    "FP_GetVersion": (lambda f: q.FP_GetVersion(),),
    "quo_memset": (lambda f: q.quo_memset(f.pixels.copy(), 77, f.w),),
    "quo_memcpy": (lambda f: (lambda p: (q.quo_memcpy(p.ravel()[5:], p, f.w), p)[1])(f.pixels.copy()),),
    "quo_sqrt": (lambda f: np.float32(q.quo_sqrt(f.k * f.w * 0.75)),),
    "quo_short": (lambda f, **kw: q.quo_short(f.noise(1).ravel()[: f.w] * -0.75, **kw),),
    "CalcHistogram": (lambda f: q.CalcHistogram(f.pixels, 200),),
    "GetGrayIntegralImage": (lambda f: q.GetGrayIntegralImage(f.pixels[1:-1, 1:-1]),),
    "ZoomImg": (lambda f, **kw: q.ZoomImg(f.pixels, f.k & 1, **kw),),
    "FindBgValue": (lambda f: q.FindBgValue(f.pixels) or 0,),
    "GetValidArea": (lambda f: q.GetValidArea(f.pixels, 200),),
    "FP_GetImageBgValue": (lambda f: q.FP_GetImageBgValue(f.pixels),),
    "FP_GetValidArea": (lambda f: q.FP_GetValidArea(f.pixels, 190 if f.k % 2 else 0),),
    "FP_GetFingerprintInfo": (lambda f: q.FP_GetFingerprintInfo(f.pixels),),
    "FP_GetBlockValidArea": (lambda f: bytes(q.FP_GetBlockValidArea(f.pixels)),),
    "FillBorders": (lambda f, **kw: q.FillBorders(f.pixels, f.k * 3, **kw),),
    "RemoveVerticalStripes": (lambda f, **kw: q.RemoveVerticalStripes(f.pixels, **kw),),
    "RemoveVerticalStripes_All": (lambda f, **kw: q.RemoveVerticalStripes_All(f.pixels, **kw),),
    "RemoveVerticalStripes_Sector": (lambda f, **kw: q.RemoveVerticalStripes_Sector(f.pixels, **kw),),
    "GetEnhanceCoef": (lambda f: q.GetEnhanceCoef(f.pixels, 90 + f.k),),
    "LocalGrayBalance_Slice": (lambda f, **kw: q.LocalGrayBalance_Slice(f.pixels, 2 + f.k, 20, 3, 1, 2, **kw),),
    "FP_ImagePreproc": (lambda f, **kw: q.FP_ImagePreproc(f.pixels, 0 if f.k % 3 else 200, 30 * f.k, f.k, **kw),),
    "FP_ImagePreproc_Step1": (
        lambda f, **kw: q.FP_ImagePreproc_Step1(f.pixels, 0 if f.k % 3 else 200, 30 * f.k, f.k, **kw),),
    "FP_ImagePreproc_Step2": (lambda f, **kw: q.FP_ImagePreproc_Step2(f.pixels, **kw),),
    "FP_ImagePreproc_MCU": (lambda f, **kw: q.FP_ImagePreproc_MCU(f.pixels, f.k, **kw),),
    "FP_ImageEnhance_Slice": (lambda f, **kw: q.FP_ImageEnhance_Slice(f.pixels, 9 + f.k, 70, **kw),),
    "FP_ImageQuality": (lambda f: q.FP_ImageQuality(f.pixels),),
    "FP_ImageQuality_MCU": (lambda f: q.FP_ImageQuality_MCU(f.pixels),),
    "ImageQuality_MCU": (lambda f: q.ImageQuality_MCU(f.pixels),),
    "ImageQuality": (lambda f: q.ImageQuality(f.pixels),),
    "BlockOrientation_MCU": (lambda f: q.BlockOrientation_MCU(f.pixels),),
    "BlockOrientation": (lambda f: q.BlockOrientation(f.pixels, 7, 5, f.k),),
    "DDIndex8": (lambda f: q.DDIndex8(f.k * 25),),
    "Orientation": (lambda f, **kw: q.Orientation(f.pixels, f.k, **kw),),
    "CheckBadLine": (lambda f: q.CheckBadLine(f.pixels, 220),),
    "FP_GetBadLinePixelsNum": (lambda f: q.FP_GetBadLinePixelsNum(f.pixels, 1000),),
    "CheckBadPixelsNum": (lambda f: q.CheckBadPixelsNum(f.pixels, 2 * f.k, 210),),
    "MyErodeEx": (lambda f: q.MyErodeEx(f.pixels, f.k, 70, 300),),
    "FP_GetBadPixelsNum": (lambda f: q.FP_GetBadPixelsNum(f.pixels),),
    "FP_CheckBadPixelsNum_MCU": (lambda f, **kw: q.FP_CheckBadPixelsNum_MCU(f.pixels, 70 * f.k, **kw),),
    "FP_CheckBadPixelsNum": (lambda f, **kw: q.FP_CheckBadPixelsNum(f.pixels, 70 * f.k, **kw),),
    "AdaptiveLineBinary": (lambda f, **kw: q.AdaptiveLineBinary(f.pixels[0], **kw),),
    "ExtractSpTemplates": (lambda f: q.ExtractSpTemplates(f.pixels),),
    "EncodeSpTemplates": (lambda f: q.EncodeSpTemplates(_spoiled_record(f.k)),),
    "DecodeSpTemplates": (
        lambda f: q.DecodeSpTemplates(_template(f.k)), lambda f: q.DecodeSpTemplates(_template(f.k, True))),
    "MatchSpTemplates": (
        lambda f: q.MatchSpTemplates(_record(f.k), _record(_other(f).k)),
        lambda f: q.MatchSpTemplates(_record(f.k), _record(0))),
    "LocalMatchSpTemplates": (
        lambda f: q.LocalMatchSpTemplates(f.noise(1).ravel() % 3, f.noise(2).ravel() % 3),),
    "FP_ExtractSpTemplates": (lambda f: q.FP_ExtractSpTemplates(f.pixels),),
    "FP_MatchSpTemplates": (
        lambda f: q.FP_MatchSpTemplates(_template(f.k), _template(_other(f).k)),
        lambda f: q.FP_MatchSpTemplates(_template(f.k), _template(f.k, True))),
    "GasssianSmooth": (lambda f, **kw: q.GasssianSmooth(f.pixels, **kw),),
    "Variance": (lambda f: q.Variance(f.pixels.ravel()[: f.w * 3 + f.k]),),
    "ImgBlockVariance": (lambda f: q.ImgBlockVariance(f.pixels, 4, 12 * f.k),),
    "FP_ComputeSNR": (lambda f: q.FP_ComputeSNR(f.pixels),),
    "CreateBubbleImage": (lambda f: q.CreateBubbleImage(f.pixels),),
    "MyRectErode": (lambda f, **kw: q.MyRectErode(mask_of(f), f.k, **kw),),
    "MyCrossErode": (lambda f, **kw: q.MyCrossErode(mask_of(f), f.k, **kw),),
    "tev_GetFingerMean": (lambda f: q.tev_GetFingerMean(f.pixels),),
    "tev_AutoGainDacpInside": (lambda f: q.tev_AutoGainDacpInside(_settings(f.k), 120, f.k % 4, 117.25 + f.k),),
    "tev_AutoGainDacp": (
        lambda f: q.tev_AutoGainDacp(f.pixels, bytes((f.k * 29, f.k, 90)), 120, f.k % 5, 195 + 5 * f.k),
        lambda f: q.tev_AutoGainDacp(f.pixels, bytes((f.k * 29, f.k, 90)), 120, f.k % 5)),
    "FP_ChooseBestHist": (
        lambda f: q.FP_ChooseBestHist([None, f.pixels, _other(f).pixels]),
        lambda f: q.FP_ChooseBestHist([_dark(f)] * 3),
        lambda f: q.FP_ChooseBestHist([None, None, _dark(f)])),
    "g_DDSite": (lambda f: q.g_DDSite,),
    "DDIndex": (lambda f: q.DDIndex(f.k * 25),),
    "OrientEnhance": (lambda f, **kw: q.OrientEnhance(f.pixels, f.noise(1) % 182, **kw),),
    "FingerprintImageSegment": (lambda f, **kw: q.FingerprintImageSegment(f.pixels, 150, **kw),),
    "BinaryThreshold": (lambda f, **kw: q.BinaryThreshold(f.pixels, 100, **kw),),
    "AdaptiveThreshold": (lambda f, **kw: q.AdaptiveThreshold(f.pixels, 3 + f.k, f.k - 3, **kw),),
    "AreaGrayStretch": (lambda f, **kw: q.AreaGrayStretch(f.pixels, 9, 5 + f.k, **kw),),
    "BlockGrayStretch": (lambda f, **kw: q.BlockGrayStretch(f.pixels, 9, 5 + f.k, **kw),),
    "ValidAreaGrayStretch": (
        lambda f, **kw: q.ValidAreaGrayStretch(f.pixels, **kw),
        lambda f: q.ValidAreaGrayStretch(np.full((f.h, f.w), 255, np.uint8))),
    "LocalGrayBalance": (lambda f, **kw: q.LocalGrayBalance(f.pixels, 1 + 2 * f.k, 1 + 2 * f.k, **kw),),
    "MedianFilter": (lambda f, **kw: q.MedianFilter(f.pixels, **kw),),
    "RegionGrowByEightNeighbor": (
        lambda f, **kw: q.RegionGrowByEightNeighbor(
            f.w // 2, f.h // 2, 3, f.noise(1) // 150, np.where(f.noise(2) < 6, np.uint8(9), np.uint8(0)), **kw),),
}


def mask_of(f: Frame) -> Any:
    return np.where(f.noise(1) > 20, np.uint8(255), f.noise(1))


def plain(result: Any) -> Any:
    """What a call returned, with the value that the library leaves where there is none."""
    return result._replace(mean_gray=255) if isinstance(result, q.Quality) and result.mean_gray is None else result


def digest_of(name: str, frames: list[Frame] = FRAMES) -> int:
    digest = Digest()
    for frame in frames:
        for call in CALLS[name]:
            try:
                digest.add(plain(call(frame)))
            except q.QuoError as error:
                digest.add(error.code)
                if isinstance(error, q.LowCoverageError):
                    digest.add(error.coverage)
    return digest.value
