#!/usr/bin/python3
"""Shows a folder a second time, read-only, as a medium that answers late.

    slow_medium.py FOLDER MOUNT_POINT MILLISECONDS

Every request of the system takes that long at least; several at once take no longer. What an open
file had in the system's cache is asked for again at the next opening. The file .requests in the
mount point, which no listing names, answers at once: how many requests there have been. Runs until
it is unmounted.
"""

import os
import sys
import time

import fusepy

COUNTER = "/.requests"


class SlowMedium(fusepy.Operations):
    def __init__(self, folder, seconds):
        self.folder = folder
        self.seconds = seconds
        self.requests = 0

    def __call__(self, operation, path, *arguments):
        if path != COUNTER and operation in ("getattr", "open", "read", "readdir"):
            self.requests += 1
            time.sleep(self.seconds)
        return getattr(self, operation)(path, *arguments)

    def count(self):
        return b"%-12d\n" % self.requests

    def getattr(self, path, handle=None):
        if path == COUNTER:
            return {"st_mode": 0o100444, "st_nlink": 1, "st_size": len(self.count())}
        try:
            found = os.lstat(self.folder + path)
        except OSError as failure:
            raise fusepy.FuseOSError(failure.errno)
        names = ("st_mode", "st_nlink", "st_size", "st_uid", "st_gid", "st_mtime", "st_atime")
        return {name: getattr(found, name) for name in names}

    def readdir(self, path, handle):
        return [".", "..", *os.listdir(self.folder + path)]

    def open(self, path, flags):
        return 0 if path == COUNTER else os.open(self.folder + path, os.O_RDONLY)

    def read(self, path, size, offset, handle):
        return self.count() if path == COUNTER else os.pread(handle, size, offset)

    def release(self, path, handle):
        if path != COUNTER:
            os.close(handle)


def main():
    if len(sys.argv) != 4 or not sys.argv[3].isdigit() or not os.path.isdir(sys.argv[1]):
        sys.exit(__doc__.strip())
    medium = SlowMedium(os.path.realpath(sys.argv[1]), int(sys.argv[3]) / 1000)
    fusepy.FUSE(medium, sys.argv[2], foreground=True, ro=True)


main()
