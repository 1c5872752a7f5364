"""What makes no sense is refused with the reason, and with what would do."""

import lumetra
import numpy as np
import pytest
from conftest import noise
from numpy.lib.stride_tricks import as_strided

A8, A16, FLOATS = noise(1, "uint8"), noise(1, "uint16"), noise(1, "float32")
RGB = np.zeros((5, 6, 3), np.uint8)
LARGEST = 2**31 - 1
HUGE = as_strided(np.empty(LARGEST, np.uint8), (LARGEST, LARGEST), (0, 1))  # one row, never read


def merge(images=(A16, A16), dyes=("DAPI", "FITC"), **settings):
    return lumetra.merge(images, dyes, **settings)


CASES = [
    (lambda: merge((A16, A16[1:])), ValueError, "different shapes: (47, 61) and (46, 61)"),
    (lambda: merge(()), ValueError, "no images"),
    (lambda: merge(A16), ValueError, "an array of shape (47, 61) has no channels"),
    (lambda: merge((A16[0], A16[0])), ValueError, "(Y, X) or (..., Y, X), not (61,)"),
    (lambda: merge((A16[:0], A16[:0])), ValueError, "(0, 61) has no pixels"),
    (lambda: merge((A16.astype(complex),) * 2), TypeError, "complex128 cannot be shown"),
    (lambda: merge((A16.astype(object),) * 2), TypeError, "such as uint8 or uint16"),
    (lambda: merge(np.stack([A16] * 2), channel_axis=3), ValueError, "axis"),
    (lambda: merge(dyes="DAPI"), TypeError, "a list of one dye for each"),
    (lambda: merge(dyes=["DAPI"]), ValueError, "2 channels need as many dyes, not 1"),
    (lambda: merge(dyes=["DAPI", "DAPY"]), ValueError, 'nearest names are "DAPI"'),
    (lambda: merge(dyes=["DAPI", "DAPI\0"]), ValueError, "no dye"),
    (lambda: merge(dyes=["DAPI", "#12345"]), ValueError, "#rrggbb"),
    (lambda: merge(dyes=["DAPI", "\udcff"]), ValueError, "no dye"),
    (lambda: merge(dyes=["DAPI", (1, 2)]), TypeError, "three integers"),
    (lambda: merge(dyes=["DAPI", (1, 0.5, 0)]), TypeError, "three integers"),
    (lambda: merge(dyes=["DAPI", (1, 2, 256)]), ValueError, "from 0 to 255"),
    (lambda: merge(dyes=["DAPI", 7]), TypeError, "7 is no colour"),
    (lambda: merge(contrast_limits=(9, 9)), ValueError, "low < high, not 9, 9"),
    (lambda: merge(contrast_limits=(0, 65536)), ValueError, "0 <= low < high <= 65535"),
    (lambda: merge(contrast_limits=(-1, 5)), ValueError, "of uint16 are 0 <= low"),
    (lambda: merge(contrast_limits=(1, 1.2)), ValueError, "0 <= low < high"),
    (lambda: merge(contrast_limits=(0, np.inf)), ValueError, "low < high, not 0, inf"),
    (lambda: merge(contrast_limits=(np.nan, 1)), ValueError, "low < high, not nan, 1"),
    (lambda: merge(contrast_limits=[(0, 1)]), ValueError, "1 given for 2 channels; give one"),
    (lambda: merge(contrast_limits=[(0, 1, 2), None]), TypeError, "no contrast limits"),
    (lambda: merge(contrast_limits="fit"), ValueError, "auto, clip:PERCENT, LOW:HIGH or none"),
    (lambda: merge(contrast_limits="clip:50"), ValueError, "percentage"),
    (lambda: merge((FLOATS, FLOATS)), TypeError, "float32 need contrast limits: give (low"),
    (lambda: merge((FLOATS, FLOATS), contrast_limits="none"), TypeError, "need contrast limits"),
    (lambda: merge(gamma=0), ValueError, "from 0.01 to 100, not 0"),
    (lambda: merge(gamma=np.nan), ValueError, "from 0.01 to 100, not nan"),
    (lambda: merge(gamma=[1, 2, 3]), ValueError, "gamma: 3 given for 2 channels"),
    (lambda: merge(gamma=2, contrast_limits="none"), ValueError, "gamma needs contrast limits"),
    (lambda: merge(offsets=[(0, 0)]), ValueError, "2 channels need as many offsets, not 1"),
    (lambda: merge(offsets=[(0, 0), (1.5, 0)]), TypeError, "two whole numbers"),
    (lambda: merge(offsets=[(0, 0), (2**31, 0)]), ValueError, "too large"),
    (lambda: merge(offsets=[(0, 0), (61, 0)]), ValueError, "do not overlap"),
    (lambda: merge(offsets=[(-(2**31 - 1), 0), (2**31 - 1, 0)]), ValueError, "do not overlap"),
    (lambda: merge(blend="over"), ValueError, "'over': a blend is 'add', 'screen', 'darkest'"),
    (lambda: merge(out=[]), TypeError, "out is an array, not list"),
    (lambda: merge(out=RGB), ValueError, "(5, 6, 3), but the result has (47, 61, 3)"),
    (lambda: merge(out=np.zeros((47, 61, 3))), TypeError, "float64, but the result is of uint8"),
    (lambda: merge(out=np.broadcast_to(np.uint8(0), (47, 61, 3))), ValueError, "read-only"),
    (lambda: lumetra.apply_lut(A8, "vridis"), ValueError, "the names are gray, oklab,"),
    (lambda: lumetra.apply_lut(A8, RGB), ValueError, "(256, 3), not (5, 6, 3)"),
    (lambda: lumetra.apply_lut(A8, np.zeros((256, 3))), TypeError, "round().astype('uint8')"),
    (lambda: lumetra.apply_lut(FLOATS), TypeError, "need contrast limits"),
    (lambda: lumetra.composite([A8]), ValueError, "(..., Y, X, 3), not (47, 61)"),
    (lambda: lumetra.composite([RGB.astype(float)]), TypeError, "uint8 or uint16, not float64"),
    (lambda: lumetra.composite([RGB, RGB.astype("uint16")]), TypeError, "convert them to one"),
    (lambda: lumetra.project(A8), ValueError, "(Z, Y, X) or more axes, not (47, 61)"),
    (lambda: lumetra.project(FLOATS[None]), TypeError, "not float32"),
    (lambda: lumetra.project(A8[None], "median"), ValueError, "'max', 'mean', 'sum'"),
    (lambda: lumetra.project(A8[None], axis=3), ValueError, "axis"),
    (lambda: lumetra.contrast_limits([]), ValueError, "no pixel values to measure"),
    (lambda: lumetra.contrast_limits(A8[:0]), ValueError, "no pixel values to measure"),
    (lambda: lumetra.contrast_limits([A8, A16]), ValueError, "8 and of 16 bits"),
    (lambda: lumetra.contrast_limits(FLOATS), TypeError, "float32 need contrast limits"),
    (lambda: lumetra.contrast_limits(A8, 50), ValueError, "from 0 to below 50 percent"),
    (lambda: lumetra.dye(7), TypeError, "is a str, not int"),
    (lambda: lumetra.nearest(emission=0), ValueError, "nanometres"),
    (lambda: lumetra.nearest(emission=np.nan), ValueError, "nanometres"),
    (lambda: lumetra.Histogram(HUGE), MemoryError, "not enough memory"),
]


@pytest.mark.parametrize("case", range(len(CASES)))
def test_refused(case):
    call, kind, text = CASES[case]
    with pytest.raises(kind) as refused:
        call()
    assert text in str(refused.value)
    assert "\n" not in str(refused.value)
