#!/usr/bin/env python3
"""Runs one scenario: a project outside of the source tree uses the installed library."""

import argparse
import os
import pathlib
import re
import shutil

from steps import Steps, fail

CONSUMER = """
cmake_minimum_required(VERSION 3.24)
project(consumer LANGUAGES CXX)
find_package(zktarn_util {version} REQUIRED {components})
add_executable(consumer main.cpp)
target_link_libraries(consumer PRIVATE {libraries})
"""

# Requests a component that does not exist, without REQUIRED.
ASKING = """
cmake_minimum_required(VERSION 3.24)
project(consumer LANGUAGES NONE)
find_package(zktarn_util 0.1 QUIET COMPONENTS util host)
message(STATUS "found: ${zktarn_util_FOUND}. ${zktarn_util_NOT_FOUND_MESSAGE}")
"""

PARENT = """
cmake_minimum_required(VERSION 3.24)
project(parent LANGUAGES CXX)
add_subdirectory({source} zktarn_util)
if(ZKTARN_TESTS OR ZKTARN_BENCHMARKS OR ZKTARN_INSTALL OR ZKTARN_WERROR)
  message(FATAL_ERROR "as a subproject the library builds or installs more than it should")
endif()
add_executable(consumer main.cpp)
target_link_libraries(consumer PRIVATE zktarn::util zktarn::standin)
add_executable(consumer_static main.cpp)
target_link_libraries(consumer_static PRIVATE zktarn::util_static zktarn::standin)
install(TARGETS consumer consumer_static)
"""

# Allocates and frees a vector. Status 0: both requests succeeded and no block is left.
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

# The header and the package state the same version.
VERSION_MAIN = """
#include "zktarn/version.hpp"

#include <cstring>

int main() {
    return std::strcmp(ZKTARN_VERSION_STRING, PACKAGE_VERSION) == 0 ? 0 : 1;
}
"""

DEFINITION_MAIN = """
#ifndef ZKTARN_CHECKED
#error "the package does not define ZKTARN_CHECKED"
#endif
""" + MAIN


# The first allocation of a record fails, and with it vector_alloc; the second one succeeds.
RECORDS_MAIN = """
#include "zktarn/zktarn_util.hpp"
#include "zktarn_standin/records.hpp"

int main() {
    zktarn::vector_type::vector* v = nullptr;
    zktarn::standin::fail_record(1);
    if (zktarn::vector_type::vector_alloc(v, 10, {}, {}, 1) != 0 || v != nullptr) {
        return 1;
    }
    if (zktarn::vector_type::vector_alloc(v, 10, {}, {}, 1) != 1 ||
        zktarn::standin::record_requests() != 2 || zktarn::standin::live_records() != 1) {
        return 2;
    }
    zktarn::vector_type::vector_free(v);
    return zktarn::standin::live_records() == 0 ? 0 : 3;
}
"""

# The conformance checks, called by the program of a host's author.
CHECKS_MAIN = """
#include "zktarn_conformance/check_host.hpp"

int main() {
    zktarn::host_conformance::check_host({});
    return zktarn::host_conformance::summary() ? 0 : 1;
}
"""


