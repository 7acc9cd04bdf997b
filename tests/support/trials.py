"""What the test programs share: their arguments, a folder to work in, the messages of the program, the last line."""
import argparse
import contextlib
import math
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import tempfile

TROUBLE = re.compile(rb"leak audit|CHECK failed|Sanitizer|runtime error:")  # what a checked build complains of
BUSY = 30  # on a busy machine a session lasts so many times its processor time


def arguments(*words, **options):
    """--tolvex PATH, made absolute; --NAME for each option, a default that is a type standing for None; a list for each word"""
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    for name, default in options.items():
        if default is False:
            parser.add_argument("--" + name, action="store_true")
        elif isinstance(default, type):
            parser.add_argument("--" + name, type=default)
        elif isinstance(default, list):
            parser.add_argument("--" + name, nargs="*", default=default or None)
        else:
            parser.add_argument("--" + name, type=type(default), default=default)
    for word in words:
        parser.add_argument(word, nargs="+")
    args = parser.parse_args()
    args.tolvex = os.path.abspath(args.tolvex)
    return args


def any_seed():
    return random.randrange(10**6)


def write_files(directory, files):
    """name -> text or bytes"""
    for name, content in files.items():
        path = os.path.join(directory, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as handle:
            handle.write(content if isinstance(content, bytes) else content.encode())


@contextlib.contextmanager
def folder(prefix, megabytes=500, files=()):
    """a new folder, gone afterwards, with these files and a start-up script that names so many megabytes (None: without)"""
    directory = tempfile.mkdtemp(prefix=prefix + "-")
    try:
        script = {} if megabytes is None else {"tolstart.txt": f"{megabytes}\n"}
        write_files(directory, {**script, **dict(files)})
        yield directory
    finally:
        shutil.rmtree(directory, ignore_errors=True)


def session(binary, text, directory, limit, **streams):
    """what a session answers to this text, as of subprocess.run; subprocess.TimeoutExpired after `limit` seconds of processor
    time, or when it waits for ever"""
    seconds = math.ceil(limit)
    streams = streams or {"input": text, "capture_output": True}
    done = subprocess.run([binary], cwd=directory, timeout=BUSY * seconds, check=False, **streams,
                          preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 5)))
    if done.returncode == -signal.SIGXCPU:
        raise subprocess.TimeoutExpired(binary, limit)
    return done


def messages(binary):
    """the texts of the errors, as much of each as a report is told by"""
    with open(os.path.join(os.path.dirname(os.path.realpath(binary)), "BACKWARD", "Qerrs"), encoding="utf-8") as handle:
        return [line.rstrip("\n")[:65] for line in handle][:376]


def verdict(passed, failed):
    """the last line, and the status of the program"""
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


def random_trials(args, prefix, attempt, good, bad):
    """attempt(directory, rng) for args.count cases of args.seed: what went wrong, or ''. Prints the seed, what failed, and how
    many came out `good` and `bad`."""
    print(f"seed {args.seed}")
    failed = 0
    with folder(prefix) as directory:
        for k in range(args.count):
            report = attempt(directory, random.Random(f"{args.seed}:{k}"))
            if report:
                failed += 1
                print(f"FAILED {k}: {report}", flush=True)
    print(f"{args.count - failed} {good}, {failed} {bad}")
    return 1 if failed else 0


def list_faults(faults, summary):
    """the faults and the last line; the status of the program"""
    for fault in faults:
        print(fault)
    print(f"{summary}, {len(faults)} faults")
    return 1 if faults else 0
