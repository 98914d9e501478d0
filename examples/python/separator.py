"""A zero-half cut: half the sum of three rows, rounded down, is valid for every integer point with
x >= 0, and here it cuts off the solution of the linear relaxation."""

import numpy as np

import zktarn

EPS = 1e-9

# Rows coefficients @ x <= rhs.
COEFFICIENTS = np.array([
    [1.0, 1.0, 0.0, 1.0, 0.0],
    [0.0, 1.0, 1.0, 0.0, -1.0],
    [1.0, 0.0, 1.0, 2.0, 0.0],
])
RHS = np.array([1.0, 1.0, 1.0])
SOLUTION = np.array([0.5, 0.5, 0.5, 0.0, 0.0])


def print_row(name: str, row: zktarn.Vector, rhs: float) -> None:
    terms = "".join(f" {'-' if a < 0 else '+'} {abs(a):g} x{j}" for j, a in row)
    print(f"{name:<9}{terms} <= {rhs:g}")


def main() -> None:
    cut = zktarn.Vector(len(SOLUTION))
    for coefficients, rhs in zip(COEFFICIENTS, RHS):
        row = zktarn.Vector.from_numpy(coefficients)
        print_row("row", row, rhs)
        cut.combine(row, 1.0, 0.5, EPS)  # cut := cut + row / 2
    half = RHS.sum() / 2
    print_row("half sum", cut, half)

    # x >= 0, so smaller coefficients weaken the row; then the left-hand side is an integer.
    for j, a in cut:
        cut[j] = zktarn.floor(a, EPS)
    cut.rem_zeros()
    rhs = zktarn.floor(half, EPS)
    print_row("cut", cut, rhs)

    activity = cut.to_numpy() @ SOLUTION
    violation = activity - rhs
    norm = np.linalg.norm(cut.to_numpy())
    print(f"\nAt (0.5, 0.5, 0.5, 0, 0) the left-hand side of the cut is {activity:g}.")
    print(f"violation {violation:g}, efficacy {violation / norm:.3f}")


if __name__ == "__main__":
    main()
