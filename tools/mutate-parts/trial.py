"""Builds one mutant beside the finished build and runs the tests on it. Nothing of the tree or of the build is altered."""
import json
import os
import re
import shlex
import shutil
import signal
import subprocess
import tempfile
import threading

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
# Debug information and warnings say nothing about what a mutant does.
COMPILE_EXTRA = ["-g0", "-w"]
MEMORY_LIMIT = 4 << 30
NOBODY = 65534


class Stopped(Exception):
    """The run was interrupted."""


class Processes:
    """All that runs, so that an interrupt ends it."""

    def __init__(self):
        self.lock, self.running, self.stopped = threading.Lock(), set(), False

    def run(self, command, seconds, **options):
        """Returns status and output; the status is None when the time was over."""
        with self.lock:
            if self.stopped:
                raise Stopped
            # A file and no pipe, which a forgotten child would keep open.
            output = tempfile.TemporaryFile()
            process = subprocess.Popen(
                command, stdin=subprocess.DEVNULL, stdout=output, stderr=output, start_new_session=True, **options
            )
            self.running.add(process)
        try:
            status = process.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            status = None
        finally:
            self.end(process)
        if self.stopped:
            raise Stopped
        output.seek(0)
        with output:
            return status, output.read().decode(errors="replace")

    def end(self, process):
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()
        with self.lock:
            self.running.discard(process)

    def stop(self):
        with self.lock:
            self.stopped = True
            running = list(self.running)
        for process in running:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass


class Build:
    """What the finished build says: how every source is compiled and how the test program is linked."""

    def __init__(self, build, root, room, program, work):
        self.build, self.root, self.room, self.work = build, root, room, work
        self.tree = os.path.join(work, "tree")
        self.commands, self.object_sources = self.compile_commands()
        self.link = self.link_command(program)
        self.linked = {self.object_sources[path] for path in map(self.in_build, self.link) if path in self.object_sources}
        self.includes = {}

    def in_build(self, word):
        return os.path.normpath(os.path.join(self.build, word))

    def compile_commands(self):
        commands, sources = {}, {}
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as file:
            for entry in json.load(file):
                words = shlex.split(entry["command"])
                output = words[words.index("-o") + 1]
                name = os.path.relpath(os.path.join(entry["directory"], entry["file"]), self.root)
                path = os.path.normpath(os.path.join(entry["directory"], output))
                # A source may belong to several targets; the library's own object is the one that counts.
                if name not in commands or f"{self.room}_objects" in path:
                    commands[name] = [word for word in words if word not in ("-c", "-o", output) and not word.endswith(entry["file"])]
                sources[path] = name
        return commands, sources

    def link_command(self, program):
        lines = subprocess.run(
            ["ninja", "-C", self.build, "-t", "commands", program], check=True, capture_output=True, text=True
        ).stdout.splitlines()
        line = next(line for line in reversed(lines) if f"-o bin/{program}" in line)
        for part in line.split("&&"):
            if f"-o bin/{program}" in part:
                words = shlex.split(part)
                return [word for word in words if word != "-g" and not word.startswith("-Wl,--dependency-file")]
        raise SystemExit(f"There is no link command of {program}.")

    def snapshot(self, names):
        """Copies the sources and, without debug information, all that is linked."""
        refresh(self.work, "tree")
        for name in names:
            target = os.path.join(self.tree, name)
            os.makedirs(os.path.dirname(target), exist_ok=True)
            shutil.copy2(os.path.join(self.root, name), target)
        refresh(self.work, "objects")
        for index, word in enumerate(self.link):
            path = self.in_build(word)
            if word.endswith((".o", ".a")) and path.startswith(self.build + os.sep):
                target = os.path.join(self.work, "objects", os.path.relpath(path, self.build))
                os.makedirs(os.path.dirname(target), exist_ok=True)
                subprocess.run(["strip", "--strip-debug", "-o", target, path], check=True)
                self.link[index] = target
        self.link_sources = {}
        for path, name in self.object_sources.items():
            self.link_sources[os.path.join(self.work, "objects", os.path.relpath(path, self.build))] = name

    def compile_command(self, name, overlay, output, level):
        words = []
        known = self.commands[name]
        for word in known if level == "-O0" else without_precompiled(known):
            if word == f"-I{self.root}":
                words += [f"-I{overlay}", f"-I{self.tree}"]
            elif not re.fullmatch(r"-O\w|-g\w*|.*ccache", word):
                words.append(word)
        copy = os.path.join(overlay, name)
        if not os.path.exists(copy):
            copy = os.path.join(self.tree, name)
        same_place = [f"-ffile-prefix-map={folder}=." for folder in (overlay, self.tree)]
        return [*words, *COMPILE_EXTRA, level, *same_place, "-c", copy, "-o", output]

    def dependents(self, header):
        """The linked sources that see the header, the room's own ones first."""
        found = [name for name in self.linked if header in self.closure(name, set())]
        return sorted(found, key=lambda name: (not name.startswith(f"{self.room}/src/"), name))

    def closure(self, name, seen):
        if name not in self.includes:
            try:
                with open(os.path.join(self.tree, name), encoding="utf-8") as file:
                    self.includes[name] = INCLUDE.findall(file.read())
            except FileNotFoundError:
                self.includes[name] = []
        for target in self.includes[name]:
            if target not in seen:
                seen.add(target)
                self.closure(target, seen)
        return seen


