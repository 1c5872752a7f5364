"""Dyes and the colours that stand for them."""

from __future__ import annotations

import operator
import re
from dataclasses import dataclass
from functools import lru_cache
from types import MappingProxyType
from typing import Any, Dict, Mapping, Optional, Sequence, Tuple, Union

import numpy as np

from . import _library

Colour = Tuple[int, int, int]

_HEX = re.compile("#([0-9a-fA-F]{6})$")


@dataclass(frozen=True)
class Dye:
    """A dye (fluorophore), or a colour by its name.

    Attributes
    ----------
    name : str
        As :func:`dyes` has it.
    excitation, emission : int or None
        Peak wavelengths in nanometres; None for the name of a colour.
    colour : tuple of int
        Red, green and blue, from 0 to 255.
    source : str
        Where it comes from: "catalogue", "FPbase", "manufacturer" or "paper", which published
        the peaks, or "colour name".
    """

    name: str
    excitation: Optional[int]
    emission: Optional[int]
    colour: Colour
    source: str


ColourLike = Union[str, Dye, Sequence[int]]


def _record(dye: _library.Dye) -> Dye:
    return Dye(
        dye.name.decode(),
        dye.excitation or None,
        dye.emission or None,
        (dye.red, dye.green, dye.blue),
        dye.source.decode(),
    )


@lru_cache(maxsize=None)
def dyes() -> Mapping[str, Dye]:
    """All dyes by their names, those of colours included.

    Returns
    -------
    mapping of str to Dye
        In the order of the names, read-only. Its keys are exact; :func:`dye` understands the
        other ways to write a name.

    Examples
    --------
    >>> import lumetra
    >>> lumetra.dyes()["DAPI"].emission
    461
    >>> [name for name, dye in lumetra.dyes().items() if dye.emission == 507]
    ['Dendra2', 'EGFP', 'mEGFP']
    """
    all_dyes: Dict[str, Dye] = {}
    while (known := _library.dye_at(len(all_dyes))) is not None:
        record = _record(known)
        all_dyes[record.name] = record
    return MappingProxyType(all_dyes)


@lru_cache(maxsize=1024)
def _find(name: str) -> Dye:
    return _record(_library.find_dye(name))


def dye(name: str) -> Dye:
    """The dye that a name means, however it is written.

    Parameters
    ----------
    name : str
        In any case, with any spaces and punctuation, or another spelling of its family.

    Returns
    -------
    Dye

    Raises
    ------
    ValueError
        If there is no such dye; the message tells the nearest names.

    Examples
    --------
    >>> import lumetra
    >>> lumetra.dye("AF488")
    Dye(name='Alexa 488', excitation=495, emission=519, colour=(32, 255, 0), source='catalogue')
    >>> lumetra.dye("DAPY")
    Traceback (most recent call last):
    ...
    ValueError: there is no dye "DAPY"; the nearest names are "DAPI", or give a colour, #rrggbb ...
    """
    return _find(_text(name, "the name of a dye"))


def nearest(*, emission: float) -> Dye:
    """The dye that emits nearest to a wavelength and has the colour of its emission.

    Parameters
    ----------
    emission : float
        In nanometres.

    Returns
    -------
    Dye
        Of several, the first one by name.

    Examples
    --------
    >>> import lumetra
    >>> lumetra.nearest(emission=461).colour == lumetra.colour("DAPI")
    True
    """
    return _record(_library.nearest_dye(emission))


def _text(given: Any, what: str) -> str:
    if not isinstance(given, str):
        raise TypeError(f"{what} is a str, not {type(given).__name__}")
    return given


def _hex(text: str) -> Optional[Colour]:
    found = _HEX.search(text)
    return None if found is None else tuple(bytes.fromhex(found.group(1)))  # type: ignore[return-value]


@lru_cache(maxsize=1024)
def _named(text: str) -> Colour:
    try:
        return _find(text).colour
    except ValueError:
        written = _hex(text)
        if written is None:
            raise
        return written


def colour(colour: ColourLike) -> Colour:  # noqa: the parameter is named after what it is
    """A colour as three integers.

    Parameters
    ----------
    colour : str, Dye or sequence of int
        A dye in any way that :func:`dye` understands, the name of a colour, "#rrggbb",
        "NAME#rrggbb", or red, green and blue from 0 to 255.

    Returns
    -------
    tuple of int
        Red, green and blue, from 0 to 255.

    Examples
    --------
    >>> import lumetra
    >>> lumetra.colour("magenta"), lumetra.colour("#ff8000"), lumetra.colour((255, 128, 0))
    ((255, 0, 255), (255, 128, 0), (255, 128, 0))
    """
    if isinstance(colour, str):
        return _named(colour)
    if isinstance(colour, Dye):
        return colour.colour
    try:
        red, green, blue = (operator.index(component) for component in colour)
    except (TypeError, ValueError):
        raise TypeError(
            f"{colour!r} is no colour: give a dye, the name of a colour, '#rrggbb' or three "
            "integers (red, green, blue) from 0 to 255"
        ) from None
    if not all(0 <= component <= 255 for component in (red, green, blue)):
        raise ValueError(f"{colour!r}: the components of a colour are from 0 to 255")
    return red, green, blue


def colormap(dye: ColourLike) -> Dict[str, Any]:
    """A dye's colour as napari takes a colormap: from black to the colour.

    Parameters
    ----------
    dye : str, Dye or sequence of int
        As for :func:`colour`.

    Returns
    -------
    dict
        "name", "colors" (two rows of red, green, blue and alpha from 0 to 1) and
        "interpolation": the arguments of ``napari.utils.Colormap``, which ``add_image`` takes
        as its ``colormap``.

    Examples
    --------
    >>> import lumetra
    >>> lumetra.colormap("GFP")["name"]
    'GFP'
    """
    components = colour(dye)
    if isinstance(dye, Dye):
        name = dye.name
    elif isinstance(dye, str):
        name = dye
    else:
        name = "#" + bytes(components).hex()
    ends = np.array([(0, 0, 0, 255), (*components, 255)]) / 255
    return {"name": name, "colors": ends, "interpolation": "linear"}
