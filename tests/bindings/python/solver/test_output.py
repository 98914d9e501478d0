"""Output for users: the console, texts, tables for notebooks, pictures, files."""

import contextlib
import dataclasses
import html.parser
import importlib
import inspect
import io
import pickle
import subprocess
import sys

import matplotlib
import numpy as np
import pytest
from problems import MODELS, petersen

from zktarn import zero_half

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402  after the choice of the backend

P0282 = MODELS / "p0282.mps"


@pytest.fixture(scope="module")
def result():
    return zero_half.tighten(P0282, rounds=6, display="off")


def printed(**keywords):
    stream = io.StringIO()
    with contextlib.redirect_stdout(stream):
        result = zero_half.tighten(P0282, rounds=3, **keywords)
    return stream.getvalue(), result


# Console


def test_iter_prints_a_line_for_each_round_and_the_table():
    for keywords in ({}, {"display": "iter"}):
        text, result = printed(**keywords)
        lines = text.splitlines()
        assert lines[0].split() == ["round", "bound", "closed", "%", "found", "kept",
                                    "separation", "ms", "LP", "ms"]
        for line, each in zip(lines[1:4], result.rounds):
            words = line.split()
            assert words[0] == str(each.number) and words[1] == f"{each.bound:.4f}"
            assert words[3:5] == [str(each.cuts_found), str(each.cuts_kept)]
        assert lines[4] == "" and lines[5].startswith("model") and lines[6].startswith("p0282 ")
        assert len(lines) == 7 and lines[6].endswith(" rounds")
        assert str(result) == "\n".join(lines[5:])


def test_final_prints_the_table_and_off_nothing(capfd):
    text, result = printed(display="final")
    assert text == f"{result}\n" and len(text.splitlines()) == 2
    assert printed(display="off")[0] == ""
    # Everything goes to sys.stdout, nothing to the process's own output.
    assert capfd.readouterr() == ("", "")


def test_progress_is_printed_while_the_run_goes_on():
    stream = io.StringIO()
    lengths = []
    with contextlib.redirect_stdout(stream):
        zero_half.tighten(P0282, rounds=3,
                          output_function=lambda info: lengths.append(len(stream.getvalue())))
    assert lengths[0] < lengths[1] < lengths[2]


# Texts


def test_repr_and_str_show_the_run(result):
    assert repr(result).startswith(
        f"<zktarn.zero_half.Result 'p0282.mps': rounds_used, bound {result.initial_bound:.9g} -> "
        f"{result.bound:.9g}, {result.gap_closed:.2f} % of the gap closed, "
        f"{len(result.rhs)} cuts, 6 rounds, ")
    assert str(result).splitlines()[0].split()[0] == "model"
    assert repr(result.model) == ("<zktarn.zero_half.Model 'p0282.mps': 241 rows, 282 columns, "
                                  "282 of them integer, 1966 coefficients>")
    assert repr(result.rounds[0]).startswith("Round(number=1, bound=")


class Tables(html.parser.HTMLParser):
    """The cells of all rows; fails when tags are not closed in order."""

    def __init__(self, text):
        super().__init__()
        self.open, self.rows = [], []
        self.feed(text)
        self.close()
        assert self.open == []

    def handle_starttag(self, tag, attributes):
        self.open.append(tag)
        if tag == "tr":
            self.rows.append([])
        if tag in ("td", "th"):
            self.rows[-1].append("")

    def handle_endtag(self, tag):
        assert self.open.pop() == tag

    def handle_data(self, data):
        if self.open and self.open[-1] in ("td", "th"):
            self.rows[-1][-1] += data


def test_a_notebook_shows_the_facts_and_the_rounds(result):
    rows = Tables(result._repr_html_()).rows
    facts = dict(row for row in rows if len(row) == 2)
    assert facts["bound"] == f"{result.bound:.9g}" and facts["optimum"] == "258411"
    assert facts["LP value"] == f"{result.initial_bound:.9g}"
    assert facts["gap closed"] == f"{result.gap_closed:.2f} %"
    assert facts["cuts"] == str(len(result.rhs)) and facts["end"] == result.message
    table = [row for row in rows if len(row) == 7]
    assert table[0][:2] == ["round", "bound"] and len(table) == 7
    assert [row[0] for row in table[1:]] == ["1", "2", "3", "4", "5", "6"]
    assert [row[1] for row in table[1:]] == [f"{each.bound:.9g}" for each in result.rounds]