def without_precompiled(words):
    """The compiler takes precompiled headers only at the level that they were made with."""
    kept, index = [], 0
    while index < len(words):
        is_given = words[index] == "-Xclang" and words[index + 1] in ("-include-pch", "-include")
        if not is_given and words[index] != "-Winvalid-pch":
            kept.append(words[index])
        index += 4 if is_given else 1
    return kept


def refresh(work, name):
    """Makes an empty folder of that name directly below the tool's own folder."""
    path = os.path.join(os.path.realpath(work), name)
    if os.path.dirname(path) != os.path.realpath(work) or not os.path.exists(os.path.join(work, "made-by-mutate")):
        raise SystemExit(f"Not a folder of this tool: {path}")
    if os.path.lexists(path):
        shutil.rmtree(path)
    os.makedirs(path)
    return path


class Worker:
    """A place to build and run one mutant at a time."""

    def __init__(self, build, processes, linker):
        self.build, self.processes, self.linker = build, processes, linker
        # Outside of the tree: the tests run as somebody who may not even look into it.
        self.place = tempfile.mkdtemp(prefix="optstudy-mutate-")
        os.chmod(self.place, 0o755)
        self.overlay = os.path.join(self.place, "overlay")
        self.home = os.path.join(self.place, "home")
        self.complaint = ""
        os.makedirs(self.overlay)

    def remove(self):
        if os.path.basename(self.place).startswith("optstudy-mutate-"):
            shutil.rmtree(self.place, ignore_errors=True)

    def write(self, name, text):
        target = os.path.join(self.overlay, name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        with open(target, "w", encoding="utf-8") as file:
            file.write(text)
        return target

    def compile(self, name, level="-O0", extra=()):
        """The object's bytes, or None when it does not compile; complaint then says why."""
        output = os.path.join(self.place, "mutant.o")
        command = self.build.compile_command(name, self.overlay, output, level)
        status, self.complaint = self.processes.run([*command, *extra], 300)
        if status != 0:
            return None
        with open(output, "rb") as file:
            return file.read()

    def link(self, objects):
        """Links the test program with these objects ({source: bytes}) in place of the build's."""
        words, ahead = [], []
        for number, (name, content) in enumerate(sorted(objects.items())):
            path = os.path.join(self.place, f"object-{number}.o")
            with open(path, "wb") as file:
                file.write(content)
            ahead.append(path)
        for word in self.build.link:
            if self.build.link_sources.get(word) not in objects:
                words.append(word)
        # The altered ones stand first: of functions that several objects hold the first one is taken.
        words[1:1] = ahead + self.linker
        program = os.path.join(self.place, "tests")
        words[words.index("-o") + 1] = program
        status, output = self.processes.run(words, 300, cwd=self.build.build)
        if status != 0:
            raise SystemExit(f"The tests cannot be linked:\n{output}")
        return program

    def run(self, program, arguments, cpu_seconds):
        """Returns status and output of the tests; the status is None when the time was over."""
        shutil.rmtree(self.home, ignore_errors=True)
        os.makedirs(self.home)
        root = os.geteuid() == 0
        if root:
            os.chown(self.home, NOBODY, NOBODY)
        environment = dict(os.environ, HOME=self.home, TMPDIR=self.home, LC_ALL="C.UTF-8")
        limits = ["prlimit", f"--cpu={cpu_seconds}:{cpu_seconds + 1}", f"--as={MEMORY_LIMIT}", "--core=0", "--"]
        if root:
            # What an altered program does to files it does as nobody.
            limits += ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups", "--"]
        return self.processes.run([*limits, program, *arguments], cpu_seconds * 20, cwd=self.home, env=environment)
