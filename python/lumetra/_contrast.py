"""Contrast limits: given ones, measured ones, and the histograms that they come from."""

from __future__ import annotations

import ctypes
import math
from functools import lru_cache
from typing import TYPE_CHECKING, Any, Iterable, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np

from . import _arrays, _library

if TYPE_CHECKING:
    from numpy.typing import ArrayLike, NDArray

    from ._arrays import Array

Limits = Union[None, str, Sequence[float]]

NUMBER = (int, float, np.integer, np.floating)  # bool is an int

DEFAULT = "clip:0.1"
_WHITE16 = 65535


class Histogram:
    """How often each pixel value occurs, in any number of images of one bit depth.

    Histograms of parts add exactly, so what follows from them does not depend on how a data set
    is cut. They can be pickled and sent to another process.

    Parameters
    ----------
    image : array, optional
        Of any shape, uint8 or uint16, to begin with.

    Examples
    --------
    >>> import lumetra, numpy
    >>> fields = [numpy.full((4, 4), value, numpy.uint16) for value in (7, 300, 9)]
    >>> total = sum(lumetra.Histogram(field) for field in fields)
    >>> total.total, total.contrast_limits(saturated=0)
    (48, (7, 300))
    """

    def __init__(self, image: Optional[ArrayLike] = None) -> None:
        self._counts: Optional[NDArray[np.uint64]] = None
        if image is not None:
            self.add(image)

    @property
    def counts(self) -> NDArray[np.uint64]:
        """One count for each value, 256 or 65,536; none before the first image. Read-only."""
        counts = np.zeros(0, np.uint64) if self._counts is None else self._counts.view()
        counts.flags.writeable = False
        return counts

    @property
    def bit_depth(self) -> Optional[int]:
        """8 or 16; None before the first image."""
        return None if self._counts is None else 8 if self._counts.size == 256 else 16

    @property
    def total(self) -> int:
        """How many pixels were counted."""
        return int(self.counts.sum())

    def add(self, image: ArrayLike) -> None:
        """Counts the pixel values of an image.

        Parameters
        ----------
        image : array
            Of any shape, uint8 or uint16, as the images before.
        """
        array = np.asarray(image)
        _arrays.require_counted(array)
        counts = self._counts_of(256**array.itemsize)
        plane = _library.Plane()
        for rows in _planes(array):
            _arrays.set_plane(plane, rows)
            _library.call(_library.library.lumetra_count_values, plane, counts.ctypes.data)

    def merge(self, other: Histogram) -> None:
        """Adds what another histogram has counted.

        Parameters
        ----------
        other : Histogram
            Of the same bit depth.
        """
        if other._counts is not None:
            counts = self._counts_of(other._counts.size)
            counts += other._counts

    def contrast_limits(self, saturated: float = 0.1) -> Tuple[int, int]:
        """The pixel values to show as black and as full brightness.

        Parameters
        ----------
        saturated : float
            Percent of the pixels to saturate at each end, from 0, the smallest and the largest
            value, to below 50.

        Returns
        -------
        tuple of int
            Low and high, of which low is the smaller one.
        """
        if self._counts is None or not self._counts.any():
            raise ValueError("there are no pixel values to measure")
        low, high = ctypes.c_int32(), ctypes.c_int32()
        _library.call(
            _library.library.lumetra_contrast_limits,
            self._counts.ctypes.data,
            self.bit_depth,
            saturated,
            low,
            high,
        )
        return low.value, high.value

    def _counts_of(self, values: int) -> NDArray[np.uint64]:
        if self._counts is None:
            self._counts = np.zeros(values, np.uint64)
        if self._counts.size != values:
            raise ValueError("images of 8 and of 16 bits share no histogram: measure them apart")
        return self._counts

    def __add__(self, other: Union[Histogram, int]) -> Histogram:
        result = Histogram()
        result.merge(self)
        if isinstance(other, Histogram):
            result.merge(other)
        elif other != 0:
            return NotImplemented
        return result

    __radd__ = __add__  # what sum() begins with is 0

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Histogram):
            return NotImplemented
        return np.array_equal(self.counts, other.counts)

    def __repr__(self) -> str:
        return f"<Histogram of {self.total} pixels of {self.bit_depth or 'no'} bits>"


