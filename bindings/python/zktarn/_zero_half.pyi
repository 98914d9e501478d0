"""Types of the extension module behind zktarn.zero_half. Its functions do not check their arguments."""

from collections.abc import Callable
from typing import Any, TypedDict

import numpy as np
from numpy.typing import NDArray

class ModelArrays(TypedDict):
    """A model: compressed sparse rows, and the objective in the sense of the file."""

    file: str
    name: str
    indptr: NDArray[np.int32]
    indices: NDArray[np.int32]
    data: NDArray[np.float64]
    row_lower: NDArray[np.float64]
    row_upper: NDArray[np.float64]
    lower: NDArray[np.float64]
    upper: NDArray[np.float64]
    c: NDArray[np.float64]
    integrality: NDArray[np.int8]
    row_names: list[str]
    column_names: list[str]
    constant: float
    maximise: bool

class Options(TypedDict):
    rounds: int
    time_limit: float
    seed: int
    display: int
    optimum: float | None
    stop_at_gap: float

class Cuts(TypedDict):
    """Rows of at most rhs, as compressed sparse rows."""

    indptr: NDArray[np.int32]
    indices: NDArray[np.int32]
    data: NDArray[np.float64]
    rhs: NDArray[np.float64]

class Outcome(TypedDict):
    status: str
    message: str
    fault: str
    initial_bound: float | None
    relaxation_bound: float | None
    bound: float | None
    optimum: float | None
    gap_closed: float | None
    rounds: list[tuple[int, float, int, int, float, float, float]]
    cuts: Cuts
    point: NDArray[np.float64] | None
    objective: float | None
    seconds: float
    cpu_seconds: float
    table: str

class ModelError(ValueError):
    """A model that cannot be tightened, and why, in one sentence."""

def read_model(file: bytes) -> ModelArrays: ...
def known_optimum(file: bytes) -> float | None: ...
def tighten(
    model: ModelArrays,
    options: Options,
    output_function: Callable[[dict[str, Any]], Any] | None,
) -> tuple[Outcome | None, BaseException | None]: ...
def write_mps(model: ModelArrays, cuts: Cuts, file: bytes) -> None: ...
def endings() -> dict[str, str]: ...
