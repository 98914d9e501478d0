"""Measures the Python interface: whole arrays, fractions, and a call of Vector.

    cmake --preset python && cmake --build --preset python --target zktarn_python_benchmarks
    /usr/bin/python3 benchmarks/python/interface_bench.py [--size N] [--samples N]

Each line is the median of the ratios of two times that were measured one after the other, each after
a call that was not measured, with the quartiles of these ratios and the median times (of the
thread's processor): whole arrays against a loop in C++ over the same procedures and against a
formulation in NumPy, fractions against `Fraction.limit_denominator`, a call of a method of Vector
against a pybind11 method of the same signature that does nothing. A last column says whether the
median keeps the limit of its kind. The exit status is 0 in either case, because times depend on the
machine.
"""

import argparse
import importlib.util
import pathlib
import statistics
import sys
import time
from fractions import Fraction

ROOT = pathlib.Path(__file__).resolve().parents[2]

EPS = 1e-6
# The largest ratio that meets the target.
LIMITS = {"C++ loop": 1.2, "NumPy": 0.7, "limit_denominator": 0.02, "bare call": 1.1}


def seconds(call):
    start = time.thread_time()
    call()
    return time.thread_time() - start


def compare(kind, name, ours, theirs, samples, scale=1.0):
    """Prints the median ratio of alternating samples; the peer's times are multiplied by `scale`.

    Each sample follows a call of the same function that is not measured, so that both find the heap
    and the caches as they leave them themselves. Otherwise one would pay for pages that the other
    has given back to the system.
    """
    def sample(call):
        call()
        return seconds(call)

    pairs = [(sample(ours), scale * sample(theirs)) for _ in range(samples)]
    ratios = [a / b for a, b in pairs]
    low, median, high = statistics.quantiles(ratios, n=4)
    times = [statistics.median(column) for column in zip(*pairs)]
    verdict = "kept" if median <= LIMITS[kind] else f"above {LIMITS[kind]}"
    print(f"{kind:18s}{name:34s}{median:8.3f}  [{low:.3f}, {high:.3f}]"
          f"{times[0] * 1e6:12.1f}{times[1] * 1e6:12.1f} us  {verdict}", flush=True)


def whole_arrays(zktarn, peers, size, samples):
    import numpy as np
    rng = np.random.default_rng(1)
    x = np.round(rng.uniform(-1000.0, 1000.0, size), 1) + rng.choice([0.0, 1e-9, 0.3], size)
    n = rng.integers(-10**6, 10**6, size, dtype=np.int32)
    reals, flags = np.empty(size), np.empty(size, np.bool_)
    integers = np.empty(size, np.int32)
    more, found = np.empty(size), np.empty(size, np.bool_)

    def against_loop(name, ours, theirs):
        compare("C++ loop", name, ours, theirs, samples)

    for name in ("floor", "ceil", "fractionality", "nearest"):
        f, loop = getattr(zktarn, name), getattr(peers, name)
        against_loop(name, lambda: f(x, EPS, out=reals), lambda: loop(x, EPS, reals))
    for name in ("is_int", "is_even"):
        f, loop = getattr(zktarn, name), getattr(peers, name)
        against_loop(name, lambda: f(x, EPS, out=flags), lambda: loop(x, EPS, flags))
    against_loop("fractional", lambda: zktarn.fractional(x, out=reals),
                 lambda: peers.fractional(x, reals))
    against_loop("is_int_scalar", lambda: zktarn.is_int_scalar(x, 10.0, EPS, out=flags),
                 lambda: peers.is_int_scalar(x, 10.0, EPS, flags))
    against_loop("is_even_int", lambda: zktarn.is_even_int(n, out=flags),
                 lambda: peers.is_even_int(n, flags))
    against_loop("gcd of integers", lambda: zktarn.gcd(n, 360360, out=integers),
                 lambda: peers.gcd_int(n, 360360, integers))
    against_loop("gcd of reals", lambda: zktarn.gcd(x, 0.5, EPS, out=reals),
                 lambda: peers.gcd_real(x, 0.5, EPS, reals))
    fractions_of_x = zktarn.Rationals(reals, more, found)
    against_loop("rational", lambda: zktarn.rational(x, EPS, 1000.0, out=fractions_of_x),
                 lambda: peers.rational(x, EPS, 1000.0, reals, more, found))

    def against_numpy(name, ours, theirs):
        compare("NumPy", name, ours, theirs, samples)

    against_numpy("floor(x + eps)", lambda: zktarn.floor(x, EPS), lambda: np.floor(x + EPS))
    against_numpy("ceil(x - eps)", lambda: zktarn.ceil(x, EPS), lambda: np.ceil(x - EPS))
    against_numpy("x - floor(x + eps)", lambda: zktarn.fractionality(x, EPS),
                  lambda: x - np.floor(x + EPS))

    # Into an array that exists, without the time that new memory takes.
    def numpy_floor():
        np.floor(np.add(x, EPS, out=reals), out=reals)

    against_numpy("floor(x + eps), in place", lambda: zktarn.floor(x, EPS, out=reals), numpy_floor)
    against_numpy("abs(x - rint(x))", lambda: zktarn.fractional(x), lambda: np.abs(x - np.rint(x)))
    against_numpy("abs(x - rint(x)) <= eps", lambda: zktarn.is_int(x, EPS),
                  lambda: np.abs(x - np.rint(x)) <= EPS)

    def nearest():
        rounded = np.rint(x)
        return np.where(np.abs(x - rounded) <= EPS, rounded, np.nan)

    against_numpy("where(..., rint(x), nan)", lambda: zktarn.nearest(x, EPS), nearest)

    def is_int_scalar():
        product = x * 10.0
        return np.abs(product - np.rint(product)) <= EPS

    against_numpy("the same of x * scalar", lambda: zktarn.is_int_scalar(x, 10.0, EPS),
                  is_int_scalar)

    def is_even():
        half = x * 0.5
        return np.abs(half - np.rint(half)) <= 0.5 * EPS

    against_numpy("the same of x / 2", lambda: zktarn.is_even(x, EPS), is_even)
    against_numpy("(n & 1) == 0", lambda: zktarn.is_even_int(n), lambda: (n & 1) == 0)
    against_numpy("gcd(n, 360360)", lambda: zktarn.gcd(n, 360360), lambda: np.gcd(n, 360360))


