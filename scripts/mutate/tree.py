# SPDX-License-Identifier: Apache-2.0
"""A copy of the project in which mutants are built and tested."""
import hashlib
import json
import os
import resource
import shlex
import shutil
import signal
import subprocess
import time

# No debug information, so that equal code gives equal objects; a changed library does not relink
# the programs; programs do not run at build time.
OPTIONS = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O1", "-DFP_UTILS_WERROR=OFF",
           "-DFP_UTILS_PRECOMPILE=ON", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
           "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
PLAIN = ["-DCMAKE_CXX_COMPILER=g++"]
THREADS = ["-DCMAKE_CXX_COMPILER=clang++", "-DFP_UTILS_SANITIZE=thread"]
# Rejects an access to a guarded member without its lock.
ANALYSIS = ["clang++", "-fsyntax-only", "-stdlib=libc++", "-Werror=thread-safety",
            "-D_LIBCPP_ENABLE_THREAD_SAFETY_ANNOTATIONS"]
MEMORY = 4 << 30  # bytes that a test of a mutant may map


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          **options)


def run_checked(command, **options):
    done = run(command, **options)
    if done.returncode != 0:
        raise SystemExit(f"{shlex.join(command)}\n{done.stdout[-3000:]}")
    return done.stdout


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


class Tree:
    def __init__(self, origin, folder, options, share, jobs, jobs_per_mutant):
        self.root, self.build, self.scratch = (f"{folder}/{x}" for x in ("tree", "build", "tmp"))
        self.has_address_limit = options is PLAIN
        self.environment = dict(os.environ, FP_TEST_SHARE=share, TMPDIR=self.scratch)
        self.jobs = jobs_per_mutant
        self.recent = {}  # file -> tests that have killed its mutants
        self.changed = None  # the file that holds a mutant
        self.copy(origin)
        run_checked(["cmake", "-G", "Ninja", "-S", self.root, "-B", self.build,
                     *OPTIONS, *options])
        run_checked(["ninja", "-C", self.build, f"-j{jobs}"])
        with open(f"{self.build}/compile_commands.json", encoding="utf-8") as file:
            library = [e for e in json.load(file) if "/fp_utils.dir/" in e["command"]]
        self.commands = {e["file"]: e["command"] for e in library}
        self.hashes = self.hash_objects(0)
        self.tests = self.list_tests()

    def copy(self, origin):
        """Copies the files of `origin` that git tracks or would track."""
        names = run_checked(["git", "-C", origin, "ls-files", "--cached", "--others",
                             "--exclude-standard"]).splitlines()
        for name in names:
            source, target = f"{origin}/{name}", f"{self.root}/{name}"
            if not os.path.exists(source):
                continue
            os.makedirs(os.path.dirname(target), exist_ok=True)
            if os.path.isdir(source):  # a link to a folder
                if not os.path.lexists(target):
                    os.symlink(os.readlink(source), target)
            elif not os.path.exists(target) or self.read(source) != self.read(target):
                shutil.copy(source, target)

    @staticmethod
    def read(path):
        with open(path, "rb") as file:
            return file.read()

    def write(self, name, data):
        with open(f"{self.root}/{name}", "wb") as file:
            file.write(data)

    def list_tests(self):
        """Name -> (command, folder, seconds) of the tests that exercise the library."""
        listed = json.loads(run_checked(["ctest", "--test-dir", self.build, "-LE", "long",
                                         "--show-only=json-v1"]))["tests"]
        tests = {}
        for test in listed:
            properties = {p["name"]: p["value"] for p in test.get("properties", [])}
            program = os.path.basename(test["command"][0])
            if not test["name"].startswith("Package") and not program.startswith("platform_"):
                for setting in properties.get("ENVIRONMENT", []):
                    self.environment.update([setting.split("=", 1)])
                for setting in properties.get("ENVIRONMENT_MODIFICATION", []):
                    self.environment.update([setting.split("=set:", 1)])
                tests[test["name"]] = (test["command"],
                                       properties.get("WORKING_DIRECTORY", self.build), 30)
        for name, (command, folder, _) in list(tests.items()):
            begin = time.time()
            if self.fails(tests[name]):
                print(f"left out: {name} fails without a mutant", flush=True)
                del tests[name]
            else:
                tests[name] = (command, folder, time.time() - begin)
        return tests

    def hash_objects(self, since):
        """Object -> hash of its content, of those written after `since`."""
        hashes = {}
        for folder, _, names in os.walk(self.build):
            for path in (f"{folder}/{name}" for name in names if name.endswith(".o")):
                if os.path.getmtime(path) > since:
                    hashes[path] = hashlib.sha1(self.read(path)).digest()
        return hashes

    def restore(self):
        if self.changed:
            self.write(*self.changed)
            self.changed = None

    def judge(self, mutant):
        """Returns the outcome of a mutant, and the test that killed it."""
        self.restore()
        data = self.read(f"{self.root}/{mutant.file}")
        self.changed = (mutant.file, data)
        self.write(mutant.file, mutant.apply(data))
        if mutant.kind == "lock" and self.is_refused(mutant.file):
            return "killed", "thread-safety analysis"
        if run(["ninja", "-C", self.build, f"-j{self.jobs}"]).returncode != 0:
            return "invalid", ""
        objects = self.hash_objects(os.path.getmtime(f"{self.root}/{mutant.file}"))
        if all(self.hashes.get(path) == digest for path, digest in objects.items()):
            return "same code", ""
        killer = self.find_killer(mutant.file)
        return ("killed", killer) if killer else ("survived", "")

    def is_refused(self, name):
        """Whether the thread-safety analysis finds an error in a source, or in those below src/ that
        include a header of this name."""
        header = f'/{os.path.basename(name)}"'
        sources = [s for s in self.commands if s.endswith(name) or header in
                   self.read(s).decode()]
        for source in sources:
            flags = shlex.split(self.commands[source])
            flags = [f for f in flags if f.startswith(("-isystem", "-I", "-std", "/"))][1:]
            done = run(ANALYSIS + flags)
            if "thread-safety" in done.stdout:
                return True
        return False

    def find_killer(self, file):
        """The first test that fails, the likely and quick ones first."""
        recent = self.recent.setdefault(file, [])
        stem = os.path.splitext(os.path.basename(file))[0].replace("_", "")
        names = sorted(self.tests, key=lambda n: (n not in recent, stem not in n.lower(),
                                                  self.tests[n][2]))
        for name in names:
            if self.fails(self.tests[name]):
                recent[:] = ([name] + recent)[:5]
                return name
        return None

    def fails(self, test):
        """Runs the test twice, since it may fail by chance on a loaded machine."""
        return self.fails_once(*test) and self.fails_once(*test)

    def fails_once(self, command, folder, seconds):
        shutil.rmtree(self.scratch, ignore_errors=True)
        os.makedirs(self.scratch)
        process = subprocess.Popen(
            command, cwd=folder, env=self.environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
            preexec_fn=limit_memory if self.has_address_limit else None)
        try:
            return process.wait(5 + 10 * seconds) != 0
        except subprocess.TimeoutExpired:
            return True
        finally:  # also ends the processes that the test has left behind
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