def test_a_notebook_shows_the_name_of_a_model_as_text():
    model = zero_half.Model([1.0], integrality=1, name="<script>alert('x')</script>&")
    text = zero_half.tighten(model, display="off")._repr_html_()
    assert "<script>" not in text
    assert "&lt;script&gt;alert(&#x27;x&#x27;)&lt;/script&gt;&amp;" in text
    Tables(text)


def test_a_run_without_a_bound_is_shown_too():
    stopped = zero_half.tighten(**petersen(), time_limit=0, display="off")
    assert stopped.bound in (None, -5.0)
    empty = type(stopped)(**{**vars(stopped), "initial_bound": None, "bound": None,
                             "gap_closed": None, "optimum": None, "rounds": ()})
    assert "bound - -> -, " in repr(empty) and Tables(empty._repr_html_()).rows
    assert len(empty.history) == 0
    with pytest.raises(ValueError, match="there is nothing to draw"):
        empty.plot()


def test_results_and_models_can_be_pickled(result):
    again = pickle.loads(pickle.dumps(result))
    assert again.status == result.status and again.rounds == result.rounds
    assert np.array_equal(again.cuts.toarray(), result.cuts.toarray())
    assert np.array_equal(again.model.c, result.model.c) and str(again) == str(result)


def test_results_are_frozen(result):
    with pytest.raises(AttributeError):
        result.bound = 0.0


# Pictures


@pytest.fixture
def figures():
    plt.close("all")
    yield plt
    plt.close("all")


def curve(ax, label):
    (line,) = [line for line in ax.lines if line.get_label().startswith(label)]
    return line


def test_plot_draws_rounds_and_time(result, figures):
    axes = result.plot()
    assert len(axes) == 2 and figures.get_fignums() == [1]
    rounds, time = axes
    assert rounds.get_xlabel() == "round" and time.get_xlabel() == "time (ms)"
    assert rounds.get_ylabel() == "objective, lower bound"
    assert rounds.figure._suptitle.get_text() == "p0282.mps"
    for ax, places in ((rounds, range(7)),
                       (time, [0.0, *(1e3 * each.seconds for each in result.rounds)])):
        bound = curve(ax, "bound with cuts")
        assert np.allclose(bound.get_xdata(), list(places))
        assert np.array_equal(bound.get_ydata(), result.history)
        assert set(curve(ax, "LP value").get_ydata()) == {result.initial_bound}
        assert set(curve(ax, "optimum").get_ydata()) == {258411.0}
    assert [text.get_text() for text in rounds.get_legend().get_texts()] == [
        f"LP value {result.initial_bound:.9g}", "optimum 258411", "bound with cuts"]


def test_rounds_have_whole_numbers(figures):
    for rounds in (0, 1, 2, 3, 17):
        (ax,) = zero_half.tighten(P0282, rounds=rounds, display="off").plot(against="round")
        ax.figure.canvas.draw()
        assert all(tick == round(tick) for tick in ax.get_xticks()), rounds
        assert ax.get_xlim() == (0.0, max(rounds, 1.0))


def test_plot_draws_on_given_axes(result, figures):
    figure, given = figures.subplots()
    assert result.plot(given) == (given,)
    assert given.get_xlabel() == "round" and given.get_title() == "p0282.mps"
    assert given.get_legend() is not None and figures.get_fignums() == [figure.number]
    assert result.plot(ax=given, against="time")[0].get_xlabel() == "time (ms)"
    with pytest.raises(ValueError, match="against is 'rounds', but"):
        result.plot(against="rounds")


def test_plot_without_an_optimum_has_no_such_line(figures):
    known = zero_half.read_model(P0282)
    result = zero_half.tighten(known.c, known.constraints, known.bounds, known.integrality,
                               rounds=2, display="off")
    (ax,) = result.plot(against="round")
    assert [text.get_text().split()[0] for text in ax.get_legend().get_texts()] == ["LP", "bound"]
    assert ax.get_title() == "model"


