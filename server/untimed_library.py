"""Takes the time of its making out of a type library, so that the same sources give the same bytes.

The interface compiler notes it twice: in words, and as the number that follows them.
"""
import pathlib
import re
import sys

library = pathlib.Path(sys.argv[1])
noted = re.compile(rb"(WIDL version [\d.]+ at )[^\n]{24}(\nW*\x13\x00).{4}", re.DOTALL)
untimed, count = noted.subn(rb"\1Thu Jan  1 00:00:00 1970\2" + bytes(4), library.read_bytes())
if count != 1:
    sys.exit(f"{library}: found {count} times of making instead of one")
library.write_bytes(untimed)
