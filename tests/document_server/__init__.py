"""The tests of the testbed's document server. They import its modules, which tests.support makes possible."""

from tests import support

__all__ = ["support"]
