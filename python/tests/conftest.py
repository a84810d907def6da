"""Fixtures. CTest sets QUOFP_LIBRARY, PYTHONPATH, QUO_TEST_DIR (the built test libraries) and preloads the hooks."""

from __future__ import annotations

import ctypes
import os
import pathlib
from typing import Iterator

import pytest


class Hooks:
    """The counters of the preloaded hooks."""

    def __init__(self) -> None:
        program = ctypes.CDLL(None)
        self._held = ctypes.c_int64.in_dll(program, "quo_test_held")
        self._allocations = ctypes.c_int64.in_dll(program, "quo_test_allocations")
        self._failing = ctypes.c_int64.in_dll(program, "quo_test_failing")

    @property
    def held(self) -> int:
        return self._held.value

    @property
    def allocations(self) -> int:
        return self._allocations.value

    def fail_after(self, count: int | None) -> None:
        """Lets count more allocations succeed and none after them; None lets all succeed."""
        self._failing.value = -1 if count is None else self.allocations + count


@pytest.fixture(autouse=True)
def hooks() -> Iterator[Hooks]:
    """After every test: all that the library handed out has been given back."""
    hooks = Hooks()
    yield hooks
    hooks.fail_after(None)
    assert hooks.held == 0


@pytest.fixture(scope="session")
def root() -> pathlib.Path:
    return pathlib.Path(__file__).parents[2]


@pytest.fixture(scope="session")
def built() -> pathlib.Path:
    return pathlib.Path(os.environ["QUO_TEST_DIR"])
