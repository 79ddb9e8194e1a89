"""The contents of documents and other bodies: bytes that a test can compute again and compare."""

import hashlib
from collections.abc import Iterator

DEFAULT_SIZE = 70_000
MAXIMUM_SIZE = 64 * 1024 * 1024
LARGEST_PIECE = 65_521


def document(name: str, size: int = DEFAULT_SIZE) -> bytes:
    """The document of that name in a size in bytes; a shorter version is the beginning of a longer one."""
    return hashlib.shake_256(name.encode()).digest(size)


# A prime length: pieces that were lost, doubled or swapped change the bytes that follow. Twice, so that every
# piece is one slice of it.
_BLOCK = document("filler", LARGEST_PIECE) * 2


def filler(start: int, stop: int) -> Iterator[bytes]:
    """The bytes from start up to stop of a body without end, in pieces of at most LARGEST_PIECE bytes."""
    while start < stop:
        offset = start % LARGEST_PIECE
        piece = _BLOCK[offset:offset + min(LARGEST_PIECE, stop - start)]
        yield piece
        start += len(piece)


def filler_in_pieces(size: int, count: int) -> Iterator[bytes]:
    """The same body up to a size, cut into so many pieces of about equal length; long ones are cut again."""
    for index in range(count):
        yield from filler(size * index // count, size * (index + 1) // count)
