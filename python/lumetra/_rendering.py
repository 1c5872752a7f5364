"""From planes and display settings to RGB images."""

from __future__ import annotations

import operator
from functools import lru_cache
from types import MappingProxyType
from typing import (
    TYPE_CHECKING,
    Any,
    Callable,
    Dict,
    List,
    Mapping,
    Optional,
    Sequence,
    Tuple,
    Union,
)

import numpy as np

from . import _arrays, _contrast, _dyes, _library

if TYPE_CHECKING:
    from numpy.typing import ArrayLike, NDArray

    from ._arrays import Array
    from ._contrast import Limits
    from ._dyes import ColourLike

Offset = Tuple[int, int]

_LARGEST_OFFSET = 2**31 - 1
_WHITE = (255, 255, 255)


def _each(value: Any, channels: int, is_one: Callable[[Any], bool], name: str) -> Sequence[Any]:
    """A value for each channel, of one for all or one for each."""
    if is_one(value):
        return [value] * channels
    values = list(value)
    if len(values) != channels:
        raise ValueError(
            f"{name}: {len(values)} given for {channels} channels; give one for all, or one for "
            "each in their order"
        )
    return values


def _is_text(value: Any) -> bool:
    return isinstance(value, str)


def _is_number(value: Any) -> bool:
    return isinstance(value, _contrast.NUMBER)


def _require_gamma(gamma: float, limits: Optional[Tuple[int, int]]) -> None:
    if not 0.01 <= gamma <= 100:
        raise ValueError(f"a gamma is from 0.01 to 100, not {gamma}")
    if gamma != 1 and limits is None:
        raise ValueError("a gamma needs contrast limits, and there are none")


def _choice(name: Any, choices: Mapping[str, int], what: str) -> int:
    if name not in choices:
        raise ValueError(f"{name!r}: a {what} is {', '.join(map(repr, choices))}")
    return choices[name]


def _offsets(offsets: Optional[Sequence[Offset]], channels: int) -> Sequence[Offset]:
    if offsets is None:
        return [(0, 0)] * channels
    result = []
    for offset in offsets:
        try:
            x, y = (operator.index(part) for part in offset)
        except (TypeError, ValueError):
            raise TypeError(f"{offset!r} is no offset: give two whole numbers (x, y)") from None
        if max(abs(x), abs(y)) > _LARGEST_OFFSET:
            raise ValueError(f"the offset ({x}, {y}) is too large")
        result.append((x, y))
    if len(result) != channels:
        raise ValueError(f"{channels} channels need as many offsets, not {len(result)}")
    return result


def _shared(rows: int, columns: int, offsets: Sequence[Offset]) -> Tuple[int, int]:
    """Rows and columns that images have in common once they are moved."""
    if offsets.count(offsets[0]) < len(offsets):
        columns -= max(x for x, _ in offsets) - min(x for x, _ in offsets)
        rows -= max(y for _, y in offsets) - min(y for _, y in offsets)
    if rows < 1 or columns < 1:
        raise ValueError("the offsets are so far apart that the shifted images do not overlap")
    return rows, columns


