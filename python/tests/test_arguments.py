"""Arguments that cannot be right are refused by name before the library sees them; result codes become exceptions."""

from __future__ import annotations

import ctypes
import mmap
from typing import Any, Callable

import numpy as np
import pytest
from vectors import FRAMES

import quofpalg as q

IMAGE = FRAMES[0].pixels
SMALL = np.zeros((15, 40), np.uint8)
RECORD = q.ExtractSpTemplates(IMAGE)
TEMPLATE = q.FP_ExtractSpTemplates(IMAGE).tobytes()


@pytest.mark.parametrize("call, error, complaint", [
    (lambda: q.FillBorders(IMAGE.tolist(), 1), TypeError, "image: expected a NumPy array, got list"),
    (lambda: q.FillBorders(IMAGE[0], 1), ValueError, "image: expected 2 dimensions, got shape"),
    (lambda: q.FillBorders(IMAGE, 256), ValueError, "flags: 256 is not in 0 to 255"),
    (lambda: q.FillBorders(IMAGE, 1.0), TypeError, "flags: expected an integer, got float"),
    (lambda: q.FP_ImagePreproc(IMAGE, area=-1), ValueError, "area: -1 is not in 0 to 255"),
    (lambda: q.FP_ImagePreproc(IMAGE, bg=None), TypeError, "bg: expected an integer, got NoneType"),
    (lambda: q.Orientation(IMAGE, 1 << 31), ValueError, "radius: 2147483648 is not in"),
    (lambda: q.Orientation(IMAGE[:1]), ValueError, "image: expected at least 2 x 2 pixels"),
    (lambda: q.BlockOrientation(IMAGE, -1, 5), ValueError, "nbx: -1"),
    (lambda: q.FP_ComputeSNR(SMALL), ValueError, "frame: expected at least 16 x 16"),
    (lambda: q.CreateBubbleImage(SMALL), ValueError, "frame: expected at least 16 x 16"),
    (lambda: q.FP_ExtractSpTemplates(IMAGE[:24]), ValueError, "frame: expected at least 25 x 25"),
    (lambda: q.ExtractSpTemplates(np.zeros((25, 21865), np.uint8)), ValueError, "frame: width . height is above 21889"),
    (lambda: q.EncodeSpTemplates(RECORD[:-1]), ValueError, "record: .* not the length that a profile record states"),
    (lambda: q.MatchSpTemplates(RECORD, b""), ValueError, "second: 0 bytes"),
    (lambda: q.DecodeSpTemplates("text"), TypeError, "sp_template: expected a NumPy array, got str"),
    (lambda: q.LocalMatchSpTemplates(b"12", b"1"), ValueError, "second: expected 2 positions, got 1"),
    (lambda: q.LocalMatchSpTemplates(bytes(65536), bytes(65536)), ValueError, "n: 65536"),
    (lambda: q.OrientEnhance(IMAGE, IMAGE[1:]), ValueError, "directions: expected shape"),
    (lambda: q.RegionGrowByEightNeighbor(IMAGE.shape[1], 0, 1, IMAGE), ValueError, "seed_x: 96 is not in 0 to 95"),
    (lambda: q.RegionGrowByEightNeighbor(0, -1, 1, IMAGE), ValueError, "seed_y: -1"),
    (lambda: q.RegionGrowByEightNeighbor(0, 0, 256, IMAGE), ValueError, "label: 256"),
    (lambda: q.FP_ChooseBestHist([]), ValueError, "frames: 0 is not in 1 to 255"),
    (lambda: q.FP_ChooseBestHist([IMAGE, None, IMAGE[1:]]), ValueError, r"frames\[2\]: expected shape"),
    (lambda: q.tev_AutoGainDacp(None, b"123", 120, 0), ValueError, "frame: needed"),
    (lambda: q.tev_AutoGainDacp(IMAGE, b"12", 120, 0), ValueError, "packed_in: expected 3 bytes, got 2"),
    (lambda: q.tev_AutoGainDacpInside((1, 2, 3, 4, 256), 1, 1, 1.0), ValueError, "settings_in: 256"),
    (lambda: q.tev_AutoGainDacpInside((1, 2, 3), 1, 1, 1.0), ValueError, "settings_in: expected 5 settings, got 3"),
    (lambda: q.quo_short(IMAGE[0]), TypeError, "values: expected an array of float64, got uint8"),
    (lambda: q.CalcHistogram(IMAGE, -1), ValueError, "bins: -1"),
    (lambda: q.quo_memset(IMAGE, 0), ValueError, "destination: expected a writable array"),
    (lambda: q.quo_memset(np.zeros(4, np.uint8), 0, 5), ValueError, "count: 5 is not in 0 to 4"),
    (lambda: q.quo_memcpy(np.zeros(4, np.uint8)[::2], IMAGE, 1), ValueError, "destination: expected a writable array"),
    (lambda: q.quo_memcpy(np.zeros(9, np.uint8), np.zeros(4, np.uint8), 5), ValueError, "count: 5 is not in 0 to 4"),
    (lambda: q.FP_GetBadLinePixelsNum(IMAGE, -1), ValueError, "line_pixels: -1"),
])
def test_wrong_arguments_are_refused(call: Callable[[], Any], error: type[Exception], complaint: str) -> None:
    with pytest.raises(error, match="^" + complaint):
        call()


