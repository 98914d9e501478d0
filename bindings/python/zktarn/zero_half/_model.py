"""Mixed-integer programs as arrays, from files or from the arguments of SciPy's solvers."""

from __future__ import annotations

import os
import stat
from collections.abc import Iterable, Sequence
from typing import Any, cast

import numpy as np
import scipy.sparse
from numpy.typing import ArrayLike, NDArray

from zktarn import _zero_half
from zktarn.zero_half import _numbers

FileName = str | bytes | os.PathLike[str] | os.PathLike[bytes]

# The C++ reader counts bounds of this magnitude as infinite.
_NO_BOUND = 1e30


class Model:
    """A mixed-integer program.

        minimise    c @ x + constant            (or maximise)
        subject to  row_lower <= A @ x <= row_upper
                    lower <= x <= upper
                    x[j] integer where integrality[j] is 1

    The arguments are those of `scipy.optimize.milp`:

    c            objective, one number for each column
    constraints  a `scipy.optimize.LinearConstraint`, a tuple (A, lower, upper), or a sequence of
                 these, whose rows follow each other. A is dense or sparse; lower and upper are one
                 number or one for each row, and may be left out (-inf, inf). None: no rows.
    bounds       a `scipy.optimize.Bounds` or a pair (lower, upper), each one number or one for each
                 column. None: 0 to infinity.
    integrality  0 (continuous) or 1 (integer), one number or one for each column. The codes 2 and 3
                 of `milp`, semi-continuous and semi-integer, are refused.

    The keywords beyond those:

    maximise      whether the objective is maximised; bounds of the relaxation are then upper bounds
    constant      added to the objective
    column_names  texts, for `Result.write_mps`; default: c1, c2, ...
    row_names     texts; default: r1, r2, ...
    name          of the model

    Raises TypeError and ValueError for arguments of a wrong type, shape or value. `tighten` also
    checks that no bounds cross, that some column is integer and that numbers are at most 1e15.

    The attributes are copies of the arguments and read-only:

    c, lower, upper           float arrays over the columns; an absent bound is infinite
    A                         `scipy.sparse.csr_array` with sorted columns and no duplicates
    row_lower, row_upper      float arrays over the rows; an absent side is infinite
    integrality               array of 0 and 1 over the columns
    constant, maximise, name, column_names, row_names
    file                      the name of the file; None for a model of arrays

    Columns and rows count from 0, as everywhere in NumPy.
    """

    def __init__(
        self,
        c: ArrayLike,
        constraints: Any = None,
        bounds: Any = None,
        integrality: ArrayLike | None = None,
        *,
        maximise: bool = False,
        constant: float = 0.0,
        column_names: Iterable[str] | None = None,
        row_names: Iterable[str] | None = None,
        name: str = "",
    ) -> None:
        objective = _numbers.real_array("c", c)
        if objective.ndim != 1 or objective.size == 0:
            raise ValueError("c has to be a one-dimensional array of at least one number")
        if not np.isfinite(objective).all():
            raise ValueError("c has an infinite coefficient")
        self.c: NDArray[np.float64] = objective
        count = objective.size
        self.A, self.row_lower, self.row_upper = _stacked(_row_groups(constraints), count)
        self.lower, self.upper = _bounds(bounds, count)
        self.integrality: NDArray[np.int8] = _integrality(integrality, count)
        self.maximise: bool = bool(maximise)
        self.constant: float = _numbers.real("constant", constant, -1e15, 1e15)
        self.column_names: tuple[str, ...] = _numbers.names(
            "column_names", column_names, count, "c"
        )
        self.row_names: tuple[str, ...] = _numbers.names(
            "row_names", row_names, self.row_lower.size, "r"
        )
        self.name: str = name
        self.file: str | None = None
        self._freeze()

    def _freeze(self) -> None:
        for array in (self.c, self.row_lower, self.row_upper, self.lower, self.upper):
            array.flags.writeable = False
        self.integrality.flags.writeable = False
        for part in (self.A.data, self.A.indices, self.A.indptr):
            part.flags.writeable = False

    @property
    def constraints(self) -> Any:
        """The rows as a `scipy.optimize.LinearConstraint`, for `scipy.optimize.milp`."""
        from scipy.optimize import LinearConstraint

        return LinearConstraint(self.A, self.row_lower, self.row_upper)

    @property
    def bounds(self) -> Any:
        """The bounds of the columns as a `scipy.optimize.Bounds`, for `scipy.optimize.milp`."""
        from scipy.optimize import Bounds

        return Bounds(self.lower, self.upper)

    def __repr__(self) -> str:
        rows, columns = self.A.shape
        label = f"{self._label()!r}"
        sense = ", maximised" if self.maximise else ""
        return (
            f"<zktarn.zero_half.Model {label}: {rows} rows, {columns} columns, "
            f"{int(self.integrality.sum())} of them integer, {self.A.nnz} coefficients{sense}>"
        )

    def _label(self) -> str:
        """The file without its folder, or the name of the model."""
        return os.path.basename(self.file) if self.file else self.name or "model"

    def _arrays(self) -> _zero_half.ModelArrays:
        """The model in the form that the extension module expects."""
        return {
            "file": self.file or self.name or "model",
            "name": self.name,
            "indptr": self.A.indptr.astype(np.int32),
            "indices": self.A.indices.astype(np.int32),
            "data": self.A.data,
            "row_lower": _clamped(self.row_lower),
            "row_upper": _clamped(self.row_upper),
            "lower": _clamped(self.lower),
            "upper": _clamped(self.upper),
            "c": self.c,
            "integrality": self.integrality,
            "row_names": list(self.row_names),
            "column_names": list(self.column_names),
            "constant": self.constant,
            "maximise": self.maximise,
        }


