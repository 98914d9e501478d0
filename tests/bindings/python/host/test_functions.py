"""The output function: any callable, its dict, its answer."""

import threading
import traceback
import warnings

import numpy
import pytest

import host

from zktarn import host as public


@pytest.fixture
def structure():
    """A struct as a solver fills it."""
    made = host.make_struct(["phase"])
    host.set_field(made, "phase", host.make_text("root"))
    host.add_field(made, "bound")
    host.set_field(made, "bound", host.make_scalar(2.5))
    host.add_field(made, "x")
    host.set_field(made, "x", host.make_matrix(3))
    yield made
    host.destroy(made)


@pytest.fixture(autouse=True)
def no_function_stays():
    yield
    host.set_function(None)
    public.functions.clear()


def call_once(structure, library=host.held):
    """Calls the output function; returns the status and the first number of the answer."""
    status, (output,) = host.call([structure], library=library)
    answer = host.reals(output, 1)[0]
    host.destroy(output)
    return status, answer


@pytest.mark.parametrize("returned, answer", [
    (0, 0.0), (1, 1.0), (True, 1.0), (False, 0.0), (None, 0.0), (1.5, 1.5), (-0.25, -0.25),
    (1 << 100, 2.0 ** 100), (numpy.float64(1), 1.0), (numpy.float32(1), 1.0), (numpy.int8(1), 1.0),
    (numpy.bool_(True), 1.0), ([1, 2], 1.0), ((0.5,), 0.5), (numpy.array(3.0), 3.0),
    (numpy.array([[4, 5], [6, 7]]), 4.0), (numpy.arange(10, 0, -2), 10.0),
    (numpy.array([1.0], ">f8"), 1.0), (float("inf"), float("inf"))])
def test_the_answer_is_a_real_number_an_array_or_none(returned, answer):
    assert host.answer_of(returned) == answer


@pytest.mark.parametrize("returned", [
    "1", b"1", "stop", [], (), numpy.array([]), {}, object(), 1j, [1j], "", ["stop"], [[1], [1, 2]]])
def test_any_other_answer_is_a_type_error_and_stops(returned):
    with warnings.catch_warnings():
        warnings.simplefilter("error", numpy.VisibleDeprecationWarning)
        assert host.answer_of(returned) == 1.0
    with pytest.raises(TypeError, match="has to return a real number, an array of at least one, or"):
        host.raise_stored()


def test_the_function_gets_the_fields(structure):
    seen = []
    host.set_function(lambda fields: seen.append(fields))
    assert call_once(structure) == (0, 0.0)
    (fields,) = seen
    assert type(fields) is dict and list(fields) == ["phase", "bound", "x"]
    assert fields["phase"] == "root" and fields["bound"] == 2.5
    assert fields["x"].tolist() == [0.0, 0.0, 0.0]


def test_the_function_may_change_and_keep_its_dict(structure):
    kept = []

    def change(fields):
        kept.append(fields)
        fields.clear()
        fields["mine"] = 1

    host.set_function(change)
    call_once(structure)
    assert list(host.object_of(structure)) == ["phase", "bound", "x"]
    host.set_field(structure, "bound", host.make_scalar(7.0))
    host.set_function(kept.append)
    call_once(structure)
    host.set_field(structure, "bound", host.make_scalar(8.0))
    assert kept[0] == {"mine": 1} and kept[1]["bound"] == 7.0


@pytest.mark.parametrize("library", [host.held, host.released])
@pytest.mark.parametrize("error", [ValueError("wrong"), KeyboardInterrupt(), SystemExit(3),
                                   MemoryError("mine"), StopIteration(), GeneratorExit()])
def test_an_exception_stops_and_arrives_with_its_traceback(structure, error, library):
    def inner():
        raise error

    def output_function(fields):
        inner()

    host.set_function(output_function)
    assert call_once(structure, library) == (1, 1.0)
    with pytest.raises(type(error)) as caught:
        host.raise_stored()
    assert caught.value is error
    frames = [frame.name for frame in traceback.extract_tb(caught.value.__traceback__)]
    assert frames[-2:] == ["output_function", "inner"]
    host.raise_stored()


def test_a_missing_function_is_reported_and_stops(structure):
    assert call_once(structure) == (1, 1.0)
    with pytest.raises(LookupError, match="there is no function 'tarnCallback'"):
        host.raise_stored()


