#!/usr/bin/env python3
"""Draws what the library makes of a frame, stage by stage, and the numbers that it measures.

Usage: stages.py FRAME.png PICTURE.png
"""

from __future__ import annotations

import sys
from typing import Any

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np
from matplotlib.colors import ListedColormap
from PIL import Image

import quofpalg as q

INK, QUIET, ACCENT, WARNING = "#1b2733", "#6b7885", "#0b7285", "#d9480f"
# A hue for each direction, the same for 0 and 180 degrees, pale enough for strokes on top.
CYCLE = ListedColormap(0.5 + 0.5 * plt.get_cmap("hsv")(np.linspace(0, 1, 180))[:, :3])


def read_gray(path: str) -> Any:
    return np.array(Image.open(path).convert("L"))


def panel(axes: Any, title: str, note: str = "") -> Any:
    axes.set_title(title, loc="left", fontsize=11, fontweight="bold", color=INK, pad=6)
    axes.set_xticks([])
    axes.set_yticks([])
    axes.set_xlabel(note, loc="left", fontsize=9, color=QUIET, labelpad=6)
    for side in axes.spines.values():
        side.set_color("#c9d1d9")
    return axes


def show(axes: Any, image: Any, title: str, note: str = "") -> None:
    panel(axes, title, note).imshow(image, cmap="gray", vmin=0, vmax=255, interpolation="nearest")


def overlay(axes: Any, marks: Any, color: str, opacity: float = 1.0) -> None:
    """Marks in one colour over what is drawn already."""
    axes.imshow(np.ma.masked_equal(marks, 0), cmap=ListedColormap([color]), alpha=opacity, interpolation="nearest")


def show_coverage(axes: Any, frame: Any) -> None:
    background = q.FP_GetImageBgValue(frame)
    area = q.FP_GetFingerprintInfo(frame)
    rows, columns = frame.shape[0] // 8, frame.shape[1] // 8
    blocks = frame[: rows * 8, : columns * 8].reshape(rows, 8, columns, 8).mean((1, 3))
    show(axes, frame, "Coverage", f"{area.percentage} % finger, background {background}, finger mean {area.mean}")
    overlay(axes, np.kron(blocks < background, np.ones((8, 8))), ACCENT, 0.3)
    axes.plot(area.centre_x + 4, area.centre_y + 4, "+", color=WARNING, markersize=14, markeredgewidth=2)


def show_defects(axes: Any, frame: Any, finger: Any) -> None:
    """Defects, and the bubbles that lie on the finger: the bare sensor around it is bright too."""
    defects = q.FP_GetBadPixelsNum(frame)
    bubbles = q.CreateBubbleImage(frame).bubble_image * finger
    note = f"{defects.pixels} defect pixels, {np.count_nonzero(bubbles)} bubble pixels on the finger"
    show(axes, frame, "Defects and bubbles", note)
    overlay(axes, defects.mark_image, WARNING)
    overlay(axes, bubbles, "#7048e8")


def show_orientation(axes: Any, frame: Any, finger: Any) -> None:
    """The direction along the ridges in colour, and as a stroke every eight pixels."""
    degrees = q.Orientation(frame, 4)
    panel(axes, "Ridge orientation", "colour: direction along the ridges, 0 to 179 degrees")
    axes.imshow(np.ma.masked_where(~finger, degrees), cmap=CYCLE, vmin=0, vmax=180, interpolation="nearest")
    axes.set_facecolor("#f4f6f8")
    y, x = np.mgrid[4 : frame.shape[0] : 8, 4 : frame.shape[1] : 8]
    y, x = y[finger[y, x]], x[finger[4 : frame.shape[0] : 8, 4 : frame.shape[1] : 8]]
    angle = np.deg2rad(degrees[y, x])
    axes.quiver(x, y, np.cos(angle), np.sin(angle), color=INK, angles="xy", pivot="mid", scale=1 / 6.0,
                scale_units="xy", headaxislength=0, headlength=0, headwidth=0, width=0.006)


