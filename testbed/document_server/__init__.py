"""A document server for tests and demos: every behaviour is a URL. This folder is also its program."""
