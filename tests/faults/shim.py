"""A test's interface to the library that is preloaded into the daemon; see shim.c.

FAULT_SHIM_LIB names the library. It is not set under a sanitizer, which has its own allocator.
"""

import mmap
import os

LIBRARY = os.environ.get("FAULT_SHIM_LIB", "")

_FIELDS = ("until_failure", "to_fail", "failed", "seconds_ahead", "heap_in_use", "sleeps")
_SIZE = 8 * len(_FIELDS)


class Shim:
    """The fields of the shared file as attributes. `env` goes into the daemon's environment."""

    def __init__(self, path):
        object.__setattr__(self, "env", {"LD_PRELOAD": LIBRARY, "FAULT_SHIM": str(path)})
        with open(path, "w+b") as file:
            file.truncate(_SIZE)
            view = memoryview(mmap.mmap(file.fileno(), _SIZE))
        # Written in one piece: the daemon must never see a 0 while a -1 is being put together.
        object.__setattr__(self, "_numbers", view.cast("q"))
        self.until_failure = -1

    def __getattr__(self, name):
        return self._numbers[_FIELDS.index(name)]

    def __setattr__(self, name, value):
        self._numbers[_FIELDS.index(name)] = value

    def fail(self, after=0, count=-1):
        """Makes allocations fail from now on: first some succeed, then this many fail."""
        self.until_failure = -1
        self.to_fail, self.failed = count, 0
        self.until_failure = after

    def stop_failing(self):
        """Returns how many allocations have failed."""
        self.until_failure = -1
        return self.failed
