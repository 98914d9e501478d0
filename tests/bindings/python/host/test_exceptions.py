"""Assertions, interrupts, and exceptions that wait for the library to return."""

import signal
import subprocess
import sys
import threading
import time

import pytest

import host


@pytest.fixture(params=["held", "released"])
def library(request):
    """The operations, called with the interpreter's lock and without."""
    return getattr(host, request.param)


def fail_with(error):
    """Stores an exception, as an output function that raises it does."""
    def raise_it():
        raise error

    host.set_function(raise_it, "fail")
    try:
        _, (output,) = host.call([], "fail")
        host.destroy(output)
    finally:
        host.set_function(None, "fail")


def test_a_false_assertion_is_an_assertion_error(library):
    library.assertOptim(True)
    host.raise_stored()
    library.assertOptim(False)
    with pytest.raises(AssertionError, match="condition that is false"):
        host.raise_stored()
    host.raise_stored()


def test_the_first_exception_is_kept():
    for error in (ValueError("first"), KeyError("second")):
        fail_with(error)
    host.held.assertOptim(False)
    with pytest.raises(ValueError, match="first"):
        host.raise_stored()
    host.raise_stored()


@pytest.mark.parametrize("interrupt", [KeyboardInterrupt, SystemExit])
def test_an_interrupt_prevails_over_an_error(interrupt):
    first, second = ValueError("first"), interrupt()
    fail_with(first)
    fail_with(second)
    fail_with(KeyboardInterrupt("third"))
    with pytest.raises(interrupt) as caught:
        host.raise_stored()
    assert caught.value is second and second.__context__ is first
    host.raise_stored()


def test_the_same_exception_twice_is_one():
    error = KeyboardInterrupt()
    fail_with(error)
    fail_with(error)
    with pytest.raises(KeyboardInterrupt):
        host.raise_stored()
    host.raise_stored()


def test_a_stored_exception_ends_a_solve_that_polls():
    assert not host.held.utIsInterruptPending()
    host.held.assertOptim(False)
    assert host.held.utIsInterruptPending() and host.held.utIsInterruptPending()
    with pytest.raises(AssertionError):
        host.raise_stored()
    assert not host.held.utIsInterruptPending()


def test_each_thread_has_its_own(library):
    library.assertOptim(False)
    caught = []

    def work():
        assert not host.held.utIsInterruptPending()
        host.raise_stored()
        fail_with(ValueError("of the other thread"))
        try:
            host.raise_stored()
        except ValueError as error:
            caught.append(error)

    thread = threading.Thread(target=work)
    thread.start()
    thread.join()
    assert [str(error) for error in caught] == ["of the other thread"]
    with pytest.raises(AssertionError):
        host.raise_stored()


def test_a_thread_that_ends_takes_its_exception_along():
    thread = threading.Thread(target=lambda: fail_with(ValueError("nobody asks")))
    thread.start()
    thread.join()
    host.raise_stored()
    assert not host.held.utIsInterruptPending()


def test_one_of_a_thread_that_python_did_not_make_arrives_on_any():
    host.harness(keep_lock=False).harness_assert_elsewhere()
    assert host.held.utIsInterruptPending()
    with pytest.raises(AssertionError):
        host.raise_stored()
    host.raise_stored()


def test_an_exception_that_was_set_before_an_operation_stays_set():
    assert host.harness().harness_keeps_exception() == 1
    with pytest.raises(AssertionError):
        host.raise_stored()


def test_ctrl_c_is_a_keyboard_interrupt_at_the_next_poll():
    harness = host.harness()
    assert harness.harness_raise_and_poll(signal.SIGINT) == 1
    with pytest.raises(KeyboardInterrupt):
        host.raise_stored()
    assert not host.held.utIsInterruptPending()


def test_without_the_lock_ctrl_c_is_one_at_a_later_poll():
    harness = host.harness(keep_lock=False)
    seen = harness.harness_raise_and_poll(signal.SIGINT)
    try:
        harness.harness_poll_until_true()
        host.raise_stored()
        pytest.fail("the interrupt is lost")
    except KeyboardInterrupt:
        pass
    assert seen in (0, 1)


def test_handlers_of_python_decide(library):
    harness = host.harness()
    handled = []
    previous = signal.signal(signal.SIGUSR1, lambda number, frame: handled.append(number))
    try:
        assert harness.harness_raise_and_poll(signal.SIGUSR1) == 0
        assert handled == [signal.SIGUSR1]

        def fail(number, frame):
            raise TimeoutError("time is up")

        signal.signal(signal.SIGUSR1, fail)
        assert harness.harness_raise_and_poll(signal.SIGUSR1) == 1
        with pytest.raises(TimeoutError, match="time is up"):
            host.raise_stored()
    finally:
        signal.signal(signal.SIGUSR1, previous)


CHILD = """
import signal, sys, time, host
library = host.harness(keep_lock=sys.argv[1] == "held")
print("polling", flush=True)
try:
    library.harness_poll_until_true()
    print("stopped", time.monotonic(), flush=True)
    host.raise_stored()
except KeyboardInterrupt:
    print("KeyboardInterrupt", flush=True)
"""


@pytest.mark.parametrize("lock", ["held", "released"])
def test_a_real_ctrl_c_reaches_a_solver_that_polls(lock, record_property):
    with subprocess.Popen([sys.executable, "-c", CHILD, lock],
                          cwd=host.__file__.rpartition("/")[0],
                          stdout=subprocess.PIPE, text=True) as child:
        assert child.stdout.readline() == "polling\n"
        time.sleep(0.05)
        sent = time.monotonic()
        child.send_signal(signal.SIGINT)
        lines = child.stdout.read().splitlines()
        assert child.wait() == 0
    assert [line.split()[0] for line in lines] == ["stopped", "KeyboardInterrupt"]
    seconds = float(lines[0].split()[1]) - sent
    record_property("seconds", seconds)
    print(f"Ctrl-C, lock {lock}: stopped after {seconds:.4f} s")


@pytest.mark.without_sanitizer
def test_calls_leave_nothing():
    def once():
        host.held.assertOptim(False)
        fail_with(ValueError())
        fail_with(KeyboardInterrupt())
        host.held.utIsInterruptPending()
        with pytest.raises(KeyboardInterrupt):
            host.raise_stored()

    assert host.bytes_left_by(once) < 1
