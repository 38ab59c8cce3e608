#!/usr/bin/env python3
"""Cuts the power under talomake: records what its runs ask of the file system, and holds the promises against the
states that a crash may leave, at every moment of each run.

  power_cut.py <directory of the programs> [<states a moment> [<completing runs a job> [<seed> [<job>...]]]]

All states of a moment are looked at where they are few, else so many random ones. In a sample of them the same command
is run again and has to end with the album that it would have made. tests/support/crash_states.py tells what a crash may
leave.
"""

import concurrent.futures
import hashlib
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from crash_states import log_t, record_options  # noqa: E402

programs = pathlib.Path(sys.argv[1]).resolve()
states_a_moment = int(sys.argv[2]) if len(sys.argv) > 2 else 12
runs_a_job = int(sys.argv[3]) if len(sys.argv) > 3 else 10
seed = int(sys.argv[4]) if len(sys.argv) > 4 else random.randrange(100000)
skipped = 77

options = ["--shrink-size", "160,120"]
turned = ["--rotate", "IMG_0002.JPG=90"]
album = ["album", *options, *turned, "card", "album"]
talomake = [str(programs / "talomake")]
named = [str(programs / "restricted"), "--no-unnamed-files"]
save_words = [str(programs / "save_words"), "album", "IMG_0002.JPG"]


class failure_t(Exception):
    pass


def run(root, command, tracer=()):
    # What is traced can't look for its leaks.
    sanitizer = os.environ.get("ASAN_OPTIONS", "") + (":detect_leaks=0" if tracer else "")
    environment = {"HOME": str(root / "home"), "LC_ALL": "C", "ASAN_OPTIONS": sanitizer, "TALORAM_JOBS": "1"}
    return subprocess.run([*tracer, *command], cwd=root, env={**os.environ, **environment}, capture_output=True)


def need(root, *command):
    done = run(root, command)
    if done.returncode != 0:
        raise failure_t(f"{command} ended with {done.returncode}: {done.stderr.decode()}")


# The scenes: what is there before a job.

def make_card(root, name="card", photographs=3, first=1):
    need(root, str(programs / "make_samples"), name, str(photographs), str(first))
    movie = root / name / "MVI_9999.MOV"
    movie.write_bytes(movie.read_bytes()[:20000])


def other_album(root, *more):
    make_card(root, "other", 2, 1000)
    need(root, *talomake, "album", *options, *more, "--title", "Older", "other", "album")
    shutil.rmtree(root / "other")


def whole_album(root):
    (root / "home" / ".taloram").write_bytes(b"shrink_size=160,120\r\n")
    need(root, *talomake, *album)


def worded_album(root):
    whole_album(root)
    need(root, *save_words, "Old")


def wordless_album(root):
    whole_album(root)
    (root / "home" / ".taloram").unlink()
    shutil.rmtree(root / "album/txt")


def damaged_album(root):
    whole_album(root)
    for name in ("size1/IMG_0001.JPG", "thumb/IMG_0003.JPG", "size1/IMG_0003.JPG", "index.html"):
        (root / "album" / name).unlink()


def orphaned_album(root):
    whole_album(root)
    (root / "album/original/IMG_0001.JPG").unlink()


class job_t:
    """`lasts`: what the command has done can't be lost any more when it has ended."""

    def __init__(self, name, command, prepare=lambda root: None, complete=None, lasts=True):
        self.name, self.command, self.prepare, self.complete, self.lasts = name, command, prepare, complete, lasts


def complete_turn(job, root, before, after, state):
    """What killed_turns.sh asks for after a kill."""
    if differences(state, after) == [] or (
            not any(b"/.taloram-turned-" in path for path in state)
            and not differences(state, after, lambda path: b"/.taloram-turning-" not in path)):
        return  # done; the same command would turn once more, and be right
    expect(run(root, [*talomake, "update", *options, "album"]).returncode == 0, "the update fails")
    found = read_tree(root)
    expect(not differences(found, before) or not differences(found, after),
           lambda: f"neither unturned {differences(found, before)} nor turned {differences(found, after)}")
    shutil.rmtree(root)
    root.mkdir()
    write_state(root, state)
    complete_album(job, root, before, after, state)


