"""Arrays as the library takes them: rows of pixels in the machine's byte order."""

from __future__ import annotations

import itertools
from typing import TYPE_CHECKING, Any, Iterable, Iterator, Optional, Sequence, Tuple

import numpy as np

from . import _library

if TYPE_CHECKING:  # takes as long to import as all of this package
    from numpy.typing import ArrayLike, NDArray

    Array = NDArray[Any]

Index = Tuple[int, ...]

_LARGEST = 2**31 - 1
_COMPONENTS = 3


def has_limits_of_its_own(dtype: np.dtype[Any]) -> bool:
    """Whether black and white are where the type begins and ends: 8 or 16 bits, unsigned."""
    return dtype.kind == "u" and dtype.itemsize <= 2


def require_counted(array: Array) -> None:
    """Refuses values of which there are too many to count each."""
    if not has_limits_of_its_own(array.dtype):
        raise TypeError(
            f"pixel values of type {array.dtype} need contrast limits: give (low, high), or "
            "convert them to uint8 or uint16"
        )


def _require_pixels(array: Array, shape: Tuple[int, ...]) -> None:
    if array.size == 0:
        raise ValueError(f"an image of shape {array.shape} has no pixels")
    if max(shape) > _LARGEST:
        raise ValueError(f"an image of shape {array.shape} is too large")


def gray(image: ArrayLike) -> Array:
    """An image, or images along leading axes, as an array of shape (..., Y, X)."""
    array = np.asarray(image)
    if array.dtype.kind not in "buif":
        raise TypeError(
            f"pixel values of type {array.dtype} cannot be shown: give integers or floats, such "
            "as uint8 or uint16"
        )
    if array.ndim < 2:
        raise ValueError(f"an image has the shape (Y, X) or (..., Y, X), not {array.shape}")
    _require_pixels(array, array.shape[-2:])
    return array


def coloured(image: ArrayLike) -> Array:
    """An RGB image, or images along leading axes, as an array of shape (..., Y, X, 3)."""
    array = np.asarray(image)
    if not has_limits_of_its_own(array.dtype):
        raise TypeError(f"an RGB image is of uint8 or uint16, not {array.dtype}")
    if array.ndim < 3 or array.shape[-1] != _COMPONENTS:
        raise ValueError(
            f"an RGB image has the shape (Y, X, 3) or (..., Y, X, 3), not {array.shape}"
        )
    _require_pixels(array, array.shape[-3:-1])
    return array


def split(images: Any, channel_axis: Optional[int], as_image: Any = gray) -> Sequence[Array]:
    """The channels of an image, all of one shape."""
    if channel_axis is not None:
        array = np.moveaxis(np.asarray(images), channel_axis, 0)
        channels = [as_image(channel) for channel in array]
    else:
        if isinstance(images, np.ndarray) and images.ndim < 3:
            raise ValueError(
                f"an array of shape {images.shape} has no channels: give a list of images, or "
                "an array with its channel_axis"
            )
        channels = [as_image(channel) for channel in images]
    if not channels:
        raise ValueError("there are no images to show")
    for channel in channels:
        if channel.shape != channels[0].shape:
            raise ValueError(
                f"the images have different shapes: {channels[0].shape} and {channel.shape}"
            )
    return channels


def indices(shape: Sequence[int]) -> Iterable[Index]:
    """Every index of leading axes; a single empty one where there are none."""
    return itertools.product(*map(range, shape)) if shape else ((),)


def _have_side_by_side(array: Array, pixel_bytes: int) -> bool:
    """Whether the pixels of a row lie side by side, and can be read as they are."""
    return array.dtype.isnative and (array.strides[1] == pixel_bytes or array.shape[1] == 1)


def rows_of_gray(plane: Array) -> Array:
    """The plane itself, or a copy where its pixels are apart or in another byte order."""
    if _have_side_by_side(plane, plane.itemsize):
        return plane
    return np.ascontiguousarray(plane, dtype=plane.dtype.newbyteorder("="))


def _is_rows_of_colours(image: Array) -> bool:
    size = image.itemsize
    return image.strides[2] == size and _have_side_by_side(image, _COMPONENTS * size)


def rows_of_colours(image: Array) -> Array:
    """As `rows_of_gray`, of an RGB image."""
    if _is_rows_of_colours(image):
        return image
    return np.ascontiguousarray(image, dtype=image.dtype.newbyteorder("="))


def set_plane(plane: _library.Plane, rows: Array) -> None:
    """Points to the pixels of an array, which the caller keeps alive."""
    plane.pixels = rows.ctypes.data
    plane.row_step = rows.strides[0]
    plane.height, plane.width = rows.shape[:2]
    plane.bit_depth = 8 * rows.itemsize


def image_on(rows: Array, pixel_format: int) -> _library.Image:
    """As `set_plane`, of an image."""
    height, width = rows.shape[:2]
    bits = 8 * rows.itemsize
    return _library.Image(
        rows.ctypes.data, rows.strides[0], width, height, bits, pixel_format
    )


class Output:
    """The array that receives images, and where they can be drawn on the way to it.

    They are drawn beside it where its pixels are apart, in another byte order, or may be those
    of an input.
    """

    def __init__(
        self,
        out: Optional[Array],
        shape: Tuple[int, ...],
        dtype: Any,
        inputs: Iterable[Array],
        is_coloured: bool = True,
    ) -> None:
        if out is None:
            self.result = self._drawn = np.empty(shape, dtype)
            return
        wanted = np.dtype(dtype)
        if not isinstance(out, np.ndarray):
            raise TypeError(f"out is an array, not {type(out).__name__}")
        if out.dtype != wanted and out.dtype != wanted.newbyteorder():
            raise TypeError(f"out is of type {out.dtype}, but the result is of {wanted}")
        if out.shape != shape:
            raise ValueError(f"out has the shape {out.shape}, but the result has {shape}")
        if not out.flags.writeable:
            raise ValueError("out is read-only")
        self.result = self._drawn = out
        first = out[(0,) * (out.ndim - (3 if is_coloured else 2))]
        is_drawable = (
            _is_rows_of_colours(first)
            if is_coloured
            else _have_side_by_side(first, first.itemsize)
        )
        if not is_drawable or any(np.may_share_memory(out, array) for array in inputs):
            self._drawn = np.empty(shape, wanted)

    def __getitem__(self, index: Index) -> Array:
        drawn: Array = self._drawn[index]
        return drawn

    def finished(self) -> Array:
        if self._drawn is not self.result:
            np.copyto(self.result, self._drawn)
        return self.result


def to_display16(plane: Array, low: float, high: float) -> Array:
    """Values of any type on a scale of 65,536 steps from low to high.

    What is below and what is no finite number becomes 0, what is above 65535. Halves keep the
    difference of the largest and the smallest float64 finite.
    """
    result = np.empty(plane.shape, np.uint16)
    extent = high / 2 - low / 2
    for rows in _strips(plane):
        values = plane[rows].astype(np.float64)
        with np.errstate(over="ignore", invalid="ignore"):
            steps = np.floor((values / 2 - low / 2) / extent * 65535 + 0.5)
        np.clip(steps, 0, 65535, out=steps)
        steps[~np.isfinite(values)] = 0
        result[rows] = steps
    return result


def _strips(plane: Array) -> Iterator[slice]:
    """Rows that stay in the processor's cache."""
    count = max(1, 65536 // plane.shape[1])
    for first in range(0, plane.shape[0], count):
        yield slice(first, first + count)
