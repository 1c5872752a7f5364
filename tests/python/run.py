"""Runs the tests of the package that is imported as lumetra, and the examples in its docstrings.

Usage: run.py PACKAGE [OPTION...], the folder of the package and options of pytest.
Ends with status 77 where numpy or pytest is not installed.
"""

import pathlib
import sys


def main(arguments):
    try:
        import numpy  # noqa: F401
        import pytest
    except ImportError as missing:
        print(f"skipped: {missing}")
        return 77
    here = pathlib.Path(__file__).parent
    return pytest.main(["-q", "-rs", "-c", str(here / "pytest.ini"), str(here), *arguments])


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
