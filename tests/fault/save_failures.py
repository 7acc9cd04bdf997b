#!/usr/bin/env python3
"""Saves that cannot be written: the disk is full, a limit on files is met, the reader of a pipe leaves, the path cannot be written.
Each is an error with its number; the session goes on with its values, and what stood at the path stands there still.

usage: save_failures.py --tolvex PATH
"""
import os
import resource
import subprocess
import sys
import threading

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

NOT_WRITTEN, NOT_OPENED = b"The file could not be written.", b"The file could not be opened."
OLD = b"x := 1;\n"
BUILD = "&(J = x)\np := (x + 1)^3000:\n"
AFTER = "p#(x = 1) - 2^3000 + 77\n"  # p is what it was


def session(binary, directory, lines, limit=None):
    """output and status"""
    def limit_files():
        if limit is not None:
            resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
    process = subprocess.Popen([binary], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                               cwd=directory, preexec_fn=limit_files)
    output, _ = process.communicate(lines.encode(), timeout=120)
    return output, process.returncode


def leave_pipe(path):
    """a reader that takes a little and goes"""
    def read():
        with open(path, "rb") as handle:
            handle.read(100)
    thread = threading.Thread(target=read, daemon=True)
    thread.start()
    return thread


def try_all(binary, directory):
    """the titles of what went wrong"""
    faults = []

    def check(title, lines, messages, limit=None, kept=("old",)):
        output, status = session(binary, directory, BUILD + lines + AFTER + "&q\n", limit)
        wrong = []
        if status != 0:
            wrong.append(f"status {status}")
        if not output.endswith(b"\n 77\n>\n bye\n"):
            wrong.append("the session has not gone on")
        found = output.count(NOT_WRITTEN), output.count(NOT_OPENED)
        if found != messages:
            wrong.append(f"messages {found}, expected {messages}")
        for name in kept:
            with open(os.path.join(directory, name), "rb") as handle:
                if handle.read() != OLD:
                    wrong.append(f"{name} has changed")
        left = [name for name in os.listdir(directory) if name.startswith(("old.", "new."))]
        if left:
            wrong.append(f"left behind: {left}")
        print(f"{title}: {'; '.join(wrong) or 'good'}")
        if wrong:
            faults.append(title)
            print(output[-800:].decode(errors="replace"))

    os.mkdir(os.path.join(directory, "folder"))
    os.mkfifo(os.path.join(directory, "pipe"))
    check("a limit on files, over an old file", "&(S = 'old')\n&s\n", (1, 0), limit=8192)
    check("a limit on files, a new file", "&(S = 'new')\n&s\n", (1, 0), limit=8192)
    check("saved again where there is room", "&(S = 'new')\n&s\n&(S = '/dev/null')\n&s\n", (1, 0), limit=8192)
    check("an output statement beyond the limit", "&(S = 'old')\n!(&o, p, p, p)\n&(S = '@')\n", (1, 0), limit=8192)
    check("one image", "&(S = 'one')\n&s\n", (0, 0))
    size = os.path.getsize(os.path.join(directory, "one"))
    check("the second image beyond the limit", "&(S = 'two')\n&s\n&s\n", (1, 0), limit=size + 100000)
    with open(os.path.join(directory, "one"), "rb") as one, open(os.path.join(directory, "two"), "rb") as two:
        if one.read() != two.read():
            faults.append("the second image beyond the limit: the first is not whole")
    if os.path.exists("/dev/full"):
        check("a full device", "&(S = '/dev/full')\n&s\n&(S = '/dev/full')\n!(&o, p)\n&(S = '@')\n", (2, 0))
    reader = leave_pipe(os.path.join(directory, "pipe"))
    check("a pipe whose reader leaves", "&(S = 'pipe')\n&s\n", (1, 0))
    reader.join(10)
    check("paths that cannot be written",
          "&(S = 'folder')\n&(S = 'no/such')\n&(S = 'old/x')\n&(S = '/proc/session')\n", (0, 4))
    if os.geteuid() != 0:
        os.chmod(os.path.join(directory, "folder"), 0o500)
        check("a folder that cannot be written", "&(S = 'folder/x')\n", (0, 1))
        os.chmod(os.path.join(directory, "folder"), 0o700)
        os.chmod(os.path.join(directory, "old"), 0o400)
        check("a file that cannot be written", "&(S = 'old')\n", (0, 1))
    return faults


def main():
    binary = trials.arguments().tolvex
    with trials.folder("failures", files={"old": OLD}) as directory:
        faults = try_all(binary, directory)
    return trials.list_faults(faults, "all tried")


if __name__ == "__main__":
    sys.exit(main())
