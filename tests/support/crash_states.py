#!/usr/bin/env python3
"""What a journalling file system may show after the power was cut, for every moment of a recorded run.

The record is what strace(1) writes with record_options; `log_t` reads it. Ops are kept in their order:

- names: creating, linking, renaming and removing entries of directories. An op that no fsync of one of its directories
  covers may have happened or not; ops on the same name happened in their order, and a rename happened as a whole.
- data: writing, truncating and dating a file. What no fsync of the file covers may be all there, missing, short or zero.

fsync of a file doesn't bring its name to the disk, fsync of a directory no data; syncfs brings all.
"""

import hashlib
import itertools
import os
import re

calls = ("openat,open,creat,close,dup,dup2,dup3,fcntl,write,pwrite64,writev,pwritev,pwritev2,ftruncate,truncate,fallocate,"
         "lseek,link,linkat,rename,renameat,renameat2,unlink,unlinkat,rmdir,mkdir,mkdirat,symlink,symlinkat,utimensat,"
         "copy_file_range,sendfile,splice,ioctl,fsync,fdatasync,syncfs,sync,msync,clone,clone3,fork,vfork")
record_options = ["-f", "-y", "-xx", "-ttt", "-s", "100000000", "-e", "signal=none", "-e", "trace=" + calls]

text_of = re.compile(r'"((?:\\x[0-9a-f]{2})*)"')
place_of = re.compile(r'(AT_FDCWD|\d+)<((?:\\x[0-9a-f]{2})*)>')


# Of data that no flush covers.
variants = ("full", "missing", "short", "zero")


def unhex(text):
    return bytes.fromhex(text.replace("\\x", ""))


class file_t:
    """A file's data ops, and how many of them are on the disk."""

    def __init__(self, content=b"", time=0.0):
        self.ops = [("write", 0, content, time)]
        self.flushed = 1
        self.states = {}

    def state(self, count, flushed, variant):
        """(bytes, time) after `count` ops of which `flushed` are on the disk for certain."""
        key = (count, flushed if variant != "full" else count, variant)
        if key not in self.states:
            content, time = self.replay(flushed if variant == "missing" else count)
            if variant in ("short", "zero"):
                kept = self.replay(flushed)[0]
                start = len(os.path.commonprefix([kept, content]))
                half = start + (len(content) - start) // 2
                content = content[:half] if variant == "short" else content[:start] + bytes(len(content) - start)
            self.states[key] = (content, time, hashlib.sha256(content).digest())
        return self.states[key]

    def replay(self, count):
        content, time = bytearray(), 0.0
        for kind, at, data, when in self.ops[:count]:
            if kind == "write":
                content[len(content):] = bytes(max(0, at - len(content)))
                content[at:at + len(data)] = data
            elif kind == "truncate":
                content[at:] = bytes(max(0, at - len(content)))
            time = when
        return bytes(content), time


class op_t:
    """Changes of names, made all or none: {(directory, name): node or None}."""

    def __init__(self, effects, before):
        self.effects = effects
        self.before = before  # ops that touched one of the names last
        self.durable = False


class point_t:
    """A moment: the names that are on the disk, the ops that may be, and how many data ops each file had."""

    def __init__(self, names, pending, data, what):
        self.names, self.pending, self.data, self.what = names, pending, data, what


