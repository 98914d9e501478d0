# %% [markdown]
# # Tightening a relaxation
#
# `zktarn.zero_half` adds zero-half cuts to the linear relaxation of an integer program until its bound
# stops rising. This script is a notebook of cells (`# %%`): an editor runs it cell by cell, Python as
# a whole:
#
#     python tighten.py [PICTURE]
#
# It draws the picture into the file PICTURE, `tighten.svg` by default.

# %% What it needs
import pathlib
import sys

import matplotlib

if __name__ == "__main__" and "ipykernel" not in sys.modules:
    matplotlib.use("svg")  # draws into a file, without a window

import matplotlib.pyplot as plt
from scipy.optimize import milp

from zktarn import zero_half

MODELS = pathlib.Path(__file__).resolve().parents[2] / "solvers" / "zero_half" / "models"

# %% A model
# p0282 is a public binary program. Its optimum, 258411, is in the table `optima.csv` beside the file.
model = zero_half.read_model(MODELS / "p0282.mps")
print(repr(model))

# %% Its cuts
# Each round solves the relaxation, separates its optimum by cuts, and adds these. The lines below are
# printed while the solver runs.
result = zero_half.tighten(model)
print()
print(repr(result))

# %% The bound against rounds and time
axes = result.plot()
for ax in axes:
    ax.grid(alpha=0.3)
picture = sys.argv[1] if __name__ == "__main__" and len(sys.argv) > 1 else "tighten.svg"
# No date and no random identifiers: the same figures give the same file.
plt.rcParams["svg.hashsalt"] = "zktarn"
axes[0].figure.savefig(picture, metadata={"Date": None} if picture.endswith(".svg") else None)

# %% What the cuts are
# A sparse matrix with a right-hand side: cuts @ x <= rhs for each integer point. All are integers.
print(f"{result.cuts.shape[0]} cuts, {result.cuts.nnz} coefficients")
names = [model.column_names[j] for j in result.cuts[[0]].indices]
terms = " ".join(f"{a:+g} {name}" for a, name in zip(result.cuts[[0]].data, names))
print(f"the first: {terms} <= {result.rhs[0]:g}")

# %% The cuts in another solver
# SciPy's branch and bound finds the same optimum with the cuts as additional rows.
kind = {"bounds": model.bounds, "integrality": model.integrality}
plain = milp(model.c, constraints=model.constraints, **kind)
with_cuts = milp(model.c, constraints=[model.constraints, result.constraint], **kind)
print(f"optimum {plain.fun:.0f}, with the cuts {with_cuts.fun:.0f}")


# %% A callback that stops the run
# The output function sees each round. The run stops when it returns 1 (or True), here once half of the
# gap is closed.
def stop_at_half(info: zero_half.Progress) -> bool:
    lp_value = float(info["history"][0])
    closed = (info["bound"] - lp_value) / (258411 - lp_value)
    print(f"{info['phase']} {info['round']:.0f}: {100 * closed:.1f} % closed")
    return closed >= 0.5


stopped = zero_half.tighten(model, output_function=stop_at_half, display="off")
print(f"{stopped.status}: {stopped.message}")


# %% An exception ends the run too
# `tighten` raises it to its caller, like KeyboardInterrupt after Ctrl-C. `partial_result` returns what the
# run had reached.
def fail(info: zero_half.Progress) -> None:
    if info["round"] == 3:
        raise LookupError("the third round is enough")


try:
    zero_half.tighten(model, output_function=fail, display="off")
except LookupError as error:
    print(f"{error}: {zero_half.partial_result(error)!r}")