def merge(
    images: Any,
    dyes: Sequence[ColourLike],
    *,
    channel_axis: Optional[int] = None,
    contrast_limits: Union[Limits, Sequence[Limits]] = None,
    gamma: Union[float, Sequence[float]] = 1,
    offsets: Optional[Sequence[Offset]] = None,
    blend: Union[str, Sequence[str]] = "add",
    out: Optional[Array] = None,
) -> Array:
    """Merge channels into RGB images, each channel in the colour of its dye.

    The bytes are those of the command ``lumetra merge`` for the same settings.

    Parameters
    ----------
    images : sequence of arrays, or array
        The channels, each of shape (Y, X), or (..., Y, X) for images along leading axes such as
        T and Z; or, with `channel_axis`, one array of all. Of any integer or floating-point
        type, any strides and byte order; only read.
    dyes : sequence
        For each channel a dye or a colour, as for :func:`colour`.
    channel_axis : int, optional
        The axis of the channels, where `images` is one array. Without it, the first axis of an
        array is taken.
    contrast_limits : optional
        The pixel values to show as black and as full brightness: one for all channels, or a
        sequence of one for each. Leading axes share them.

        * (low, high): these, for uint8 and uint16 rounded to whole numbers from 0 to 65535;
        * None: saturate 0.1 % of the pixels at each end, "clip:0.1";
        * "clip:PERCENT": saturate this share;
        * "auto": the smallest and the largest value;
        * "LOW:HIGH": as (low, high);
        * "none": values and bit depth stay as they are; the result is of uint16 if any such
          channel is.

        Types other than uint8 and uint16 need (low, high); what is no finite number is black.
    gamma : float or sequence of float
        For all channels, or one for each, from 0.01 to 100: below 1 brightens mid-tones.
    offsets : sequence of (x, y), optional
        For each channel, how many pixels it is moved to the left and up. The result is what all
        channels have in common then.
    blend : str or sequence of str
        How a channel is laid over those before it: "add", "screen" or "darkest".
    out : array, optional
        Receives the result.

    Returns
    -------
    array
        Of shape (..., Y, X, 3), red first, uint8 unless limits are "none".

    Raises
    ------
    TypeError
        For a type that cannot be shown, or that needs limits.
    ValueError
        For shapes that do not fit, and for values that make no sense.

    Examples
    --------
    >>> import lumetra, numpy
    >>> nuclei = numpy.array([[0, 100], [200, 4000]], numpy.uint16)
    >>> actin = nuclei.T
    >>> lumetra.merge([nuclei, actin], ["DAPI", "magenta"], contrast_limits=(0, 200))[0].tolist()
    [[0, 0, 0], [255, 53, 255]]
    """
    channels = _arrays.split(images, channel_axis)
    count = len(channels)
    if isinstance(dyes, (str, _dyes.Dye)):
        raise TypeError("dyes is a list of one dye for each channel")
    colours = [_dyes.colour(dye) for dye in dyes]
    if len(colours) != count:
        raise ValueError(f"{count} channels need as many dyes, not {len(colours)}")
    shifts = _offsets(offsets, count)
    blends = _each(blend, count, _is_text, "blend")
    gammas = _each(gamma, count, _is_number, "gamma")
    limits = _each(contrast_limits, count, _contrast.is_one, "contrast_limits")
    leading, (rows, columns) = channels[0].shape[:-2], channels[0].shape[-2:]
    shape = (*leading, *_shared(rows, columns, shifts), 3)

    stretches = [_contrast.stretch(*both) for both in zip(channels, limits)]
    settings = _settings(
        tuple(stretch.limits for stretch in stretches),
        tuple(gammas),
        tuple(colours),
        tuple(shifts),
        tuple(blends),
    )
    kept_bytes = [
        channel.itemsize
        for stretch, channel in zip(stretches, channels)
        if stretch.limits is None
    ]
    result = _arrays.Output(out, shape, np.uint16 if 2 in kept_bytes else np.uint8, channels)
    planes = _library.planes(count)
    for index in _arrays.indices(leading):
        kept = [stretch.rows(channel[index]) for stretch, channel in zip(stretches, channels)]
        for plane, pixels in zip(planes, kept):
            _arrays.set_plane(plane, pixels)
        image = _arrays.image_on(result[index], _library.RGB)
        _library.call(_library.library.lumetra_render, planes, settings, count, image)
    return result.finished()


@lru_cache(maxsize=64)
def _settings(
    limits: Tuple[Optional[Tuple[int, int]], ...],
    gammas: Tuple[float, ...],
    colours: Tuple[_dyes.Colour, ...],
    offsets: Tuple[Offset, ...],
    blends: Tuple[str, ...],
) -> Any:
    """The display settings of channels, which are the same from one image to the next."""
    settings = []
    for i in range(len(limits)):
        _require_gamma(gammas[i], limits[i])
        low, high = limits[i] or (0, 0)
        settings.append(
            _library.Channel(
                *colours[i],
                *offsets[i],
                has_limits=limits[i] is not None,
                low=low,
                high=high,
                gamma=gammas[i],
                blend=_choice(blends[i], _library.BLENDS, "blend"),
            )
        )
    return (_library.Channel * len(settings))(*settings)


