"""The library and a real browser in a host program, on a display. Its tests import the testbed's packages, which
tests.support makes possible."""

from tests import support

__all__ = ["support"]
