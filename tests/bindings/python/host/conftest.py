"""Every test leaves no exception stored and no block in use."""

import pytest

import host


@pytest.fixture(autouse=True)
def nothing_is_left():
    before = host.held.zktarn_python_block_count()
    yield
    host.raise_stored()
    assert host.held.zktarn_python_block_count() == before