def tint(
    image: ArrayLike,
    dye: ColourLike,
    *,
    contrast_limits: Limits = None,
    gamma: float = 1,
    out: Optional[Array] = None,
) -> Array:
    """Tint gray images with the colour of a dye.

    The bytes are those of the command ``lumetra dye`` for the same settings.

    Parameters
    ----------
    image : array
        Of shape (..., Y, X), as for :func:`merge`.
    dye : str, Dye or sequence of int
        A dye or a colour, as for :func:`colour`.
    contrast_limits, gamma, out
        As for :func:`merge`.

    Returns
    -------
    array
        Of shape (..., Y, X, 3), red first, uint8 unless limits are "none".

    Examples
    --------
    >>> import lumetra, numpy
    >>> lumetra.tint(numpy.array([[0, 128, 255]], numpy.uint8), "yellow", contrast_limits="none")
    array([[[  0,   0,   0],
            [128, 128,   0],
            [255, 255,   0]]], dtype=uint8)
    """
    return merge([image], [dye], contrast_limits=contrast_limits, gamma=gamma, out=out)


@lru_cache(maxsize=None)
def luts() -> Mapping[str, NDArray[np.uint8]]:
    """The LUTs (colormaps) that have a name.

    Returns
    -------
    mapping of str to array
        256 rows of red, green and blue, uint8; read-only.

    Examples
    --------
    >>> import lumetra
    >>> lumetra.luts()["gray"][100]
    array([100, 100, 100], dtype=uint8)
    """
    tables: Dict[str, NDArray[np.uint8]] = {}
    while (name := _library.library.lumetra_colormap_name(len(tables))) is not None:
        tables[name.decode()] = table = np.empty((256, 3), np.uint8)
        _library.call(
            _library.library.lumetra_find_colormap, name, table.ctypes.data
        )
        table.flags.writeable = False
    return MappingProxyType(tables)


def _lut_bytes(lut: Any, is_reversed: bool) -> bytes:
    if isinstance(lut, str):
        if lut not in luts():
            raise ValueError(f"there is no LUT {lut!r}; the names are {', '.join(luts())}")
        table = luts()[lut]
    else:
        table = np.asarray(lut)
        if table.shape != (256, 3):
            raise ValueError(f"a LUT has the shape (256, 3), not {table.shape}")
        if table.dtype != np.uint8:
            raise TypeError(
                f"a LUT is of type uint8, from 0 to 255, not {table.dtype}; floats from 0 to 1 "
                "become one by (255 * lut).round().astype('uint8')"
            )
    return (table[::-1] if is_reversed else table).tobytes()


def apply_lut(
    image: ArrayLike,
    lut: Union[str, ArrayLike] = "viridis",
    *,
    contrast_limits: Limits = None,
    gamma: float = 1,
    reversed: bool = False,
    out: Optional[Array] = None,
) -> Array:
    """Apply a LUT (colormap) to gray images.

    The bytes are those of the command ``lumetra pseudo`` for the same settings.

    Parameters
    ----------
    image : array
        Of shape (..., Y, X), as for :func:`merge`.
    lut : str or array
        A name that :func:`luts` has, or an array of shape (256, 3), uint8.
    contrast_limits : optional
        As for :func:`merge`, of the first and the last colour; with "none", the smallest and
        the largest value of each plane by itself.
    gamma, out
        As for :func:`merge`.
    reversed : bool
        Whether to begin at the end of the LUT.

    Returns
    -------
    array
        Of shape (..., Y, X, 3), red first, uint8.

    Examples
    --------
    >>> import lumetra, numpy
    >>> calcium = numpy.array([[200, 4000]], numpy.uint16)
    >>> lumetra.apply_lut(calcium, "gray", contrast_limits=(0, 4000)).tolist()
    [[[12, 12, 12], [255, 255, 255]]]
    """
    array = _arrays.gray(image)
    table = _lut_bytes(lut, reversed)
    stretch = _contrast.stretch(array, contrast_limits)
    setting = _settings((stretch.limits,), (gamma,), (_WHITE,), ((0, 0),), ("add",))
    result = _arrays.Output(out, (*array.shape, 3), np.uint8, [array])
    plane = _library.Plane()
    for index in _arrays.indices(array.shape[:-2]):
        rows = stretch.rows(array[index])
        _arrays.set_plane(plane, rows)
        target = _arrays.image_on(result[index], _library.RGB)
        _library.call(_library.library.lumetra_apply_colormap, plane, setting, table, target)
    return result.finished()


