"""What the Python tests share. Importing it makes the packages of the testbed importable."""

import sys
from pathlib import Path

TESTBED = Path(__file__).resolve().parents[2] / "testbed"

sys.path.insert(0, str(TESTBED))
