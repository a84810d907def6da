"""Every function gives what the library gives, wherever its arrays lie, and gives back what it takes."""

from __future__ import annotations

import inspect

import numpy as np
import pytest
from conftest import Hooks
from vectors import CALLS, FRAMES, GOLDEN, Frame, digest_of, plain

import quofpalg as q

FUNCTIONS = list(CALLS)
WITH_OUT = [name for name in CALLS
            if name != "g_DDSite" and "out" in inspect.signature(getattr(q, name)).parameters]


@pytest.mark.parametrize("name", FUNCTIONS)
def test_results_are_those_of_the_library(name: str) -> None:
    assert f"{digest_of(name):016x}" == GOLDEN[name]


@pytest.mark.parametrize("name", FUNCTIONS)
def test_arrays_with_gaps_give_the_same(name: str) -> None:
    for frame in (FRAMES[0], FRAMES[5]):
        columns_first = Frame(frame.k, np.asfortranarray(frame.pixels))
        spread = Frame(frame.k, np.repeat(np.repeat(frame.pixels, 2, 0), 3, 1)[::2, ::-3][:, ::-1])
        assert digest_of(name, [columns_first]) == digest_of(name, [spread]) == digest_of(name, [frame])


@pytest.mark.parametrize("name", WITH_OUT)
def test_out_receives_the_result(name: str) -> None:
    frame = FRAMES[2]
    result = CALLS[name][0](frame)
    first = result[0] if isinstance(result, tuple) else result
    # What these do not write is the caller's; everything else is written whatever out held before.
    prepared = {"AreaGrayStretch": frame.pixels, "BlockGrayStretch": frame.pixels, "MyRectErode": first * 0,
                "MyCrossErode": first * 0}
    out = np.array(prepared.get(name, np.full_like(first, 77)))
    again = CALLS[name][0](frame, out=out)
    assert (again[0] if isinstance(again, tuple) else again) is out
    np.testing.assert_equal(tuple(again), tuple(result))

    read_only = out.copy()
    read_only.flags.writeable = False
    for wrong, error in ((out[..., ::-1], ValueError), (out[1:], ValueError), (out.astype(np.int16), TypeError),
                         (read_only, ValueError), (out.tolist(), TypeError)):
        with pytest.raises(error, match="^out: "):
            CALLS[name][0](frame, out=wrong)


@pytest.mark.parametrize("name", sorted(set(FUNCTIONS) - {
    "FP_GetVersion", "quo_sqrt", "quo_short", "DDIndex", "DDIndex8", "g_DDSite", "EncodeSpTemplates",
    "DecodeSpTemplates", "MatchSpTemplates", "LocalMatchSpTemplates", "FP_MatchSpTemplates", "MyRectErode",
    "MyCrossErode", "tev_AutoGainDacpInside", "tev_AutoGainDacp", "RegionGrowByEightNeighbor"}))
def test_images_of_another_kind_are_refused(name: str) -> None:
    wrong = Frame(0, FRAMES[0].pixels.astype(np.float32))
    with pytest.raises(TypeError, match=r"^\w+(\[1\])?: expected an array of uint8, got float32"):
        CALLS[name][0](wrong)


@pytest.mark.parametrize("name", FUNCTIONS)
def test_failing_allocations_raise_and_leave_nothing_behind(name: str, hooks: Hooks) -> None:
    def run(call: object, frame: Frame) -> object:
        try:
            return plain(call(frame))  # type: ignore[operator]
        except q.QuoError as error:
            return type(error), error.code

    # Without memory for them, damaged records and templates cannot be told from sound ones.
    other_errors = {"EncodeSpTemplates": q.BadRecordError, "FP_MatchSpTemplates": q.TemplateMisfitError,
                    "ValidAreaGrayStretch": q.NotDoneError, "LocalGrayBalance": q.NotDoneError}
    for frame in (FRAMES[3], FRAMES[4]):
        for call in CALLS[name]:
            before = hooks.allocations
            normal = run(call, frame)
            allocations = hooks.allocations - before
            failures = []
            for count in range(allocations):
                hooks.fail_after(count)
                failures.append(run(call, frame))
                assert hooks.held == 0
            hooks.fail_after(None)
            np.testing.assert_equal(run(call, frame), normal)
            if failures and name != "CheckBadPixelsNum":  # its marks are all that it allocates, and it counts without
                assert isinstance(failures[0], tuple) and failures[0][0] is other_errors.get(name, q.NoMemoryError)