def composite(
    images: Any,
    *,
    offsets: Optional[Sequence[Offset]] = None,
    blend: Union[str, Sequence[str]] = "add",
    out: Optional[Array] = None,
) -> Array:
    """Lay RGB images over each other, such as those of :func:`tint` and :func:`apply_lut`.

    Parameters
    ----------
    images : sequence of arrays
        Each of shape (..., Y, X, 3), all of one shape and type, uint8 or uint16; only read.
    offsets, blend, out
        As for :func:`merge`.

    Returns
    -------
    array
        Of shape (..., Y, X, 3), in the type of the images. Sums are clamped.

    Examples
    --------
    >>> import lumetra, numpy
    >>> red = numpy.array([[[200, 0, 0], [9, 0, 0]]], numpy.uint8)
    >>> lumetra.composite([red, red], offsets=[(0, 0), (-1, 0)]).tolist()
    [[[209, 0, 0]]]
    """
    channels = _arrays.split(images, None, _arrays.coloured)
    count, first = len(channels), channels[0]
    if any(channel.dtype != first.dtype for channel in channels):
        raise TypeError("the images are of different types: convert them to one")
    shifts = _offsets(offsets, count)
    blends = _each(blend, count, _is_text, "blend")
    leading, (rows, columns) = first.shape[:-3], first.shape[-3:-1]
    shape = (*leading, *_shared(rows, columns, shifts), 3)
    settings = _settings(
        (None,) * count, (1,) * count, (_WHITE,) * count, tuple(shifts), tuple(blends)
    )
    result = _arrays.Output(out, shape, first.dtype.newbyteorder("="), channels)
    for index in _arrays.indices(leading):
        kept = [_arrays.rows_of_colours(channel[index]) for channel in channels]
        sources = (_library.Image * count)(
            *(_arrays.image_on(rows, _library.RGB) for rows in kept)
        )
        target = _arrays.image_on(result[index], _library.RGB)
        _library.call(_library.library.lumetra_composite, sources, settings, count, target)
    return result.finished()


def project(
    images: ArrayLike,
    method: str = "max",
    *,
    axis: int = 0,
    out: Optional[Array] = None,
) -> Array:
    """Project planes along an axis, such as the z-slices of a stack.

    The values are those of ``lumetra merge --project``.

    Parameters
    ----------
    images : array
        Of shape (Z, Y, X), or with more leading axes; uint8 or uint16.
    method : str
        "max", "mean" (halves are rounded up) or "sum" (in 16 bits, clamped to 65535).
    axis : int
        The axis that goes; of the others, Y and X are last.
    out : array, optional
        Receives the result.

    Returns
    -------
    array
        Of the shape without `axis`, in the type of the images; uint16 for "sum".

    Examples
    --------
    >>> import lumetra, numpy
    >>> stack = numpy.array([[[1, 200]], [[2, 100]]], numpy.uint8)
    >>> for method in ("max", "mean", "sum"):
    ...     print(method, lumetra.project(stack, method).tolist())
    max [[2, 200]]
    mean [[2, 150]]
    sum [[3, 300]]
    """
    how = _choice(method, _library.PROJECTIONS, "projection")
    array = np.asarray(images)
    if not _arrays.has_limits_of_its_own(array.dtype):
        raise TypeError(f"images to project are of uint8 or uint16, not {array.dtype}")
    if array.ndim < 3:
        raise ValueError(f"a stack has the shape (Z, Y, X) or more axes, not {array.shape}")
    stack = _arrays.gray(np.moveaxis(array, axis, -3))
    count, leading = stack.shape[-3], stack.shape[:-3]
    dtype = np.uint16 if method == "sum" else stack.dtype.newbyteorder("=")
    result = _arrays.Output(out, (*leading, *stack.shape[-2:]), dtype, [stack], False)
    planes = _library.planes(count)
    for index in _arrays.indices(leading):
        kept: List[Array] = [_arrays.rows_of_gray(plane) for plane in stack[index]]
        for plane, pixels in zip(planes, kept):
            _arrays.set_plane(plane, pixels)
        target = _arrays.image_on(result[index], _library.GRAY)
        _library.call(_library.library.lumetra_project, planes, count, how, target)
    return result.finished()
