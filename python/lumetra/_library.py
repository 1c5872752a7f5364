"""The shared library liblumetra-render, as its C header describes it."""

from __future__ import annotations

import ctypes
import os
from functools import lru_cache
from typing import Any, Callable, Optional, Type, Union

_WINDOWS = os.name == "nt"
_NAME = "liblumetra-render.dll" if _WINDOWS else "liblumetra-render.so.0"
_VARIABLE = "LUMETRA_RENDER_LIBRARY"
_HINT = "install the wheel for Windows" if _WINDOWS else "install the package liblumetra-render0"
_REASON_BYTES = 1024

RGB, GRAY = 1, 3
BLENDS = {"add": 0, "screen": 1, "darkest": 2}
PROJECTIONS = {"max": 0, "mean": 1, "sum": 2}
CLIP, FIXED, KEEP_VALUES = 0, 1, 2

_OK, _NO_MEMORY = 0, 2


class _Sized(ctypes.Structure):
    """A structure that begins with its size."""

    struct_size: int

    def __init__(self, *members: Any, **named: Any) -> None:
        super().__init__(ctypes.sizeof(self), *members, **named)


_ROWS = [
    ("struct_size", ctypes.c_size_t),
    ("pixels", ctypes.c_void_p),
    ("row_step", ctypes.c_ssize_t),
    ("width", ctypes.c_int32),
    ("height", ctypes.c_int32),
    ("bit_depth", ctypes.c_int32),
]


class Plane(_Sized):
    _fields_ = _ROWS


class Image(_Sized):
    _fields_ = [*_ROWS, ("format", ctypes.c_int32)]


class Channel(_Sized):
    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("red", ctypes.c_int32),
        ("green", ctypes.c_int32),
        ("blue", ctypes.c_int32),
        ("offset_x", ctypes.c_int32),
        ("offset_y", ctypes.c_int32),
        ("has_limits", ctypes.c_int32),
        ("low", ctypes.c_int32),
        ("high", ctypes.c_int32),
        ("hidden", ctypes.c_int32),
        ("gamma", ctypes.c_double),
        ("blend", ctypes.c_int32),
    ]


class LevelPolicy(_Sized):
    method: int
    low: int
    high: int
    percent: float
    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("method", ctypes.c_int32),
        ("low", ctypes.c_int32),
        ("high", ctypes.c_int32),
        ("percent", ctypes.c_double),
    ]


class Dye(_Sized):
    name: bytes
    excitation: int
    emission: int
    red: int
    green: int
    blue: int
    source: bytes
    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("name", ctypes.c_char_p),
        ("excitation", ctypes.c_int32),
        ("emission", ctypes.c_int32),
        ("red", ctypes.c_int32),
        ("green", ctypes.c_int32),
        ("blue", ctypes.c_int32),
        ("source", ctypes.c_char_p),
    ]


_Pointer = Union[Type["ctypes._Pointer[Any]"], Type[Any]]


def _to(structure: Type[Any]) -> _Pointer:
    return ctypes.POINTER(structure)


_REASON = (ctypes.c_char_p, ctypes.c_size_t)
_ARGUMENTS = {
    "lumetra_render": (_to(Plane), _to(Channel), ctypes.c_size_t, _to(Image), *_REASON),
    "lumetra_apply_colormap": (
        _to(Plane),
        _to(Channel),
        ctypes.c_char_p,
        _to(Image),
        *_REASON,
    ),
    "lumetra_composite": (_to(Image), _to(Channel), ctypes.c_size_t, _to(Image), *_REASON),
    "lumetra_project": (_to(Plane), ctypes.c_size_t, ctypes.c_int32, _to(Image), *_REASON),
    "lumetra_count_values": (_to(Plane), ctypes.c_void_p, *_REASON),
    "lumetra_contrast_limits": (
        ctypes.c_void_p,
        ctypes.c_int32,
        ctypes.c_double,
        _to(ctypes.c_int32),
        _to(ctypes.c_int32),
        *_REASON,
    ),
    "lumetra_measure_limits": (
        _to(Plane),
        ctypes.c_double,
        _to(ctypes.c_int32),
        _to(ctypes.c_int32),
        *_REASON,
    ),
    "lumetra_parse_level_policy": (ctypes.c_char_p, _to(LevelPolicy), *_REASON),
    "lumetra_dye_at": (ctypes.c_size_t, _to(Dye)),
    "lumetra_find_dye": (ctypes.c_char_p, _to(Dye), *_REASON),
    "lumetra_nearest_dye": (ctypes.c_double, _to(Dye), *_REASON),
    "lumetra_find_colormap": (ctypes.c_char_p, ctypes.c_void_p, *_REASON),
    "lumetra_colormap_name": (ctypes.c_size_t,),
}


def _load() -> ctypes.CDLL:
    """The library that a developer names, else the package's own, else the system's."""
    beside = os.path.join(os.path.dirname(os.path.abspath(__file__)), _NAME)
    named = os.environ.get(_VARIABLE)
    path = named or (beside if os.path.exists(beside) else _NAME)
    try:
        loaded = ctypes.CDLL(path)
    except OSError as error:
        raise ImportError(
            f"lumetra needs {_NAME}, which cannot be loaded ({error}): {_HINT}, or name the file "
            f"in {_VARIABLE}"
        ) from error
    try:
        for name, arguments in _ARGUMENTS.items():
            getattr(loaded, name).argtypes = arguments
    except AttributeError as error:
        raise ImportError(
            f"{path} is of another version than the package lumetra ({error})"
        ) from error
    loaded.lumetra_colormap_name.restype = ctypes.c_char_p
    return loaded


library = _load()


@lru_cache(maxsize=64)
def _planes_of_size_only(count: int) -> Any:
    return (Plane * count)(*(Plane() for _ in range(count)))


def planes(count: int) -> Any:
    """An array of planes that are yet to be set."""
    return type(_planes_of_size_only(count)).from_buffer_copy(_planes_of_size_only(count))


def call(function: Callable[..., int], *arguments: Any) -> None:
    """Calls what answers with a result and a reason, and raises what that means."""
    reason = ctypes.create_string_buffer(_REASON_BYTES)
    result = function(*arguments, reason, _REASON_BYTES)
    if result == _OK:
        return
    text = reason.value.decode("utf-8", "replace")
    raise MemoryError(text) if result == _NO_MEMORY else ValueError(text)


def encoded(text: str) -> bytes:
    """A text as the library takes it. What it cannot have is escaped, and so is found nowhere."""
    return text.replace("\0", "\\0").encode("utf-8", "backslashreplace")


def policy(text: str) -> LevelPolicy:
    """How contrast limits are to be found, in the words of ``lumetra merge --levels``."""
    result = LevelPolicy()
    call(library.lumetra_parse_level_policy, encoded(text), result)
    return result


def find_dye(name: str) -> Dye:
    result = Dye()
    call(library.lumetra_find_dye, encoded(name), result)
    return result


def nearest_dye(emission: float) -> Dye:
    result = Dye()
    call(library.lumetra_nearest_dye, emission, result)
    return result


def dye_at(index: int) -> Optional[Dye]:
    result = Dye()
    return result if library.lumetra_dye_at(index, result) == _OK else None