def fractions(zktarn, size, samples):
    """The peer gets a part of the values, and its time is scaled, because all of them take long."""
    import numpy as np
    rng = np.random.default_rng(2)
    columns = {
        "decimals": np.round(rng.uniform(-100.0, 100.0, size), 2),
        "fractions": rng.integers(-10**5, 10**5, size) / rng.integers(1, 1000, size),
        "reals": rng.uniform(-100.0, 100.0, size),
    }
    share = max(size // 100, 1)
    for name, x in columns.items():
        values = x[:share].tolist()

        def exact():
            for value in values:
                Fraction(value).limit_denominator(1000)

        compare("limit_denominator", f"{name}, peer: 1 of {size // share} values",
                lambda: zktarn.rational(x, EPS, 1000.0), exact, samples, size / share)


CALLS = [
    ("get_coef", (2,)), ("set_coef", (2, 1.0)), ("get_ind", (1,)), ("set_ind", (1, 2)),
    ("is_elm", (2,)), ("set_elm", (2,)), ("rem_elm", (3,)), ("add_nz", (2, 1.0)),
    ("clean_index", ()), ("clear", ()), ("rem_zeros", ()), ("mod2", (EPS,)),
    ("__getitem__", (2,)), ("__setitem__", (2, 1.0)), ("__contains__", (2,)), ("__len__", ())]
PAIRS = [("combine", (1.0, 0.0, EPS)), ("sym_diff", ()), ("is_identical", (EPS,))]


def calls(zktarn, peers, samples):
    """Vectors of two entries, or of none where the call would change them."""
    many = range(20000)
    bare = peers.BareVector()

    def repeated(method, arguments):
        def call():
            for _ in many:
                method(*arguments)
        return call

    for name, arguments in CALLS + PAIRS:
        pair = (name, arguments) in PAIRS
        empty = name in ("clean_index", "clear", "mod2", "sym_diff")
        ours = zktarn.Vector(8) if empty else zktarn.Vector.from_dict(8, {2: 1.0, 5: 2.0})
        other = ours.copy()
        compare("bare call", name,
                repeated(getattr(ours, name), ((other,) if pair else ()) + arguments),
                repeated(getattr(bare, name), ((bare,) if pair else ()) + arguments), samples)


def load(path):
    spec = importlib.util.spec_from_file_location(path.name.split(".")[0], path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build" / "python",
                        help="the build tree (default: that of the preset `python`)")
    parser.add_argument("--size", type=int, default=10**6, help="elements of an array")
    parser.add_argument("--samples", type=int, default=15, help="samples of each comparison")
    options = parser.parse_args()
    if options.size < 1 or options.samples < 2:
        parser.error("--size must be at least 1, --samples at least 2")
    peer_files = list((options.build / "python_benchmarks").glob("interface_peers*"))
    if not peer_files:
        parser.error(f"no benchmarks in {options.build}; build the target zktarn_python_benchmarks")
    sys.path.insert(0, str(options.build / "python"))
    import zktarn
    peers = load(peer_files[0])
    print(f"{'against':18s}{'':34s}{'median':>8s}  quartiles         ours       peer")
    calls(zktarn, peers, options.samples)
    whole_arrays(zktarn, peers, options.size, options.samples)
    fractions(zktarn, options.size, options.samples)


if __name__ == "__main__":
    main()
