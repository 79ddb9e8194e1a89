"""The base of tests that share one running server."""

import unittest

from tests.support.document_server import DocumentServer


class ServerTest(unittest.TestCase):
    """Runs a server with the class's options for all its tests. They fail if it writes to stderr."""

    options: tuple[str, ...] = ()
    server: DocumentServer

    @classmethod
    def setUpClass(cls) -> None:
        cls.server = cls.enterClassContext(DocumentServer(*cls.options))

    @classmethod
    def tearDownClass(cls) -> None:
        cls.server.stop()
        if errors := cls.server.errors():
            raise AssertionError(f"the server wrote to stderr:\n{errors}")