jobs = [
    job_t("import", [*talomake, *album]),
    job_t("verified import", [*talomake, *album, "--verify"]),
    job_t("import into an album", [*talomake, *album, "--replace", "--title", "New"], other_album),
    job_t("verified import into an album", [*talomake, *album, "--replace", "--title", "New", "--verify"],
          lambda root: other_album(root, "--verify")),
    job_t("import without unnamed files", [*named, *talomake, *album, "--replace"], other_album),
    job_t("import by two processes", [*talomake, *album, "--jobs", "2"]),
    job_t("turn", [*talomake, "turn", "album", "90", "IMG_0001.JPG", "IMG_0002.JPG"],
          whole_album, complete_turn),
    job_t("update", [*talomake, "update", *options, "album"], damaged_album),
    job_t("texts and settings", [*save_words, "New"], worded_album),
    job_t("first texts and settings", [*save_words, "New"], wordless_album),
    job_t("prune", [*talomake, "update", "--prune", *options, "album"], orphaned_album, lasts=False),
]


# What has to hold.

def expect(holds, what):
    if not holds:
        raise failure_t(what() if callable(what) else what)


def read_tree(root):
    tree = {}
    for directory, directories, files in os.walk(os.fsencode(root)):
        start = os.path.relpath(directory, os.fsencode(root)) + b"/"
        start = b"" if start == b"./" else start
        for name in directories:
            tree[start + name] = None
        for name in files:
            content = pathlib.Path(os.fsdecode(directory), os.fsdecode(name)).read_bytes()
            tree[start + name] = (content, 0, hashlib.sha256(content).digest())
    return tree


def untimed(content):
    return re.sub(rb"HTML Generated: .*", b"", content)


def differences(a, b, is_meant=lambda path: True):
    def same(one, two):
        if isinstance(one, tuple) and isinstance(two, tuple):
            return one[2] == two[2] or untimed(one[0]) == untimed(two[0])
        return one == two
    return [os.fsdecode(path) for path in sorted({*a, *b})
            if is_meant(path) and (path not in a or path not in b or not same(a[path], b[path]))]


def is_kept(path):
    """Whatever nobody could make again; the count is written with the pages."""
    kept = rb"album/(original|movie|txt)/[^.].*|album/SHA256SUMS|home/\.taloram"
    return path != b"album/txt/count.txt" and re.fullmatch(kept, path) is not None


def describe(tree, path):
    if path not in tree:
        return "absent"
    return f"{len(tree[path][0])} bytes" if isinstance(tree[path], tuple) else "a directory"


def check_state(before, after, state, is_end, lasts):
    lost = differences(state, after, lambda path: b"/.taloram-" not in path) if is_end and lasts else []
    expect(not lost, f"not there in the end: {lost}")
    for path in {*before, *after, *state}:
        old, now, new = (tree[path][2] if isinstance(tree.get(path), tuple) else path in tree
                         for tree in (before, state, after))
        if path.startswith(b"card"):
            expect(now == old, f"{path} of the card changed")
        elif is_kept(path):
            expect(now in (old, new), lambda: f"{os.fsdecode(path)} is neither old nor new: {describe(state, path)}")


def write_state(root, state):
    nodes = {}
    for path, entry in state.items():
        place = os.path.join(os.fsencode(root), path)
        if entry is None:
            os.makedirs(place, exist_ok=True)
        elif isinstance(entry, str):
            os.symlink(entry, place)
        elif entry[3] in nodes:
            os.link(nodes[entry[3]], place)
        else:
            with open(place, "wb") as file:
                file.write(entry[0])
            os.utime(place, (entry[1], entry[1]))
            nodes[entry[3]] = place


def complete_album(job, root, before, after, state):
    done = run(root, job.command)
    expect(done.returncode == 0, lambda: f"run again it ends with {done.returncode}: {done.stderr.decode()}")
    found = differences(read_tree(root), after)
    expect(not found, f"run again it makes something else: {found}")


