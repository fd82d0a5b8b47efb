"""Floats of 4 bytes as the doubles that their shortest decimal digits say: 0.1 is 0.1, not 0.10000000149.

The shortest digits are the fewest that lead back to the float and no other. Decimals of up to six digits
are all different floats, and nine digits tell all floats apart. So a float is rounded to six digits, and to
one more as long as another float comes back. Powers of ten up to 22 are doubles without an error, which is
why rounding with them goes wrong in few places: these, and what is beyond these powers, are written out and
read.
"""

from __future__ import annotations

from typing import Tuple

import numpy as np

from ._arrays import Array

SHORT_FLOATS = (np.float16, np.float32)
_AT_ONCE = 16384  # values whose intermediate arrays stay in the processor's cache
_LOW, _HIGH = 1e-14, 1e27  # between these no rounding to 6 up to 9 digits needs a power beyond 22
_DIGITS = (6, 7, 8, 9)
_LAST_WHOLE = 2.0**24  # up to here the shortest digits of a whole number are its own
_TOP = np.float32(1e30)  # absent numbers are -1e30
_HALF_STEP = 1 << 28  # from a float half way to the next one, counted in steps of doubles
_NEXT_TO_A_HALF = 0.499999
_FRACTION = (1 << 52) - 1

_DECADES = range(-15, 29)
_TEN = np.array([float(f"1e{power}") for power in _DECADES])
# For each exponent of a double the power of ten below it, as a place in _TEN. It may be the next one.
_BELOW = np.clip(np.floor((np.arange(2048) - 1023) * np.log10(2)), -15, 27).astype(np.intp) + 15


def _scales(digits: int) -> Tuple[Array, Array]:
    """What numbers of each decade are multiplied with and divided by, to have so many whole digits."""
    powers = [digits - 1 - decade for decade in _DECADES]
    return (
        np.array([float(f"1e{min(22, max(0, power))}") for power in powers]),
        np.array([float(f"1e{min(22, max(0, -power))}") for power in powers]),
    )


_SCALES = {digits: _scales(digits) for digits in _DIGITS}


def by_digits(values: Array) -> Array:
    """The doubles. Zeros, infinities and NaN stay what they are, with their signs."""
    made = np.empty(len(values), np.float64)
    with np.errstate(invalid="ignore"):  # a NaN may be one that signals
        for start in range(0, len(values), _AT_ONCE):
            part = slice(start, start + _AT_ONCE)
            _widen(values[part], made[part])
    return made


def _widen(values: Array, made: Array) -> None:
    made[:] = values
    sizes = np.abs(made)
    made[sizes == _TOP] = 1e30
    within = (sizes >= _LOW) & (sizes < _HIGH)
    beyond = ~within & np.isfinite(sizes) & (sizes != 0) & (sizes != _TOP)
    _write_out(np.flatnonzero(beyond), sizes, made)
    places = np.flatnonzero(within & ((np.trunc(sizes) != sizes) | (sizes > _LAST_WHOLE)))
    _round(places, sizes, made)
    np.copysign(made, values, out=made)


def _round(places: Array, sizes: Array, made: Array) -> None:
    """Puts in what the numbers at these places are, all of which lie between the bounds."""
    numbers = sizes[places]
    decades = _BELOW[numbers.view(np.int64) >> 52]
    decades += numbers >= _TEN[decades + 1]
    for digits in _DIGITS:
        rounded, fits, doubtful = _rounded(numbers, decades, digits)
        made[places] = rounded  # where it does not fit, more digits come next
        _write_out(places[np.flatnonzero(doubtful)], sizes, made)
        left = np.flatnonzero(~(fits | doubtful))  # numbers choose faster than truth values
        if len(left) == 0:
            return
        places, numbers, decades = places[left], numbers[left], decades[left]
    raise AssertionError("nine digits tell all floats apart")


def _rounded(numbers: Array, decades: Array, digits: int) -> Tuple[Array, Array, Array]:
    """The numbers rounded to so many digits; where they lead back to the float; where that is not sure."""
    times, by = (scale[decades] for scale in _SCALES[digits])
    scaled = numbers * times / by
    whole = np.rint(scaled)
    rounded = whole * by / times
    bits = numbers.view(np.int64)
    off = np.abs(rounded.view(np.int64) - bits)
    fits = off < _HALF_STEP
    doubtful = (off == _HALF_STEP) | (fits & (np.abs(scaled - whole) > _NEXT_TO_A_HALF))
    # Below a power of two floats lie closer than above it, so the nearest decimal need not be the one.
    doubtful |= ((bits & _FRACTION) == 0) & (off != 0)
    return rounded, fits, doubtful


def _write_out(places: Array, sizes: Array, made: Array) -> None:
    """Puts in the numbers that the digits say which are written of these floats."""
    if len(places) == 0:
        return
    different, which = np.unique(sizes[places].astype(np.float32), return_inverse=True)
    read = np.array([float(np.format_float_scientific(value)) for value in different])
    made[places] = read[which]
