"""The worked example does run."""

from __future__ import annotations

import pathlib
import subprocess
import sys

import numpy as np
import pytest


def test_stages_are_drawn(root: pathlib.Path, tmp_path: pathlib.Path) -> None:
    pytest.importorskip("matplotlib")
    from PIL import Image

    picture = tmp_path / "stages.png"
    subprocess.run([sys.executable, str(root / "python/examples/stages.py"), str(root / "samples/bad-lines.png"),
                    str(picture)], check=True)
    drawn = np.array(Image.open(picture).convert("RGB"))
    assert min(drawn.shape[:2]) > 1000 and (drawn == (0xD9, 0x48, 0x0F)).all(2).sum() > 500  # defects in their colour
