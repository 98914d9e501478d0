"""What the scenarios of all languages share: a folder to work in, and commands that must succeed."""

import pathlib
import shutil
import subprocess
import sys


def fail(sentence):
    sys.exit(f"install: {sentence}")


class Steps:
    def __init__(self, work):
        self.work = pathlib.Path(work)
        shutil.rmtree(self.work, ignore_errors=True)
        self.work.mkdir(parents=True)

    def run(self, *command, env=None):
        return subprocess.run([str(part) for part in command], capture_output=True, text=True,
                              check=False, env=env)

    def must(self, *command, env=None):
        ran = self.run(*command, env=env)
        if ran.returncode != 0:
            fail(f"{' '.join(map(str, command))}\n{ran.stdout}{ran.stderr}")
        return ran.stdout