def show_blocks(axes: Any, frame: Any, figure: Any) -> None:
    blocks = q.BlockOrientation_MCU(frame)
    score = q.FP_ImageQuality(frame)
    panel(axes, "Contrast by block", f"quality {score.quality} of 100, mean gray {score.mean_gray}")
    contrast = np.ma.masked_where(blocks["direction"] < 0, blocks["deviation"])
    drawn = axes.imshow(contrast, cmap="viridis", vmin=0, extent=(0, frame.shape[1], frame.shape[0], 0),
                        interpolation="nearest")
    axes.set_facecolor("#f4f6f8")
    bar = figure.colorbar(drawn, ax=axes, fraction=0.046, pad=0.03)
    bar.outline.set_visible(False)
    bar.ax.tick_params(labelsize=8, colors=QUIET, length=0)


def show_histograms(axes: Any, frame: Any, cleaned: Any, finger: Any) -> None:
    axes.set_title("Gray levels of the finger", loc="left", fontsize=11, fontweight="bold", color=INK, pad=6)
    for image, color, label in ((frame, QUIET, "raw"), (cleaned, ACCENT, "cleaned")):
        counts = q.CalcHistogram(image[finger]).reshape(64, 4).sum(1)
        axes.fill_between(np.arange(2, 256, 4), counts, step="mid", color=color, alpha=0.55, linewidth=0, label=label)
    axes.set_box_aspect(1)
    axes.set_xlim(0, 255)
    axes.set_xticks([0, 64, 128, 192, 255])
    axes.set_yticks([])
    axes.tick_params(labelsize=8, colors=QUIET, length=0)
    axes.legend(frameon=False, fontsize=9, loc="upper center", labelcolor=INK)
    for side in ("top", "left", "right"):
        axes.spines[side].set_visible(False)
    axes.spines["bottom"].set_color("#c9d1d9")


def show_template(axes: Any, frame: Any) -> None:
    """The six profiles of a template as bars: three rows of the frame, then three columns."""
    template = q.FP_ExtractSpTemplates(frame)
    record = q.DecodeSpTemplates(template)
    snr = q.FP_ComputeSNR(frame)
    panel(axes, "Template", f"{template.size} bytes, six profiles; signal to noise {snr.snr}")
    position = 3
    longest = max(frame.shape) - 24
    for line in range(6):
        length = int(record[position]) * 256 + int(record[position + 1])
        profile = record[position + 2 : position + 2 + length]
        axes.imshow(profile[None, :], cmap="gray", vmin=0, vmax=255, aspect="auto",
                    extent=(0, length, line + 0.85, line + 0.15), interpolation="nearest")
        position += 2 + length
    axes.set_xlim(0, longest)
    axes.set_ylim(6, 0)
    axes.set_box_aspect(1)
    axes.set_facecolor("#f4f6f8")
    places = [12, frame.shape[0] // 2, frame.shape[0] - 12, 12, frame.shape[1] // 2, frame.shape[1] - 12]
    axes.set_yticks(np.arange(6) + 0.5, [f"{'row' if i < 3 else 'col'} {place}" for i, place in enumerate(places)])
    axes.tick_params(labelsize=8, colors=QUIET, length=0)


def main(source: str, target: str) -> None:
    frame = read_gray(source)
    borders = q.FillBorders(frame, q.BORDER_TOP + q.BORDER_BOTTOM + q.BORDER_LEFT + q.BORDER_RIGHT)
    even = q.RemoveVerticalStripes(borders)
    cleaned = q.FP_ImagePreproc_Step2(even)
    finger = q.FingerprintImageSegment(q.MedianFilter(frame), q.FP_GetImageBgValue(frame)).image != 255

    figure, axes = plt.subplots(3, 3, figsize=(10.8, 11.6), layout="constrained")
    figure.get_layout_engine().set(w_pad=0.12, h_pad=0.12)
    (raw, straight, clean), (coverage, defects, blocks), (orientation, histogram, template) = axes
    show(raw, frame, "Raw frame", f"{frame.shape[1]} x {frame.shape[0]} pixels")
    show(straight, even, "Borders and stripes", f"gain that follows: {q.GetEnhanceCoef(even):.1f}")
    show(clean, cleaned, "Gray balance", f"quality {q.ImageQuality(cleaned).quality} by the dense score")
    show_coverage(coverage, frame)
    show_defects(defects, frame, finger)
    show_blocks(blocks, frame, figure)
    show_orientation(orientation, cleaned, finger)
    show_histograms(histogram, frame, cleaned, finger)
    show_template(template, frame)
    figure.savefig(target, dpi=130, facecolor="white")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2])