def test_plot_of_a_maximised_model_names_the_upper_bound(figures):
    model = zero_half.Model([1, 1, 1], ([[1, 1, 0], [0, 1, 1], [1, 0, 1]], -np.inf, 1), (0, 1), 1,
                            maximise=True)
    (ax,) = zero_half.tighten(model, display="off").plot(against="round")
    assert ax.get_ylabel() == "objective, upper bound"


def test_time_is_drawn_in_a_unit_that_fits(figures, result):
    for seconds, unit in ((0.5, "ms"), (1.9, "ms"), (2.5, "s"), (119.0, "s"), (500.0, "min")):
        last = result.rounds[-1]._replace(seconds=seconds)
        longer = type(result)(**{**vars(result), "rounds": (*result.rounds[:-1], last)})
        (ax,) = longer.plot(against="time")
        assert ax.get_xlabel() == f"time ({unit})"
        size = {"ms": 1e-3, "s": 1.0, "min": 60.0}[unit]
        assert curve(ax, "bound with").get_xdata()[-1] == pytest.approx(seconds / size)


# Files, manuals and packages


def test_write_mps_keeps_names_and_kinds(tmp_path):
    model = zero_half.Model([-1, -1, 0.5], ([[2, 2, 0], [0, 1, 1]], -np.inf, [3, 9]), (0, 5),
                            [1, 1, 0], column_names=["my x", "y", "z"], row_names=["cap", "mix"])
    result = zero_half.tighten(model, display="off")
    result.write_mps(tmp_path / "out.mps")
    again = zero_half.read_model(tmp_path / "out.mps")
    assert again.column_names == ("my_x", "y", "z") and again.row_names[:2] == ("cap", "mix")
    assert again.integrality.tolist() == [1, 1, 0]
    assert again.A.shape[0] == 2 + len(result.rhs) > 2


@pytest.mark.skipif(sys.platform != "linux", reason="only Linux has a full device")
def test_a_file_that_cannot_be_written_is_an_error(result):
    with pytest.raises((OSError, zero_half.ModelError), match="full|cannot be written"):
        result.write_mps("/dev/full")


def test_help_explains_every_argument():
    for function in (zero_half.tighten, zero_half.Model):
        for name in inspect.signature(function).parameters:
            assert f"{name} " in function.__doc__, name
    fields = [each.name for each in dataclasses.fields(zero_half.Result) if each.name[0] != "_"]
    for kind, names in ((zero_half.Result, [*fields, "history", "constraint"]),
                        (zero_half.Round, zero_half.Round._fields),
                        (zero_half.Progress, zero_half.Progress.__annotations__)):
        for name in names:
            assert f"\n    {name} " in kind.__doc__, name
    for name in zero_half.__all__:
        assert name in zero_half.__doc__ or name in ("OutputFunction", "Progress", "Status")
        assert getattr(zero_half, name) is not None


def imported_without(missing):
    """What `import zktarn.zero_half` raises where this module is missing."""
    script = f"""
import importlib.util
found = importlib.util.find_spec
importlib.util.find_spec = lambda name, *rest: None if name == {missing!r} else found(name, *rest)
try:
    import zktarn.zero_half
except ImportError as error:
    print(error)
"""
    return subprocess.run([sys.executable, "-c", script], capture_output=True, text=True,
                          check=True).stdout


def test_a_build_without_clp_says_so_in_one_sentence():
    assert imported_without("zktarn._zero_half") == (
        "this build of zktarn has no zktarn.zero_half, because Clp or Boost was missing when it was "
        "built; install both (on Debian: coinor-libclp-dev, libboost-dev) and build zktarn again\n")
    assert "zktarn.zero_half needs SciPy" in imported_without("scipy")
    assert imported_without("nothing") == ""


def test_plot_without_matplotlib_says_so(result, monkeypatch):
    monkeypatch.delitem(sys.modules, "zktarn.zero_half._drawing", raising=False)
    monkeypatch.setitem(sys.modules, "matplotlib", None)
    monkeypatch.setitem(sys.modules, "matplotlib.pyplot", None)
    with pytest.raises(ImportError, match="matplotlib"):
        result.plot()
    monkeypatch.undo()
    importlib.import_module("zktarn.zero_half._drawing")
