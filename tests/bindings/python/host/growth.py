"""Finds leaks: what many calls leave behind."""

import gc
import sys
import tracemalloc

CALLS = 10_000


def bytes_left_by(operation, calls=CALLS):
    """The bytes a call leaves in Python's and NumPy's memory. Whatever a call leaks is at least one;
    caches that fill up during the calls are far below."""
    gc.collect()
    tracemalloc.start()
    try:
        for _ in range(200):
            operation()
        before = tracemalloc.get_traced_memory()[0]
        for _ in range(calls):
            operation()
        gc.collect()
        return (tracemalloc.get_traced_memory()[0] - before) / calls
    finally:
        tracemalloc.stop()


def references_left_by(operation, *objects, calls=CALLS):
    """The references to the objects that `calls` calls leave."""
    def counts():
        return [sys.getrefcount(each) for each in objects]

    before = counts()
    for _ in range(calls):
        operation()
    gc.collect()
    return [after - count for after, count in zip(counts(), before)]