def _planes(array: Array) -> Iterable[Array]:
    """All pixels, in as few planes as can be had without a copy."""
    if array.size == 0:
        return
    if array.ndim < 2:
        array = array.reshape(1, -1)
    elif array.flags.c_contiguous:
        array = array.reshape(-1, array.shape[-1])
    for index in _arrays.indices(array.shape[:-2]):
        yield _arrays.rows_of_gray(array[index])


def contrast_limits(images: Any, saturated: float = 0.1) -> Tuple[int, int]:
    """One pair of contrast limits for many images, so that they can be compared.

    Parameters
    ----------
    images : array or iterable of arrays
        Of any shape, uint8 or uint16, all of one type. Of an iterable, one image is held at a
        time.
    saturated : float
        Percent of the pixels to saturate at each end, from 0 to below 50; 0 takes the smallest
        and the largest value.

    Returns
    -------
    tuple of int
        Low and high, of which low is the smaller one. They are those of ``lumetra levels``.

    Examples
    --------
    >>> import lumetra, numpy
    >>> ramp = numpy.arange(1000, dtype=numpy.uint16).reshape(20, 50)
    >>> lumetra.contrast_limits([ramp, ramp + 50], saturated=1)
    (20, 1029)
    """
    histogram = Histogram()
    for image in (images,) if hasattr(images, "__array__") else images:
        histogram.add(image)
    return histogram.contrast_limits(saturated)


class Stretch(NamedTuple):
    """How the values of a channel are brought to the screen."""

    limits: Optional[Tuple[int, int]]  # of 8 and 16 bits; None keeps them as they are
    scale: Optional[Tuple[float, float]] = None  # what others are first brought to 16 bits from

    def rows(self, plane: Array) -> Array:
        """The plane as the library takes it."""
        if self.scale is None:
            return _arrays.rows_of_gray(plane)
        return _arrays.to_display16(plane, *self.scale)


def is_one(limits: Any) -> bool:
    """Whether these are limits for all channels, and not one for each."""
    if limits is None or isinstance(limits, str):
        return True
    return len(limits) == 2 and isinstance(limits[0], NUMBER) and isinstance(limits[1], NUMBER)


@lru_cache(maxsize=256)
def _policy(text: str) -> _library.LevelPolicy:
    return _library.policy(text)


def stretch(image: Array, limits: Limits) -> Stretch:
    """How an image is to be shown, measured where that has to be.

    Parameters
    ----------
    image : array
        All that is to be shown under the same limits.
    limits : None, str or pair of float
        As for `merge`.
    """
    if limits is None or isinstance(limits, str):
        policy = _policy(DEFAULT if limits is None else limits)
        if policy.method == _library.FIXED:
            limits = (policy.low, policy.high)
        else:
            _arrays.require_counted(image)
            if policy.method == _library.KEEP_VALUES:
                return Stretch(None)
            return Stretch(_measured(image, policy.percent))
    if not is_one(limits):
        raise TypeError(
            f"{limits!r} are no contrast limits: give (low, high), None, 'auto', 'clip:PERCENT', "
            "'LOW:HIGH' or 'none'"
        )
    return _given(float(limits[0]), float(limits[1]), image.dtype)


def _measured(image: Array, percent: float) -> Tuple[int, int]:
    """As from a histogram; for a single plane the library keeps the memory for its counts."""
    if image.ndim > 2:
        return Histogram(image).contrast_limits(percent)
    rows = _arrays.rows_of_gray(image)
    plane = _library.planes(1)
    _arrays.set_plane(plane[0], rows)
    low, high = ctypes.c_int32(), ctypes.c_int32()
    _library.call(_library.library.lumetra_measure_limits, plane, percent, low, high)
    return low.value, high.value


@lru_cache(maxsize=256)
def _given(low: float, high: float, dtype: np.dtype[Any]) -> Stretch:
    if not high / 2 - low / 2 > 0 or math.isinf(low) or math.isinf(high):
        raise ValueError(f"contrast limits are low < high, not {low:g}, {high:g}")
    if not _arrays.has_limits_of_its_own(dtype):
        return Stretch((0, _WHITE16), (low, high))
    black, white = math.floor(low + 0.5), math.floor(high + 0.5)
    if not 0 <= black < white <= _WHITE16:
        raise ValueError(
            f"contrast limits of {dtype} are 0 <= low < high <= 65535, not {low:g}, {high:g}"
        )
    return Stretch((black, white))
