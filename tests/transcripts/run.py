#!/usr/bin/env python3
"""Replays the terminal transcripts of the project: tests/transcripts/<topic>/*.script.

usage: run.py --tolvex PATH [--only REGEX] [--scale F] FILES...

A file holds cases; a case begins with a title line '# ...'. Before the first line that is sent:

  startup: yes      the output before the first prompt counts too
  blank: exact      empty lines count
  eof: yes          the input ends without '&q'
  stdin: file       standard input is a regular file
  status: N         exit status (default 0)
  prompt: TEXT      another text that is a prompt at line starts (default >)
  absent: TEXT      must not occur in the output
  quit: no          the farewell line is not expected
  without: NAME     the data file NAME is missing (the binary is run from a copy of its directory)
  damage: NAME K=V  word K of the data file NAME (from 0, negative from the end) is replaced by V
  file NAME ... endfile    a file in the working directory, with the directories of its name ('file NAME nolf':
                           without its last line feed); tolstart.txt is the line '500' if it is not given;
                           'nofile NAME' leaves it out

Then '> TEXT' is sent as a line ('>~ TEXT' without the line feed, '>b TEXT' with Python escapes such as \\x00), every
other line is expected: as it stands, {has}TEXT, {re}REGEX, {msg N} (message N of the data directory), or '...' for
any number of lines. Prompts at line starts are removed.

  restart                  a new process in the same directory; what follows is sent to it
  saved NAME ... endsaved  the lines of a file when the process has ended, empty ones left out, as expected lines

Anything on standard error that a checked build writes ("leak audit", "CHECK failed", sanitizer reports) fails the case.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

HEADER = re.compile(r"^(startup|blank|eof|stdin|status|prompt|absent|quit|without|damage|nofile|time): ?(.*)$")
TROUBLE = re.compile(trials.TROUBLE.pattern.decode())
FAREWELL = " bye"


class Session:
    """what one process is sent, what it answers, and the files that it leaves"""

    def __init__(self):
        self.sent, self.expect, self.saved = [], [], []


class Case:
    def __init__(self, path, line, title):
        self.path, self.line, self.title = path, line, title
        self.options, self.lists = {}, {"prompt": [], "absent": [], "without": [], "damage": [], "nofile": []}
        self.files = {}
        self.sessions = [Session()]

    @property
    def name(self):
        return f"{os.path.relpath(self.path)}:{self.line} {self.title}"


def parse(path):
    with open(path, encoding="utf-8") as handle:
        lines = handle.read().split("\n")
    if lines and lines[-1] == "":
        lines.pop()
    cases, case, i = [], None, 0
    while i < len(lines):
        text, i = lines[i], i + 1
        if text.startswith("# "):
            case = Case(path, i, text[2:].strip())
            cases.append(case)
            continue
        if case is None:
            if text.strip():
                sys.exit(f"{path}:{i}: text before the first title")
            continue
        session = case.sessions[-1]
        begun = session.sent or session.expect or len(case.sessions) > 1
        header = None if begun else HEADER.match(text)
        if header:
            key, value = header.groups()
            if key in case.lists:
                case.lists[key].append(value)
            else:
                case.options[key] = value.strip()
        elif text == "restart":
            case.sessions.append(Session())
        elif text.startswith("saved "):
            end = lines.index("endsaved", i)
            session.saved.append((text[6:].strip(), [(k + 1, lines[k]) for k in range(i, end) if lines[k]]))
            i = end + 1
        elif text.startswith("file ") and not begun:
            end = lines.index("endfile", i)
            name, content = text[5:].strip(), "".join(t + "\n" for t in lines[i:end])
            if name.endswith(" nolf"):
                name, content = name[:-5], content[:-1]
            case.files[name], i = content, end + 1
        elif text == ">" or text.startswith("> "):
            session.sent.append(text[2:].encode() + b"\n")
        elif text.startswith(">~ "):
            session.sent.append(text[3:].encode())
        elif text.startswith(">b "):
            session.sent.append(text[3:].encode().decode("unicode_escape").encode("latin-1") + b"\n")
        else:
            session.expect.append((i, text))
    for case in cases:
        for session in case.sessions:
            finish_session(case, session)
    return cases


def finish_session(case, session):
    if case.options.get("blank") != "exact":
        session.expect = [e for e in session.expect if e[1] != ""]
    while session.expect and session.expect[-1][1] == "":
        session.expect.pop()
    if not session.sent and case.options.get("eof") != "yes":
        sys.exit(f"{case.name}: nothing is sent")


def matches(pattern, text, messages):
    if pattern.startswith("{has}"):
        return pattern[5:] in text
    if pattern.startswith("{re}"):
        return re.fullmatch(pattern[4:], text) is not None
    if re.fullmatch(r"\{msg \d+\}", pattern):
        return text == messages[int(pattern[5:-1]) - 1]
    return pattern == text


def compare(expect, lines, messages):
    """'' when all matches, else an account of where it stopped"""
    reach, stop = {0}, (0, 0)
    for k, (_, pattern) in enumerate(expect):
        if pattern == "...":
            reach = set(range(min(reach), len(lines) + 1))
            continue
        stop = (k, max(reach))
        reach = {p + 1 for p in reach if p < len(lines) and matches(pattern, lines[p], messages)}
        if not reach:
            break
    else:
        if len(lines) in reach:
            return ""
        stop = (len(expect), max(reach))
    k, p = stop
    out = ["  expected:"] + [f"  {'-->' if j == k else '   '} {expect[j][0]:4d} |{expect[j][1]}"
                             for j in range(max(0, k - 3), min(len(expect), k + 5))]
    out += ["  actual:"] + [f"  {'-->' if j == p else '   '} {j + 1:4d} |{lines[j][:200]}"
                            for j in range(max(0, p - 3), min(len(lines), p + 7))]
    return "\n".join(out)


def binary_for(case, binary, directory):
    """the binary, or a copy beside a data directory that the case has spoilt"""
    if not case.lists["without"] and not case.lists["damage"]:
        return binary
    home = os.path.join(directory, "home")
    os.mkdir(home)
    shutil.copy(binary, home)
    shutil.copytree(os.path.join(os.path.dirname(os.path.realpath(binary)), "BACKWARD"),
                    os.path.join(home, "BACKWARD"))
    for name in case.lists["without"]:
        os.remove(os.path.join(home, "BACKWARD", name))
    for line in case.lists["damage"]:
        name, change = line.split()
        place, value = change.split("=")
        path = os.path.join(home, "BACKWARD", name)
        with open(path, encoding="latin-1") as handle:
            words = handle.read().split()
        words[int(place)] = value
        with open(path, "w", encoding="latin-1") as handle:
            handle.write("\n".join(words) + "\n")
    return os.path.join(home, os.path.basename(binary))


def visible(case, output):
    prompts = [">"] + case.lists["prompt"]
    one = "(?:" + "|".join(re.escape(p) for p in sorted(prompts, key=len, reverse=True)) + ")"
    text = output.decode("utf-8", "replace")
    if case.options.get("startup") != "yes":
        first = re.search(f"(?:^|\n)(?={one})", text)
        text = text[first.end():] if first else text
    lines = []
    for line in text.split("\n"):
        while re.match(f"[2-9]?{one}", line):
            level = re.match(f"([2-9]?){one}", line)
            line = line[level.end():]
            if level.group(1):
                lines.append(level.group(0))
        lines.append(line)
    if lines and lines[-1] == "":
        lines.pop()
    if case.options.get("blank") != "exact":
        lines = [line for line in lines if line != ""]
    if case.options.get("quit") != "no":
        if not lines or lines[-1] != FAREWELL:
            return None, "\n".join(lines[-12:])
        lines.pop()
        while lines and lines[-1] == "":
            lines.pop()
    return lines, ""


def run_session(case, session, program, directory, messages, scale):
    text = b"".join(session.sent)
    if case.options.get("eof") != "yes" and not text.endswith((b"&q\n", b"&Q\n")):
        text += (b"" if text.endswith(b"\n") else b"\n") + b"&q\n"
    limit = float(case.options.get("time", "10")) * scale
    try:
        if case.options.get("stdin") == "file":
            with tempfile.TemporaryFile() as handle:
                handle.write(text)
                handle.seek(0)
                done = trials.session(program, None, directory, limit, stdin=handle, capture_output=True)
        else:
            done = trials.session(program, text, directory, limit)
    except subprocess.TimeoutExpired:
        return f"  no end within {limit:g} s of processor time"
    errors = done.stderr.decode("utf-8", "replace")
    if TROUBLE.search(errors):
        return "  " + "\n  ".join(errors.split("\n")[:25])
    status = int(case.options.get("status", "0"))
    if done.returncode != status:
        tail = done.stdout.decode("utf-8", "replace")[-800:]
        return f"  exit status {done.returncode}, expected {status}\n{tail}\n{errors[:800]}"
    lines, tail = visible(case, done.stdout)
    if lines is None:
        return f"  the output does not end with '{FAREWELL}':\n{tail}"
    for text in case.lists["absent"]:
        if any(text in line for line in lines):
            return f"  unwanted text: {text}"
    return compare(session.expect, lines, messages) or compare_files(session, directory, messages)


def compare_files(session, directory, messages):
    for name, expect in session.saved:
        path = os.path.join(directory, name)
        if not os.path.exists(path):
            return f"  no file {name}"
        with open(path, encoding="utf-8") as handle:
            report = compare(expect, [line for line in handle.read().split("\n") if line], messages)
        if report:
            return f"  the file {name}\n{report}"
    return ""


def run(case, binary, messages, scale):
    left_out = case.lists["nofile"]
    with trials.folder("transcript", None if "tolstart.txt" in left_out else 500,
                       {name: text for name, text in case.files.items() if name not in left_out}) as directory:
        program = binary_for(case, binary, directory)
        for session in case.sessions:
            report = run_session(case, session, program, directory, messages, scale)
            if report:
                return report
        return ""


def main():
    args = trials.arguments("files", only=str, scale=1.0)
    messages = trials.messages(args.tolvex)
    passed = failed = 0
    for case in (case for path in args.files for case in parse(path)):
        if args.only and not re.search(args.only, case.name):
            continue
        report = run(case, args.tolvex, messages, args.scale)
        if report:
            failed += 1
            print(f"FAILED {case.name}\n{report}", flush=True)
        else:
            passed += 1
    return trials.verdict(passed, failed)


if __name__ == "__main__":
    sys.exit(main())