class log_t:
    """Node 0 is the root; a node is in `files`, or it is a directory, or, with a text, a symbolic link."""

    def __init__(self, before, root, record):
        self.root = os.path.realpath(root).encode()
        self.files, self.links, self.names, self.directories = {}, {}, {}, {0}
        self.count = 0
        self.tables = {}  # by process: {descriptor: [node or path outside, position]}
        self.last_op = {}
        self.points = []
        self.pending = []
        self.touched = set()  # files with ops that no fsync covered
        self.read_tree(before, 0)
        self.durable = dict(self.names)
        with open(record, errors="surrogateescape") as lines:
            self.read_record(lines)
        self.note_point("the end")

    def new_node(self):
        self.count += 1
        return self.count

    def read_tree(self, path, node):
        for entry in sorted(os.scandir(path), key=lambda entry: entry.name):
            child = self.names[node, os.fsencode(entry.name)] = self.new_node()
            if entry.is_symlink():
                self.links[child] = os.readlink(entry.path)
            elif entry.is_dir():
                self.directories.add(child)
                self.read_tree(entry.path, child)
            else:
                with open(entry.path, "rb") as file:
                    self.files[child] = file_t(file.read(), entry.stat().st_mtime)

    # The record

    def read_record(self, lines):
        unfinished = {}
        for line in lines:
            pid, time, call = line.rstrip("\n").split(None, 2)
            if call.endswith("<unfinished ...>"):
                unfinished[pid] = call[:-len("<unfinished ...>")].rstrip()
                clone = re.match(r"(clone3?|v?fork)\(", call)
                if clone:  # its children may be seen before it returns
                    self.newest_parent = pid
                continue
            resumed = re.match(r"<\.\.\. \w+ resumed>(.*)", call)
            if resumed:
                call = unfinished.pop(pid) + resumed[1]
            parts = re.match(r"(\w+)\((.*)\)\s+= (-?\d+|\?)(.*)$", call)
            if not parts or parts[3] in ("?", "-1"):
                continue
            self.take(pid, float(time), parts[1], parts[2], int(parts[3]))

    def table(self, pid):
        if pid not in self.tables:
            parent = self.tables.get(getattr(self, "newest_parent", None), {})
            self.tables[pid] = {number: list(held) for number, held in parent.items()}
        return self.tables[pid]

    def lookup(self, path):
        """(directory, name, node) of an absolute path; node None when there is none; None outside of the root."""
        path = os.path.normpath(path)
        if path == self.root:
            return (None, b"", 0)
        if not path.startswith(self.root + b"/"):
            return None
        node, directory, name = 0, None, b""
        for name in path[len(self.root) + 1:].split(b"/"):
            directory, node = node, self.names.get((node, name))
        return None if directory is None else (directory, name, node)

    def resolve(self, pid, place, text):
        own = re.fullmatch(rb"/proc/self/fd/(\d+)", text)
        if own:
            return (None, b"", self.table(pid).get(int(own[1]), [None])[0])
        return self.lookup(os.path.join(place, text))

    def change(self, effects, what):
        before = {self.last_op[key] for key in effects if key in self.last_op}
        op = op_t(effects, before)
        for key, node in effects.items():
            self.last_op[key] = op
            self.names[key] = node
            if node is None:
                del self.names[key]
        self.pending.append(op)
        self.note_point(what)

    def add_data(self, node, *op):
        self.files[node].ops.append(op)
        self.touched.add(node)

    def note_point(self, what):
        data = {node: (len(file.ops), file.flushed) for node, file in self.files.items()}
        self.points.append(point_t(self.durable, list(self.pending), data, what))

    def flush_names(self, is_meant):
        self.note_point("before a flush")
        wanted = [op for op in self.pending if is_meant(op)]
        while wanted:
            op = wanted.pop()
            if not op.durable:
                op.durable = True
                wanted.extend(op.before)
        self.durable = dict(self.durable)
        for op in [op for op in self.pending if op.durable]:
            for key, node in op.effects.items():
                self.durable[key] = node
                if node is None:
                    del self.durable[key]
        self.pending = [op for op in self.pending if not op.durable]
        self.note_point("after a flush")

    def flush_data(self, node):
        self.note_point("before a flush")
        self.files[node].flushed = len(self.files[node].ops)
        self.touched.discard(node)

    def take(self, pid, time, call, arguments, result):
        texts = [unhex(text) for text in text_of.findall(arguments)]
        places = place_of.findall(arguments)
        table = self.table(pid)
        numbers = [int(number) for number, _ in places if number != "AT_FDCWD"]
        if call in ("clone", "clone3", "fork", "vfork"):
            self.tables.setdefault(str(result), {n: list(held) for n, held in table.items()})
        elif call in ("openat", "open", "creat"):
            self.take_open(pid, time, call, arguments, result, texts[0], places)
        elif call == "close":
            table.pop(numbers[0], None)
        elif call in ("dup", "dup2", "dup3") or (call == "fcntl" and "F_DUPFD" in arguments):
            if numbers[0] in table:
                table[result] = table[numbers[0]]
        elif call in ("fsync", "fdatasync"):
            node = table.get(numbers[0], [None])[0]
            if node in self.files:
                self.flush_data(node)
            elif node is not None:
                self.flush_names(lambda op: any(key[0] == node for key in op.effects))
        elif call in ("syncfs", "sync"):
            for node in list(self.touched):
                self.flush_data(node)
            self.flush_names(lambda op: True)
        elif call in ("write", "pwrite64", "ftruncate", "fallocate", "lseek"):
            self.take_data(time, call, arguments, result, table.get(numbers[0]) if numbers else None, texts)
        elif call in ("fcntl", "msync"):
            pass
        elif call == "ioctl":
            if "FICLONE" in arguments:
                raise RuntimeError("not understood: " + call)
        elif call in ("writev", "pwritev", "pwritev2", "copy_file_range", "sendfile", "splice", "truncate"):
            if any(table.get(number, [None])[0] is not None for number in numbers) or call == "truncate":
                raise RuntimeError("not understood: " + call)
        else:
            self.take_names(pid, time, call, arguments, texts, [unhex(place) for _, place in places])

    def take_open(self, pid, time, call, arguments, result, text, places):
        found = self.resolve(pid, unhex(places[0][1]) if places else self.root, text)
        node = found[2] if found else None
        if found and "O_TMPFILE" in arguments:
            node = self.new_node()
            self.files[node] = file_t(time=time)
        elif found and node is None:
            node = self.new_node()
            self.files[node] = file_t(time=time)
            self.change({found[:2]: node}, "create " + os.fsdecode(text))
        elif node in self.files and ("O_TRUNC" in arguments or call == "creat") and self.files[node].replay(None)[0]:
            self.add_data(node, "truncate", 0, b"", time)
        self.table(pid)[result] = [node, 0]

    def take_data(self, time, call, arguments, result, held, texts):
        if held is None or held[0] not in self.files:
            return
        node = held[0]
        last = re.search(r"(\d+)$", arguments)
        if call == "lseek":
            held[1] = result
        elif call == "write":
            self.add_data(node, "write", held[1], texts[0][:result], time)
            held[1] += result
        elif call == "pwrite64":
            self.add_data(node, "write", int(last[1]), texts[0][:result], time)
        elif call == "ftruncate":
            self.add_data(node, "truncate", int(last[1]), b"", time)
        else:
            mode, at, size = re.search(r", (\w+), (\d+), (\d+)$", arguments).groups()
            length = len(self.files[node].replay(None)[0])
            if mode == "0" and int(at) + int(size) > length:
                self.add_data(node, "write", length, bytes(int(at) + int(size) - length), time)

    def take_names(self, pid, time, call, arguments, texts, places):
        places += [self.root] * 2  # where the run was started
        if call == "utimensat":
            found = self.resolve(pid, places[0], texts[0]) if texts else self.lookup(places[0])
            times = re.findall(r"tv_sec=(\d+), tv_nsec=(\d+)", arguments)
            if found and found[2] in self.files and times:
                self.add_data(found[2], "date", 0, b"", int(times[-1][0]) + int(times[-1][1]) / 1e9)
            return
        first = self.resolve(pid, places[0], texts[0])
        second = self.resolve(pid, places[1 if call.endswith("at") or call == "renameat2" else 0], texts[-1])
        what = call + " " + " ".join(os.fsdecode(text) for text in texts)
        if call in ("unlink", "unlinkat", "rmdir") and first:
            self.change({first[:2]: None}, what)
        elif call in ("mkdir", "mkdirat") and first:
            node = self.new_node()
            self.directories.add(node)
            self.change({first[:2]: node}, what)
        elif call in ("link", "linkat") and second:
            self.change({second[:2]: first[2]}, what)
        elif call.startswith("rename") and second:
            if first[2] != second[2]:
                self.change({first[:2]: None, second[:2]: first[2]}, what)
        elif call.startswith("symlink") and first:
            node = self.new_node()
            self.links[node] = os.fsdecode(texts[0])
            self.change({second[:2]: node}, what)

    # States

    def tree(self, names, data):
        """{path: (content, time, digest, node) of a file, text of a link, or None for a directory}"""
        children = {}
        for (directory, name), node in names.items():
            children.setdefault(directory, []).append((name, node))
        tree = {}

        def walk(directory, start):
            for name, node in children.get(directory, ()):
                path = start + name
                if node in self.files:
                    tree[path] = data(node)
                elif node in self.links:
                    tree[path] = self.links[node]
                else:
                    tree[path] = None
                    walk(node, path + b"/")

        walk(0, b"")
        return tree

    def final_tree(self):
        return self.tree(self.names, lambda node: self.files[node].state(len(self.files[node].ops), 0, "full") + (node,))

    def state_of(self, point, is_done, variant_of):
        """The tree of one state: `is_done` chooses among the ops that may have happened, `variant_of` by file."""
        names = dict(point.names)
        skipped = set()
        for op in point.pending:
            if op.before & skipped or not is_done(op):
                skipped.add(op)
                continue
            for key, node in op.effects.items():
                names[key] = node
                if node is None:
                    del names[key]
        chosen = {}

        def data(node):
            if node not in chosen:
                count, flushed = point.data[node]
                variant = "full" if count == flushed else variant_of(node)
                chosen[node] = self.files[node].state(count, flushed, variant) + (node,)
            return chosen[node]

        return self.tree(names, data)

    def states(self, point, limit, dice):
        """Trees of `point`: all of them where there are no more than `limit`, else the extremes and random ones."""
        files = [node for node, (count, flushed) in point.data.items() if count != flushed]
        if len(variants) ** len(files) * 2 ** len(point.pending) <= limit:
            for done in itertools.product((True, False), repeat=len(point.pending)):
                for chosen in itertools.product(variants, repeat=len(files)):
                    is_done = dict(zip(point.pending, done))
                    yield self.state_of(point, is_done.get, dict(zip(files, chosen)).get)
            return
        for variant in variants:
            yield self.state_of(point, lambda op: True, lambda node, variant=variant: variant)
        for _ in range(limit - len(variants)):
            likely = dice.choice((0.5, 0.9, 1.0))
            whole = dice.choice((0.0, 0.5, 0.9))
            # Half of them as the disk of a quiet system is: what was done first is there.
            reached = dice.randrange(len(point.pending) + 1) if dice.random() < 0.5 else None
            order = {op: number for number, op in enumerate(point.pending)}
            yield self.state_of(
                point,
                lambda op: order[op] < reached if reached is not None else dice.random() < likely,
                lambda node: "full" if dice.random() < whole else dice.choice(variants))