@pytest.mark.parametrize("what", [7, "print", [], object()])
def test_only_callables_are_registered(what):
    with pytest.raises(TypeError, match="has to be callable"):
        host.set_function(what)


def test_registering_returns_the_previous_function():
    assert host.set_function(len) is None
    assert host.set_function(print) is len
    assert host.set_function(len, "another") is None
    assert host.set_function(None) is print
    assert host.set_function(None) is None
    assert host.set_function(None, "another") is len


def test_a_function_of_a_thread_comes_before_those_of_all(structure):
    public.functions["tarnCallback"] = lambda fields: 10
    host.set_function(lambda fields: 20)
    answers = []
    thread = threading.Thread(target=lambda: answers.append(call_once(structure)[1]))
    thread.start()
    thread.join()
    answers.append(call_once(structure)[1])
    host.set_function(None)
    answers.append(call_once(structure)[1])
    assert answers == [10.0, 20.0, 10.0]


def test_threads_that_python_did_not_make_use_the_functions_of_all():
    harness = host.harness(keep_lock=False)
    host.set_function(lambda fields: 20)
    assert harness.harness_call_elsewhere() == 1.0
    with pytest.raises(LookupError):
        host.raise_stored()
    public.functions["tarnCallback"] = lambda fields: 10 + len(fields)
    assert harness.harness_call_elsewhere() == 11.0


def test_an_object_that_is_not_callable_is_reported(structure):
    public.functions["tarnCallback"] = 7
    assert call_once(structure) == (1, 1.0)
    with pytest.raises(TypeError, match="not callable"):
        host.raise_stored()


def test_functions_nest(structure):
    def outer(fields):
        previous = host.set_function(lambda fields: 0.5)
        inner = call_once(structure)[1]
        host.set_function(previous)
        return 10 + inner

    host.set_function(outer)
    assert call_once(structure) == (0, 10.5)
    assert call_once(structure) == (0, 10.5)


def test_a_function_may_have_other_numbers_of_inputs_and_outputs(structure):
    text = host.make_text("and a text")
    host.set_function(lambda fields, other, nothing: (len(fields), [len(other)]), "two")
    status, outputs = host.call([structure, text, 0], "two", noutputs=2)
    assert status == 0 and [host.reals(each, 1) for each in outputs] == [[3.0], [10.0]]
    for each in outputs + [text]:
        host.destroy(each)
    called = []
    host.set_function(lambda: called.append(1), "none")
    assert host.call([], "none", noutputs=0) == (0, []) and called == [1]
    host.set_function(None, "two")
    host.set_function(None, "none")


@pytest.mark.parametrize("returned", [1.0, (1.0,), [1.0, 2.0], (1.0, "no"), ("no", 1.0)])
def test_several_results_come_as_a_tuple(returned):
    host.set_function(lambda: returned, "two")
    status, outputs = host.call([], "two", noutputs=2)
    assert status == 1 and host.reals(outputs[0], 1) == [1.0] and outputs[1] == 0
    host.destroy(outputs[0])
    with pytest.raises(TypeError):
        host.raise_stored()
    host.set_function(None, "two")


@pytest.mark.without_sanitizer
def test_calls_leave_nothing(structure):
    array = numpy.zeros(3)
    host.set_function(lambda fields: array)
    assert host.bytes_left_by(lambda: call_once(structure)) < 1
    assert host.references_left_by(
        lambda: call_once(structure), array, host.object_of(structure)["x"]) == [0, 0]


@pytest.mark.without_sanitizer
def test_exceptions_leave_nothing(structure):
    def fail(fields):
        raise ValueError("another one each time")

    def once():
        call_once(structure)
        with pytest.raises(ValueError):
            host.raise_stored()

    host.set_function(fail)
    assert host.bytes_left_by(once) < 1
    assert host.references_left_by(once, ValueError, fail, calls=1000) == [0, 0]


@pytest.mark.without_sanitizer
def test_refused_answers_leave_nothing(structure):
    answer = ["no number"]

    def once():
        call_once(structure)
        with pytest.raises(TypeError):
            host.raise_stored()

    host.set_function(lambda fields: answer)
    assert host.bytes_left_by(once) < 1
    assert host.references_left_by(once, TypeError, answer, calls=1000) == [0, 0]
