#!/usr/bin/env python3
"""Plays one scenario of a project that uses the library from outside."""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys

CONSUMER = """
cmake_minimum_required(VERSION 3.24)
project(consumer LANGUAGES CXX)
find_package(zktarn_util {version} REQUIRED {components})
add_executable(consumer main.cpp)
target_link_libraries(consumer PRIVATE {libraries})
"""

PARENT = """
cmake_minimum_required(VERSION 3.24)
project(parent LANGUAGES CXX)
add_subdirectory({source} zktarn_util)
if(ZKTARN_TESTS OR ZKTARN_BENCHMARKS OR ZKTARN_INSTALL OR ZKTARN_WERROR)
  message(FATAL_ERROR "the library brings its own development along")
endif()
add_executable(consumer main.cpp)
target_link_libraries(consumer PRIVATE zktarn::util zktarn::standin)
"""

# Makes and frees a vector, and ends with status 0 when the host has everything back.
MAIN = """
#include "zktarn/zktarn_util.hpp"
#include "zktarn_standin/control.hpp"

int main() {
    zktarn::vector_type::vector* v = nullptr;
    if (zktarn::vector_type::vector_alloc(v, 10, {}, {}, 1) != 1 || !v->ind.present() ||
        v->elm.present()) {
        return 1;
    }
    zktarn::vector_type::vector_free(v);
    return zktarn::standin::requests() == 2 && zktarn::standin::live_blocks().empty() ? 0 : 2;
}
"""

DEFINITION_MAIN = """
#ifndef ZKTARN_CHECKED
#error "the package does not say that it is checked"
#endif
""" + MAIN


def fail(sentence):
    sys.exit(f"install: {sentence}")