def read_model(file: FileName) -> Model:
    """Read a model from an MPS file, fixed or free, plain or compressed by gzip, or an LP file.

    file  its name. A file whose name ends in `.lp` is read as an LP file.

    Uses the solver's reader, which checks the model and rounds the bounds of integer columns inwards
    to integers. `tighten(read_model(file))` has the same result as `tighten(file)`.

    Raises FileNotFoundError and other OSErrors when the file cannot be opened, and `ModelError` when
    it holds no model that the solver can tighten. Holds the interpreter's lock while it reads.
    """
    name = _checked_file(file)
    arrays = _zero_half.read_model(name)
    model = Model.__new__(Model)
    shape = (arrays["row_lower"].size, arrays["lower"].size)
    model.A = scipy.sparse.csr_array(
        (arrays["data"], arrays["indices"], arrays["indptr"]), shape=shape
    )
    model.c = arrays["c"]
    model.row_lower = _unclamped(arrays["row_lower"])
    model.row_upper = _unclamped(arrays["row_upper"])
    model.lower = _unclamped(arrays["lower"])
    model.upper = _unclamped(arrays["upper"])
    model.integrality = arrays["integrality"]
    model.maximise = arrays["maximise"]
    model.constant = arrays["constant"]
    model.column_names = tuple(arrays["column_names"])
    model.row_names = tuple(arrays["row_names"])
    model.name = arrays["name"]
    model.file = arrays["file"]
    model._freeze()
    return model


def _checked_file(file: FileName) -> bytes:
    """The name of a file, encoded for the extension module. Raises OSError if it cannot be opened."""
    name = os.fsencode(file)
    if b"\0" in name:
        raise ValueError("the name of the file has a null character")
    # A pipe can be opened once only, by the reader.
    if not stat.S_ISFIFO(os.stat(name).st_mode):
        with open(name, "rb"):
            pass
    # The solver's program reads its standard input under this name.
    return b"./-" if name == b"-" else name


def _clamped(values: NDArray[np.float64]) -> NDArray[np.float64]:
    return np.clip(values, -_NO_BOUND, _NO_BOUND)


def _unclamped(values: NDArray[np.float64]) -> NDArray[np.float64]:
    values[values >= _NO_BOUND] = np.inf
    values[values <= -_NO_BOUND] = -np.inf
    return values


def _is_linear_constraint(value: Any) -> bool:
    # A is last: as an attribute of a sparse matrix it would make a dense one.
    return all(hasattr(value, name) for name in ("lb", "ub", "A"))


def _is_group(value: Any) -> bool:
    """Whether the value is one group of rows. A sequence of groups holds tuples or constraints."""
    if _is_linear_constraint(value):
        return True
    if not isinstance(value, (tuple, list)) or not 1 <= len(value) <= 3:
        return False
    first = value[0]
    if isinstance(first, tuple) or _is_linear_constraint(first):
        return False
    is_matrix = scipy.sparse.issparse(first) or isinstance(first, np.ndarray)
    return is_matrix or isinstance(value, tuple)


