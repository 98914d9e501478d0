"""Checks of arguments. Each names the argument and raises TypeError or ValueError with one sentence."""

import math
import operator
from collections.abc import Iterable
from typing import Any

import numpy as np
from numpy.typing import NDArray


def integer(name: str, value: object, least: int, most: int) -> int:
    """`value` as an integer of the range."""
    try:
        number = operator.index(value)  # type: ignore[arg-type]
    except TypeError:
        raise TypeError(f"{name} is an integer, not {type(value).__name__}") from None
    if not least <= number <= most:
        raise ValueError(f"{name} is {number}, but has to be from {least} to {most}")
    return number


def real(name: str, value: object, least: float, most: float) -> float:
    """`value` as a real number of the range, ends included."""
    if isinstance(value, (str, bytes)):
        raise TypeError(f"{name} is a number, not {type(value).__name__}")
    try:
        number = float(value)  # type: ignore[arg-type]
    except (TypeError, ValueError):
        raise TypeError(f"{name} is a number, not {type(value).__name__}") from None
    if math.isnan(number) or not least <= number <= most:
        raise ValueError(f"{name} is {number:g}, but has to be from {least:g} to {most:g}")
    return number


def real_array(name: str, values: object) -> NDArray[np.float64]:
    """`values` as an array of reals of any shape. NaN is refused, infinities are not."""
    try:
        array = np.asarray(values)
        if array.dtype.kind not in "biuf":
            # None alone would become a NaN.
            if array.dtype.kind != "O" or any(each is None for each in array.flat):
                raise TypeError
            array = array.astype(np.float64)
    except (TypeError, ValueError):
        raise TypeError(f"{name} has to be an array of real numbers") from None
    reals = array.astype(np.float64)
    if np.isnan(reals).any():
        raise ValueError(f"{name} has a NaN")
    return reals


def broadcast(name: str, values: object, count: int) -> NDArray[np.float64]:
    """A new array of `count` reals: `values` itself, or one number for all."""
    array = real_array(name, values)
    if array.ndim > 1 or (array.ndim == 1 and array.size not in (1, count)):
        raise ValueError(
            f"{name} has the shape {array.shape}, but has to be one number or {count} numbers"
        )
    return np.broadcast_to(array, (count,)).copy()


def names(name: str, values: Iterable[Any] | None, count: int, letter: str) -> tuple[str, ...]:
    """`count` texts: `values`, or the letter with the numbers from 1."""
    if values is None:
        return tuple(f"{letter}{i}" for i in range(1, count + 1))
    texts = tuple(values)
    if not all(isinstance(text, str) for text in texts):
        raise TypeError(f"{name} has to hold texts")
    if len(texts) != count:
        raise ValueError(f"{name} has {len(texts)} texts, but has to have {count}")
    return texts