class Scenarios(Steps):
    def __init__(self, arguments):
        self.source = arguments.source
        self.build = arguments.build
        self.cmake = arguments.cmake
        self.compiler = arguments.compiler
        super().__init__(arguments.work)

    # Steps

    def install(self, build=None, component=None):
        """Installs and moves the tree: a file that refers to the first place is then found broken."""
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
        output = " ".join((configured.stdout + configured.stderr).split())
        if configured.returncode == 0:
            fail("was accepted, but has to be refused")
        for reason in reasons:
            if reason not in output:
                fail(f"was refused, but not because of '{reason}':\n{output}")

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
        self.refused(self.consume(prefix=prefix), "Component 'standin' is not installed in",
                     "Installed components: util.")

    def unknown_component_is_refused(self):
        self.refused(self.consume(components="COMPONENTS standin host"),
                     "Component 'host' is not installed in", "Installed components: util, standin")

    def unknown_component_is_named(self):
        """Without REQUIRED a variable contains the message."""
        prefix = self.install()
        configured = self.configure(ASKING, "", f"-DCMAKE_PREFIX_PATH={prefix}")
        output = " ".join((configured.stdout + configured.stderr).split())
        if configured.returncode != 0 or "found: 0. Component 'host' is not installed" not in output:
            fail(f"the message does not name the component\n{configured.stdout}{configured.stderr}")

    def optional_component_may_be_missing(self):
        self.build_and_run(self.consume(components="COMPONENTS standin OPTIONAL_COMPONENTS host"))

    def library_without_standin(self):
        prefix = self.install(component="util")
        configured = self.consume(components="", libraries="zktarn::util", prefix=prefix)
        if configured.returncode != 0:
            fail(f"did not configure\n{configured.stdout}{configured.stderr}")

    def version_macro(self):
        libraries = "zktarn::util)\ntarget_compile_definitions(consumer PRIVATE " \
            'PACKAGE_VERSION="${zktarn_util_VERSION}"'
        self.build_and_run(self.consume(main=VERSION_MAIN, libraries=libraries))

    def older_language(self):
        """Compiling as C++17 gives one error, with the installed headers and with those of the source."""
        program = self.work / "main.cpp"
        program.write_text('#include "zktarn/zktarn_util.hpp"\n\nint main() {}\n')
        compilers = {self.compiler, *filter(shutil.which, ("g++", "clang++"))}
        for headers in (self.install() / "include", pathlib.Path(self.source) / "src"):
            for compiler in sorted(compilers):
                ran = self.run(compiler, "-std=c++17", f"-I{headers}", "-fsyntax-only", program)
                errors = [line for line in ran.stderr.splitlines() if re.search(r"\berror: ", line)]
                if ran.returncode == 0 or len(errors) != 1 or "zktarn needs C++20" not in errors[0]:
                    fail(f"{compiler} -std=c++17 reports {len(errors)} errors:\n{ran.stderr}")
                self.must(compiler, "-std=c++20", f"-I{headers}", "-fsyntax-only", program)

    def documentation(self):
        """The pages are installed, among them those that README.md refers to."""
        pages = self.install() / "share/doc/zktarn_util"
        for name in ("README.md", "CHANGELOG.md", "SECURITY.md", "LICENSE", "standin/README.md"):
            if not (pages / name).is_file() or not (pages / name).read_text(encoding="utf-8"):
                fail(f"{name} is not installed")
        readme = (pages / "README.md").read_text(encoding="utf-8")
        named = set(re.findall(r"`(docs/[\w-]+\.md)`", readme))
        if not named:
            fail("README.md refers to no page in docs/")
        for name in sorted(named):
            if not (pages / name).is_file():
                fail(f"README.md refers to {name}, which is not installed")

    def compile_by_pkg_config(self, prefix, main, library="zktarn_util"):
        flags = self.ask_pkg_config(prefix, "--cflags", "--libs", library, "zktarn_standin")
        if flags.returncode != 0:
            fail(f"pkg-config: {flags.stderr}")
        (self.work / "main.cpp").write_text(main)
        self.must(self.compiler, "-std=c++20", self.work / "main.cpp", "-o", self.work / "program",
                  *flags.stdout.split())
        self.must(self.work / "program")

    def pkg_config(self):
        self.compile_by_pkg_config(self.install(), MAIN)

    def pkg_config_static(self):
        prefix = self.install()
        for shared in prefix.rglob("libzktarn_util.so*"):
            shared.unlink()
        self.compile_by_pkg_config(prefix, MAIN, library="zktarn_util_static")

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
        """The programs of a project that contains the library run in its build and installed."""
        self.build_and_run(self.configure(PARENT.format(source=self.source), MAIN))
        project = self.work / "consumer"
        first, moved = self.work / "first", self.work / "moved"
        self.must(self.cmake, "--install", project / "build", "--prefix", first)
        # Nothing is left in the build or in the first place of the installation.
        shutil.rmtree(project)
        first.rename(moved)
        self.must(moved / "bin/consumer")
        self.must(moved / "bin/consumer_static")
        headers = list(moved.rglob("*.hpp"))
        if headers:
            fail(f"{len(headers)} headers are installed without ZKTARN_INSTALL")
        (moved / "lib/libzktarn_util.so.1").unlink()
        self.must(moved / "bin/consumer_static")
        if self.run(moved / "bin/consumer").returncode == 0:
            fail("the program runs without the shared library that it links")

    def standin_records(self):
        """The archive replaces operator new of the program that links it."""
        self.build_and_run(self.consume(libraries="zktarn::util zktarn::standin_records",
                                        main=RECORDS_MAIN))

    def build_and_check(self, main):
        """Builds a program of the conformance archive, and runs it on the stand-in."""
        libraries = "zktarn::host_conformance zktarn::standin"
        configured = self.consume(components="COMPONENTS conformance standin", libraries=libraries,
                                  main=main)
        self.build_and_run(configured)
        self.passes(self.work / "consumer/build/consumer")

    def passes(self, program):
        output = self.must(program)
        if not re.search(r"^ok   qvMallocExOptim: .*^[1-9][0-9]* checks, 0 failed$", output,
                         re.MULTILINE | re.DOTALL):
            fail(f"{program} does not report checks that passed:\n{output}")

    def conformance(self):
        """A program without a main of its own is the program of the package."""
        self.build_and_check("")
        self.passes(self.work / "moved/bin/zktarn_host_conformance")

    def conformance_from_main(self):
        self.build_and_check(CHECKS_MAIN)

    def conformance_without_standin(self):
        """The checks compile where no host is installed."""
        for component in ("util", "conformance"):
            self.must(self.cmake, "--install", self.build, "--prefix", self.work / "first",
                      "--component", component)
        configured = self.consume(components="COMPONENTS conformance", main=CHECKS_MAIN,
                                  libraries="zktarn::host_conformance", prefix=self.work / "first")
        if configured.returncode != 0:
            fail(f"did not configure\n{configured.stdout}{configured.stderr}")
        self.must(self.cmake, "--build", self.work / "consumer/build", "--target",
                  "CMakeFiles/consumer.dir/main.cpp.o")

    def checked_definition(self):
        """The package of a checked build defines ZKTARN_CHECKED for its users, that of an ordinary build
        does not."""
        self.refused_definition()
        shutil.rmtree(self.work / "moved")
        shutil.rmtree(self.work / "consumer")
        checked = self.work / "checked"
        self.must(self.cmake, "-S", self.source, "-B", checked, "-G", "Ninja",
                  "-DZKTARN_CHECKED=ON", "-DZKTARN_C=OFF", f"-DCMAKE_CXX_COMPILER={self.compiler}")
        self.must(self.cmake, "--build", checked)
        prefix = self.install(build=checked)
        self.build_and_run(self.consume(prefix=prefix, main=DEFINITION_MAIN))
        self.compile_by_pkg_config(prefix, DEFINITION_MAIN)

    def refused_definition(self):
        configured = self.consume(main=DEFINITION_MAIN)
        built = self.run(self.cmake, "--build", self.work / "consumer/build")
        if configured.returncode != 0 or "does not define ZKTARN_CHECKED" not in built.stdout:
            fail("the package of an ordinary build defines ZKTARN_CHECKED")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("scenario")
    for name in ("source", "build", "work", "cmake", "compiler"):
        parser.add_argument(f"--{name}", required=True)
    arguments = parser.parse_args()
    getattr(Scenarios(arguments), arguments.scenario)()


if __name__ == "__main__":
    main()