def _row_groups(constraints: Any) -> Sequence[Any]:
    if constraints is None:
        return ()
    if _is_group(constraints):
        return (constraints,)
    if not isinstance(constraints, Iterable) or isinstance(constraints, (str, bytes, dict)):
        raise TypeError(
            "constraints has to be a LinearConstraint, a tuple (A, lower, upper) or a sequence of "
            f"these, not {type(constraints).__name__}"
        )
    groups = tuple(constraints)
    for group in groups:
        if not _is_group(group):
            raise TypeError(
                "each of the constraints has to be a LinearConstraint or a tuple (A, lower, upper), "
                f"not {type(group).__name__}"
            )
    return groups


def _parts(group: Any) -> tuple[Any, Any, Any]:
    """A, lower and upper of a group. A tuple may omit upper, or lower and upper."""
    if _is_linear_constraint(group):
        return group.A, group.lb, group.ub
    matrix, lower, upper = tuple(group) + (-np.inf, np.inf)[len(group) - 1 :]
    return matrix, lower, upper


def _matrix(values: Any, columns: int) -> Any:
    """The rows of one group as a csr_array of float64."""
    if scipy.sparse.issparse(values):
        if values.dtype.kind not in "biuf":
            raise TypeError("the matrix A of constraints has to hold real numbers")
        matrix = scipy.sparse.csr_array(values, dtype=np.float64)
    else:
        dense = _numbers.real_array("the matrix A of constraints", values)
        if dense.ndim > 2:
            raise ValueError(f"the matrix A of constraints has {dense.ndim} dimensions, not 2")
        matrix = scipy.sparse.csr_array(np.atleast_2d(dense))
    if matrix.shape[1] != columns:
        raise ValueError(
            f"the matrix A of constraints has {matrix.shape[1]} columns, but c has {columns}"
        )
    if np.isnan(matrix.data).any():
        raise ValueError("the matrix A of constraints has a NaN")
    return matrix


def _stacked(groups: Sequence[Any], columns: int) -> tuple[Any, Any, Any]:
    """A, row_lower and row_upper of all groups."""
    matrices = [scipy.sparse.csr_array((0, columns), dtype=np.float64)]
    lowers = [np.empty(0)]
    uppers = [np.empty(0)]
    for group in groups:
        values, lower, upper = _parts(group)
        matrix = _matrix(values, columns)
        matrices.append(matrix)
        lowers.append(_numbers.broadcast("the lower side of constraints", lower, matrix.shape[0]))
        uppers.append(_numbers.broadcast("the upper side of constraints", upper, matrix.shape[0]))
    rows = scipy.sparse.csr_array(scipy.sparse.vstack(matrices, format="csr"))
    rows.sum_duplicates()
    limit = np.iinfo(np.int32).max
    if max(rows.shape) >= limit or rows.nnz >= limit:
        raise ValueError(f"the model has {limit} rows, columns or coefficients or more")
    return rows, np.concatenate(lowers), np.concatenate(uppers)


def _bounds(bounds: Any, columns: int) -> tuple[NDArray[np.float64], NDArray[np.float64]]:
    if bounds is None:
        bounds = (0.0, np.inf)
    if hasattr(bounds, "lb") and hasattr(bounds, "ub"):
        bounds = (bounds.lb, bounds.ub)
    if not isinstance(bounds, (tuple, list)) or len(bounds) != 2:
        raise TypeError("bounds has to be a scipy.optimize.Bounds or a pair (lower, upper)")
    return (
        _numbers.broadcast("the lower side of bounds", bounds[0], columns),
        _numbers.broadcast("the upper side of bounds", bounds[1], columns),
    )


def _integrality(integrality: Any, columns: int) -> NDArray[np.int8]:
    codes = _numbers.broadcast("integrality", 0 if integrality is None else integrality, columns)
    if np.isin(codes, (2, 3)).any():
        raise ValueError("integrality has a 2 or 3: semi-continuous columns are not supported")
    if not np.isin(codes, (0, 1)).all():
        raise ValueError("integrality has a value that is neither 0 nor 1")
    return cast("NDArray[np.int8]", codes.astype(np.int8))