class Scenarios:
    def __init__(self, arguments):
        self.source = arguments.source
        self.build = arguments.build
        self.work = pathlib.Path(arguments.work)
        self.cmake = arguments.cmake
        self.compiler = arguments.compiler
        shutil.rmtree(self.work, ignore_errors=True)
        self.work.mkdir(parents=True)

    # Steps

    def run(self, *command, env=None):
        return subprocess.run([str(part) for part in command], capture_output=True, text=True,
                              check=False, env=env)

    def must(self, *command, env=None):
        ran = self.run(*command, env=env)
        if ran.returncode != 0:
            fail(f"{' '.join(map(str, command))}\n{ran.stdout}{ran.stderr}")
        return ran.stdout

    def install(self, build=None, component=None):
        """Installs and moves the tree, so that nothing can be found where it was put at first."""
        first = self.work / "first"
        moved = self.work / "moved"
        command = [self.cmake, "--install", build or self.build, "--prefix", first]
        if component:
            command += ["--component", component]
        self.must(*command)
        first.rename(moved)
        return moved

    def configure(self, project_text, main_text, *arguments):
        project = self.work / "consumer"
        project.mkdir()
        (project / "CMakeLists.txt").write_text(project_text)
        (project / "main.cpp").write_text(main_text)
        return self.run(self.cmake, "-S", project, "-B", project / "build", "-G", "Ninja",
                        f"-DCMAKE_CXX_COMPILER={self.compiler}", *arguments)

    def consume(self, version="0.1", components="COMPONENTS standin",
                libraries="zktarn::util zktarn::standin", main=MAIN, prefix=None):
        prefix = prefix or self.install()
        text = CONSUMER.format(version=version, components=components, libraries=libraries)
        return self.configure(text, main, f"-DCMAKE_PREFIX_PATH={prefix}")

    def build_and_run(self, configured):
        if configured.returncode != 0:
            fail(f"did not configure\n{configured.stdout}{configured.stderr}")
        self.must(self.cmake, "--build", self.work / "consumer/build")
        self.must(self.work / "consumer/build/consumer")

    def refused(self, configured, *reasons):
        said = " ".join((configured.stdout + configured.stderr).split())
        if configured.returncode == 0:
            fail("was accepted")
        for reason in reasons:
            if reason not in said:
                fail(f"was refused, but not because of '{reason}':\n{said}")

    def ask_pkg_config(self, prefix, *arguments):
        folders = [str(path.parent) for path in prefix.rglob("zktarn_util.pc")]
        env = dict(os.environ, PKG_CONFIG_PATH=":".join(folders))
        return self.run("pkg-config", *arguments, env=env)

    # Scenarios

    def find_package(self):
        self.build_and_run(self.consume())

    def newer_minor_is_refused(self):
        self.refused(self.consume(version="0.2"), "requested version", "0.2", "version: 0.1")

    def newer_major_is_refused(self):
        self.refused(self.consume(version="1.0"), "requested version", "1.0", "version: 0.1")

    def missing_standin_is_refused(self):
        prefix = self.install(component="util")
        self.refused(self.consume(prefix=prefix), "standin")

    def library_without_standin(self):
        prefix = self.install(component="util")
        configured = self.consume(components="", libraries="zktarn::util", prefix=prefix)
        if configured.returncode != 0:
            fail(f"did not configure\n{configured.stdout}{configured.stderr}")

    def compile_by_pkg_config(self, prefix, main):
        flags = self.ask_pkg_config(prefix, "--cflags", "--libs", "zktarn_util", "zktarn_standin")
        if flags.returncode != 0:
            fail(f"pkg-config: {flags.stderr}")
        (self.work / "main.cpp").write_text(main)
        self.must(self.compiler, "-std=c++20", self.work / "main.cpp", "-o", self.work / "program",
                  *flags.stdout.split())
        self.must(self.work / "program")

    def pkg_config(self):
        self.compile_by_pkg_config(self.install(), MAIN)

    def pkg_config_version(self):
        prefix = self.install()
        if self.ask_pkg_config(prefix, "--atleast-version=0.1", "zktarn_util").returncode != 0:
            fail("version 0.1 is refused")
        if self.ask_pkg_config(prefix, "--atleast-version=0.2", "zktarn_util").returncode == 0:
            fail("version 0.2 is accepted")

    def relocatable(self):
        prefix = self.install()
        for path in prefix.rglob("*"):
            if path.suffix in (".pc", ".cmake"):
                text = path.read_text()
                for place in (self.source, self.build, str(self.work)):
                    if place in text:
                        fail(f"{path.relative_to(prefix)} names {place}")

    def static_library(self):
        self.build_and_run(self.consume(libraries="zktarn::util_static zktarn::standin"))

    def add_subdirectory(self):
        self.build_and_run(self.configure(PARENT.format(source=self.source), MAIN))

    def checked_definition(self):
        """A checked build says so to whoever uses it, and an ordinary one does not."""
        self.refused_definition()
        shutil.rmtree(self.work / "moved")
        shutil.rmtree(self.work / "consumer")
        checked = self.work / "checked"
        self.must(self.cmake, "-S", self.source, "-B", checked, "-G", "Ninja",
                  "-DZKTARN_CHECKED=ON", f"-DCMAKE_CXX_COMPILER={self.compiler}")
        self.must(self.cmake, "--build", checked)
        prefix = self.install(build=checked)
        self.build_and_run(self.consume(prefix=prefix, main=DEFINITION_MAIN))
        self.compile_by_pkg_config(prefix, DEFINITION_MAIN)

    def refused_definition(self):
        configured = self.consume(main=DEFINITION_MAIN)
        built = self.run(self.cmake, "--build", self.work / "consumer/build")
        if configured.returncode != 0 or "does not say that it is checked" not in built.stdout:
            fail("an ordinary build says that it is checked")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("scenario")
    for name in ("source", "build", "work", "cmake", "compiler"):
        parser.add_argument(f"--{name}", required=True)
    arguments = parser.parse_args()
    getattr(Scenarios(arguments), arguments.scenario)()


if __name__ == "__main__":
    main()