@pytest.mark.parametrize("call, error, function, code", [
    (lambda: q.FP_ImagePreproc(IMAGE, area=99), q.LowCoverageError, "FP_ImagePreproc", 5),
    (lambda: q.DecodeSpTemplates(TEMPLATE[:40]), q.BadTemplateError, "DecodeSpTemplates", 2),
    (lambda: q.FP_MatchSpTemplates(TEMPLATE, b"\1"), q.TemplateMisfitError, "FP_MatchSpTemplates", 8),
    (lambda: q.ImgBlockVariance(IMAGE, 50, 8), q.BadGridError, "ImgBlockVariance", 1),
    (lambda: q.tev_AutoGainDacp(None, b"123", 120, 0, 221), q.NoFingerError, "tev_AutoGainDacp", 2),
    (lambda: q.FP_ChooseBestHist([SMALL + 210]), q.NoCandidateError, "FP_ChooseBestHist", 10),
    (lambda: q.LocalGrayBalance(SMALL, 5, 5), q.NotDoneError, "LocalGrayBalance", 0),
])
def test_result_codes_are_exceptions(call: Callable[[], Any], error: type[q.QuoError], function: str,
                                     code: int) -> None:
    with pytest.raises(error, match=function) as raised:
        call()
    assert (raised.value.function, raised.value.code) == (function, code)


def test_low_coverage_says_what_was_found() -> None:
    found = q.FP_GetValidArea(IMAGE).percentage
    with pytest.raises(q.LowCoverageError) as raised:
        q.FP_ImagePreproc_Step1(IMAGE, area=found + 1)
    assert raised.value.coverage == found
    assert q.FP_ImagePreproc_Step1(IMAGE, area=found).area == found
    assert q.FP_ImagePreproc_Step1(IMAGE, area=None).area is None


@pytest.mark.parametrize("function", [q.MedianFilter, q.RemoveVerticalStripes_All, q.Orientation])
def test_an_output_may_be_the_source_but_not_overlap_it(function: Callable[..., Any]) -> None:
    image = IMAGE.copy()
    assert function(image, out=image) is image
    np.testing.assert_array_equal(image, function(IMAGE))
    with pytest.raises(ValueError, match="^out: the array overlaps"):
        function(image[1:], out=image[:-1])
    with pytest.raises(ValueError, match="^out: the array overlaps"):
        q.AdaptiveThreshold(image, 5, 0, out=image)


def test_short_templates_are_read_no_further_than_they_are() -> None:
    pages = mmap.mmap(-1, 2 * mmap.PAGESIZE)
    data = np.frombuffer(pages, np.uint8)
    unreadable = ctypes.c_void_p(data.ctypes.data + mmap.PAGESIZE)
    assert ctypes.CDLL(None).mprotect(unreadable, mmap.PAGESIZE, 0) == 0
    for size in (0, 1, 3, 40):
        short = data[mmap.PAGESIZE - size : mmap.PAGESIZE]
        short[:] = np.frombuffer(TEMPLATE[:size], np.uint8)
        with pytest.raises(q.TemplateMisfitError):
            q.FP_MatchSpTemplates(TEMPLATE, short)
        if size:
            with pytest.raises(q.BadTemplateError):
                q.DecodeSpTemplates(short)


def test_empty_images_are_left_alone() -> None:
    for shape in ((0, 7), (7, 0)):
        empty = np.zeros(shape, np.uint8)
        for function in (q.FP_ImagePreproc_Step2, q.RemoveVerticalStripes, q.GasssianSmooth, q.MedianFilter):
            assert function(empty).shape == shape
        assert q.FP_ImageQuality(empty) == (0, 0, 0, None)
        assert q.CreateBubbleImage(empty).pixels == 0
        assert q.BlockOrientation_MCU(empty).size == 0