def check_verify(root, state):
    """`talomake verify` names all originals and movies that are not what was noted of them."""
    sums = state.get(b"album/SHA256SUMS")
    if sums is None:
        return
    noted = {path: line[:64] for line, path in
             ((line, line[66:]) for line in sums[0].decode().splitlines() if line and line[0] != "#")}
    kept = [path for path in state if re.fullmatch(rb"album/(original|movie)/[^.].*", path)]
    paths = {*noted, *(os.fsdecode(path)[len("album/"):] for path in kept)}
    wrong = {path for path in paths
             if not isinstance(state.get(b"album/" + path.encode()), tuple)
             or state[b"album/" + path.encode()][2].hex() != noted.get(path)}
    told = run(root, [*talomake, "verify", "album"])
    named = {path for path in paths if f"album/{path}:" in (told.stderr + told.stdout).decode()}
    expect(named == wrong and told.returncode == (1 if wrong else 0),
           lambda: f"verify names {named} instead of {wrong}")


def rerun(place, number, job, before, after, moment, state):
    root = place / f"state-{number}"
    root.mkdir()
    try:
        write_state(root, state)
        check_verify(root, state)
        (job.complete or complete_album)(job, root, before, after, state)
        shutil.rmtree(root)
    except failure_t as failure:
        return f"{job.name}, cut at {moment}: {failure} ({root})"
    return None


def play(job, place, dice):
    started = time.monotonic()
    root = place / "scene"
    root.mkdir(parents=True)
    (root / "home").mkdir()
    make_card(root)
    job.prepare(root)
    shutil.copytree(root, place / "before", symlinks=True)
    record = place / "record"
    recorded = run(root, job.command, ["strace", *record_options, "-o", str(record)])
    expect(recorded.returncode == 0, f"{job.name}: {recorded.stderr.decode()}")
    log = log_t(place / "before", root, record)
    before, after = read_tree(place / "before"), log.final_tree()
    missed = differences(after, read_tree(root))
    expect(not missed, f"{job.name}: the record does not tell of {missed}")
    seen, found, sample = set(), {}, []
    tried = 0
    for point in log.points:
        for state in log.states(point, states_a_moment, dice):
            tried += 1
            key = hash(tuple(sorted((path, entry[2] if isinstance(entry, tuple) else None)
                                    for path, entry in state.items())))
            is_end = point is log.points[-1]
            if key in seen and not is_end:
                continue
            seen.add(key)
            try:
                check_state(before, after, state, is_end, job.lasts)
            except failure_t as failure:
                found.setdefault(str(failure), f"{job.name}, cut at {point.what}: {failure}")
            # A sample of all that come.
            chosen = len(sample) if len(sample) < runs_a_job else dice.randrange(len(seen))
            if chosen < runs_a_job:
                sample[chosen:chosen + 1] = [(point.what, state)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = pool.map(lambda item: rerun(place, item[0], job, before, after, *item[1]), enumerate(sample))
        found.update({result: result for result in results if result})
    print(f"{job.name}: {len(log.points)} moments, {tried} states, {len(seen)} different, {len(sample)} completed, "
          f"{time.monotonic() - started:.1f} s", flush=True)
    told = 8
    more = [f"{job.name}: and {len(found) - told} more"] if len(found) > told else []
    return [*list(found.values())[:told], *more]


def main():
    if shutil.which("strace") is None or subprocess.run(["strace", "true"], capture_output=True).returncode != 0:
        print("skipped: nobody may trace here")
        return skipped
    print(f"seed {seed}")
    place = pathlib.Path(tempfile.mkdtemp())
    failures = []
    try:
        for job in jobs:
            if len(sys.argv) > 5 and job.name not in sys.argv[5:]:
                continue
            if named[0] in job.command and subprocess.run([*named, "true"], capture_output=True).returncode != 0:
                print(f"skipped: {job.name}")
                continue
            failures += play(job, place / job.name, random.Random(seed))
    finally:
        if not failures or "POWER_CUT_KEEP" not in os.environ:
            shutil.rmtree(place, ignore_errors=True)
    for failure in failures:
        print("failed: " + failure, file=sys.stderr)
    return 1 if failures else 0


sys.exit(main())
