#!/usr/bin/env python3
"""A statement that fails leaves everything as it was: for every error number that a transcript meets.

usage: errors_change_nothing.py --tolvex PATH [--only N] [--each K] [--scale F] [--verbose]

The transcripts are the source of failing statements: the line sent before {msg N} raises error N. The case is sent again
up to that line, behind a prologue that makes variables, functions, arrays and sets switches; right before and right after
the line the session is saved and the settings are listed. Between the two the report with the message must stand, and
both images must be the same; new names with the value 0 may have come (a name is created when its ":" is seen). At most K
lines are tried for each number (default 3), and one that changes nothing is wanted. CHANGING names the numbers whose
statements end their work before they fail, with the reason.
"""
import glob
import os
import re
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "support"))
import run  # noqa: E402, the neighbour
import trials  # noqa: E402
PROLOGUE = ["zzi := 5:", "zzr := 3/7:", "zzb := 7^60:", "Func Zzf(x) = x^2 + 1.", "Array zza[2,2]:", "[zza] := 4:",
            "Array zzs[3,3] Sparse:", "zzs[2,3] := 9:", "&(u = 3):", "&(_d = 70):", "&(m = 2):", "&c:"]
MARK = "zzmark"

# Numbers whose statements have done something before they fail, or end the work of others.
CHANGING = {
    29: "the body has made the array by then",
    30: "the body has cancelled the array",
    52: "the loop variable has its first value by then",
    79: "the loop variable has its first value by then",
    80: "the loop variable has its first value by then",
    95: "the name before the bad sign is deleted",
    336: "the loop variable has its first value by then",
    342: "a warning: the statement goes on",
    369: "saving gives elements without a value the value 0",
}


def candidates(path):
    """(number, case, lines sent before the failing one, that line) of one file"""
    for case in run.parse(path):
        if any(case.options.get(k) for k in ("startup", "stdin", "eof", "status")) or case.lists["without"] or \
                case.lists["damage"]:
            continue
        with open(path, encoding="utf-8") as handle:
            lines = handle.read().split("\n")[case.line:]
        sent, in_file = [], False
        for text in lines:
            if text.startswith("# ") or text == "restart":
                break
            if in_file or text.startswith("file "):
                in_file = text != "endfile"
            elif text == ">" or text.startswith("> "):
                sent.append(text[2:].encode())
            elif text.startswith((">~ ", ">b ")):
                break
            else:
                found = re.fullmatch(r"\{msg (\d+)\}", text)
                if found and sent:
                    yield int(found.group(1)), case, sent[:-1], sent[-1]


def image(name):
    """lines that save the session as `name` and list its settings behind a mark"""
    return [b"&(S = '%s');" % name, b"&s;", b"&(S = '@');", b"!('" + MARK.encode() + b"'):", b"&g;",
            b"!('" + MARK.encode() + b"'):"]


def attempt(binary, case, prologue, before, between, scale):
    """The output in pieces around the marks and the two images; None if it did not get that far."""
    text = [line.encode() for line in prologue] + before + image(b"zzone") + between + image(b"zztwo") + [b"&q"]
    with trials.folder("unchanged", files=case.files) as directory:
        try:
            done = trials.session(binary, b"\n".join(text) + b"\n", directory, 20 * scale)
        except subprocess.TimeoutExpired:
            return None
        pieces = done.stdout.decode("utf-8", "replace").split(MARK)
        images = []
        for name in ("zzone", "zztwo"):
            if not os.path.exists(os.path.join(directory, name)):
                return None
            with open(os.path.join(directory, name), encoding="utf-8", errors="replace") as handle:
                images.append(handle.read())
    return (pieces, images) if len(pieces) == 5 and done.returncode == 0 else None


def fresh_names_apart(text, other):
    """the lines, without those of names that the other image does not have and that hold 0"""
    return [line for line in text.split("\n") if line in other or not re.fullmatch(r" \w+ := 0;", line)]


def settings(piece):
    return [line for line in piece.split("\n") if not re.search(r"[Mm]em|available|bytes|time|file", line)]


def judge(binary, number, case, before, line, messages, scale):
    """'' if the statement fails with that number and changes nothing, else what is wrong"""
    for prologue in (PROLOGUE, []):
        for back in range(0, min(len(before), 20) + 1):
            at = len(before) - back
            result = attempt(binary, case, prologue, before[:at], before[at:] + [line], scale)
            if result is None:
                continue
            pieces, images = result
            if messages[number - 1] not in pieces[2] or "*** Inappropriate symbol:" not in pieces[2]:
                continue
            if back > 0 and before[at:] and any(b":=" in b for b in before[at:]):
                return "the statement has several lines"
            if fresh_names_apart(images[1], images[0]) != images[0].split("\n"):
                ours, theirs = images[0].split("\n"), images[1].split("\n")
                return "the image changed: " + "; ".join([f"-{x}" for x in ours if x not in theirs][:3] +
                                                         [f"+{x}" for x in theirs if x not in ours][:3])
            if settings(pieces[1]) != settings(pieces[3]):
                return "the settings changed"
            return ""
    return "not raised again"


def main():
    args = trials.arguments(only=int, each=3, scale=1.0, verbose=False)
    messages = trials.messages(args.tolvex)
    by_number = {}
    for path in sorted(glob.glob(os.path.join(HERE, "*", "*.script"))):
        for number, *rest in candidates(path):
            by_number.setdefault(number, []).append(rest)
    unchanged, faults = 0, []
    for number, found in sorted(by_number.items()):
        if args.only is not None and number != args.only:
            continue
        reports = []
        for case, before, line in found[:args.each]:
            report = judge(args.tolvex, number, case, before, line, messages, args.scale)
            reports.append(f"{os.path.relpath(case.name)}: {line.decode()}: {report}")
            if report == "":
                break
        good = reports[-1].endswith(": ")
        unchanged += good
        if good == (number in CHANGING):
            faults.append(f"error {number}: " + ("changes nothing, and stands among those that do" if good else "\n    ".join(reports)))
        if args.verbose:
            print(number, "unchanged" if good else reports, flush=True)
    return trials.list_faults(faults, f"{len(by_number)} numbers met, {unchanged} change nothing, {len(CHANGING)} may")


if __name__ == "__main__":
    sys.exit(main())
