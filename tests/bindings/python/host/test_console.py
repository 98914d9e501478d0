"""The console is sys.stdout."""

import contextlib
import io
import subprocess
import sys

import pytest

import host


@pytest.fixture(params=["held", "released"])
def library(request):
    """The operations, called with the interpreter's lock and without."""
    return getattr(host, request.param)


def test_text_goes_to_sys_stdout_in_order_with_print(library):
    with contextlib.redirect_stdout(io.StringIO()) as output:
        print("a", end="")
        assert host.print_text("100% of %d %s\n  ", library) == 0
        print("b", end="")
        assert host.print_text("", library) == 0
        assert host.print_text("größer ≤\n", library) == 0
    assert output.getvalue() == "a100% of %d %s\n  bgrößer ≤\n"


def test_text_is_captured_as_print_is(library, capsys):
    host.print_text("captured\n", library)
    assert capsys.readouterr().out == "captured\n"


def test_a_notebook_whose_stream_has_no_descriptor_shows_text(library):
    shown = []
    stream = type("Stream", (), {"write": lambda self, text: shown.append(text),
                                 "flush": lambda self: shown.append("flushed")})()
    with contextlib.redirect_stdout(stream):
        host.print_text("line\n", library)
        library.ioFlushOptim()
    assert shown == ["line\n", "flushed"]


def test_bytes_that_are_not_characters_become_escapes(library, capsys):
    host.print_text(b"gr\xf6\xdfer\n", library)
    assert capsys.readouterr().out == "gr\\xf6\\xdfer\n"


def test_without_a_console_text_is_dropped(library):
    with contextlib.redirect_stdout(None):
        assert host.print_text("dropped", library) == 0
        library.ioFlushOptim()
    host.raise_stored()


def test_without_sys_stdout_text_is_dropped(library, monkeypatch):
    monkeypatch.delattr(sys, "stdout")
    assert host.print_text("dropped", library) == 0
    library.ioFlushOptim()
    monkeypatch.undo()
    host.raise_stored()


def test_a_closed_console_is_reported(library):
    closed = io.StringIO()
    closed.close()
    with contextlib.redirect_stdout(closed):
        assert host.print_text("lost", library) == 1
    with pytest.raises(ValueError, match="closed file"):
        host.raise_stored()


def test_an_object_that_is_not_a_stream_is_reported(library):
    with contextlib.redirect_stdout(7):
        assert host.print_text("lost", library) == 1
        library.ioFlushOptim()
    with pytest.raises(AttributeError, match="write"):
        host.raise_stored()


def test_a_console_that_does_not_flush_is_reported(library):
    class Full(io.StringIO):
        def flush(self):
            raise OSError(28, "No space left on device")

    with contextlib.redirect_stdout(Full()):
        host.print_text("line\n", library)
        library.ioFlushOptim()
    with pytest.raises(OSError, match="No space left"):
        host.raise_stored()


def test_a_pipe_gets_each_line_when_it_is_flushed():
    program = ("import host, sys\n"
               "host.print_text('first\\n'); host.held.ioFlushOptim()\n"
               "sys.stdin.readline()\n"
               "host.print_text('second\\n'); host.held.ioFlushOptim()\n")
    with subprocess.Popen([sys.executable, "-c", program], cwd=host.__file__.rpartition("/")[0],
                          stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as child:
        assert child.stdout.readline() == "first\n"
        child.stdin.write("\n")
        child.stdin.flush()
        assert child.stdout.readline() == "second\n"
        assert child.wait() == 0


@pytest.mark.without_sanitizer
def test_calls_leave_nothing():
    sink = type("Sink", (), {"write": lambda self, text: None, "flush": lambda self: None})()
    with contextlib.redirect_stdout(sink):
        def once():
            host.print_text("a line\n")
            host.held.ioFlushOptim()

        assert host.bytes_left_by(once) < 1
        assert host.references_left_by(once, sink) == [0]
