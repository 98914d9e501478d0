#!/usr/bin/env python3
"""Builds and runs one scenario of a project that uses the installed library from C or Fortran.

The projects are the examples, built against the installed package.
"""

import argparse
import os
import pathlib

from steps import Steps, fail

FATAL = "-Wl,--fatal-warnings,--warn-execstack"

RECORDS_C = """
#include "zktarn_standin.h"
#include "zktarn_util.h"

int main(void) {
    zktarn_vector* v = NULL;
    zktarn_standin_fail_record(1);
    return zktarn_vector_alloc(&v, 3, NULL, NULL, NULL) == 0 &&
           zktarn_standin_record_requests() == 1 && zktarn_standin_live_records() == 0 ? 0 : 1;
}
"""
RECORDS_FORTRAN = """
program records
    use zktarn_util
    use zktarn_standin_records
    implicit none
    type(vector), pointer :: v
    call standin_fail_record(1)
    if (vector_alloc(v, 3) /= 0) error stop 'not refused'
    if (standin_record_requests() /= 1) error stop 'not requested'
end program
"""


class Scenarios(Steps):
    def __init__(self, arguments):
        self.options = arguments
        self.examples = pathlib.Path(arguments.source) / "examples"
        super().__init__(arguments.work)

    def install(self, *components):
        """Installs and moves the tree, so that an absolute path in it does not work."""
        first, moved = self.work / "first", self.work / "moved"
        for component in components or (None,):
            command = [self.options.cmake, "--install", self.options.build, "--prefix", first]
            self.must(*command, *(["--component", component] if component else []))
        first.rename(moved)
        return moved

    def configure(self, project, prefix):
        return self.run(self.options.cmake, "-S", project, "-B", self.work / "build", "-G", "Ninja",
                        f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_EXE_LINKER_FLAGS={FATAL}",
                        f"-DCMAKE_C_COMPILER={self.options.c_compiler}",
                        f"-DCMAKE_Fortran_COMPILER={self.options.fortran_compiler}")

    def refused(self, configured, reason):
        output = " ".join((configured.stdout + configured.stderr).split())
        if configured.returncode == 0 or reason not in output:
            fail(f"was not refused because of '{reason}':\n{output}")

    def check_output(self, example, program):
        output = self.must(program)
        expected = {"vectors": "marks  coef ind elm", "separator": "efficacy 0."}[example]
        if expected not in output:
            fail(f"{example} printed:\n{output}")

    def find_package(self, language, prefix):
        configured = self.configure(self.examples / language, prefix)
        if configured.returncode != 0:
            fail(f"did not configure\n{configured.stdout}{configured.stderr}")
        self.must(self.options.cmake, "--build", self.work / "build")
        for example in ("vectors", "separator"):
            self.check_output(example, self.work / "build" / f"{example}_{language}")

    def pkg_config(self, prefix, *arguments):
        folders = {str(path.parent) for path in prefix.rglob("*.pc")}
        env = dict(os.environ, PKG_CONFIG_PATH=":".join(folders))
        return self.must("pkg-config", *arguments, env=env).split()

    # Scenarios

    def c_find_package(self):
        self.find_package("c", self.install())

    def fortran_find_package(self):
        self.find_package("fortran", self.install())

    def c_pkg_config(self):
        prefix = self.install()
        flags = self.pkg_config(prefix, "--cflags", "--libs", "zktarn_util_c", "zktarn_standin_c")
        for example in ("vectors", "separator"):
            program = self.work / example
            self.must(self.options.c_compiler, "-std=c11", "-Wall", "-Wextra", "-Wconversion",
                      "-Wpedantic", "-Werror", FATAL, self.examples / "c" / f"{example}.c", "-o",
                      program, *flags, "-lm")
            self.check_output(example, program)

    def fortran_pkg_config(self):
        prefix = self.install()
        sources = self.pkg_config(prefix, "--variable=sources", "zktarn_util_fortran")
        sources += self.pkg_config(prefix, "--variable=standin_source", "zktarn_util_fortran")
        flags = self.pkg_config(prefix, "--libs", "zktarn_util_fortran", "zktarn_standin_c")
        for example in ("vectors", "separator"):
            program = self.work / example
            own = [self.examples / "fortran" / name for name in ("text.f90", f"{example}.f90")]
            self.must(self.options.fortran_compiler, "-std=f2018", FATAL, f"-J{self.work}", *sources,
                      *own, "-o", program, *flags)
            self.check_output(example, program)

    def static_c(self):
        prefix = self.install()
        project = self.work / "static"
        project.mkdir()
        (project / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.24)\nproject(static LANGUAGES C CXX)\n"
            "find_package(zktarn_util 0.1 REQUIRED COMPONENTS c standin)\n"
            f"add_executable(vectors_static {self.examples}/c/separator.c)\n"
            "target_link_libraries(vectors_static PRIVATE zktarn::c_static zktarn::standin m)\n")
        self.build(project, prefix, "vectors_static")
        self.check_output("separator", self.work / "build" / "vectors_static")
        for library in ("libzktarn_util_c", "libzktarn_util.so"):
            if library in self.must("ldd", self.work / "build" / "vectors_static"):
                fail(f"{library} is linked as a shared library")

    def c_records(self):
        """The archive that controls the records replaces operator new of a program in C."""
        prefix = self.install()
        program = self.work / "with_pkg_config"
        source = self.work / "records.c"
        source.write_text(RECORDS_C)
        self.must(self.options.c_compiler, "-std=c11", "-Wall", "-Werror", FATAL, source, "-o",
                  program, *self.pkg_config(prefix, "--cflags", "--libs", "zktarn_util_c",
                                            "zktarn_standin_records_c"))
        self.must(program)
        (self.work / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.24)\nproject(records LANGUAGES C CXX)\n"
            "find_package(zktarn_util 0.1 REQUIRED COMPONENTS c standin_c)\n"
            "add_executable(records records.c)\n"
            "target_link_libraries(records PRIVATE zktarn::c zktarn::standin_records_c)\n")
        self.build(self.work, prefix, "records")

    def fortran_records(self):
        prefix = self.install()
        program = self.work / "with_pkg_config"
        source = self.work / "records.f90"
        source.write_text(RECORDS_FORTRAN)
        sources = self.pkg_config(prefix, "--variable=sources", "zktarn_util_fortran")
        sources += self.pkg_config(prefix, "--variable=standin_records_source",
                                   "zktarn_util_fortran")
        self.must(self.options.fortran_compiler, "-std=f2018", FATAL, f"-J{self.work}", *sources,
                  source, "-o", program, *self.pkg_config(prefix, "--libs", "zktarn_util_fortran",
                                                          "zktarn_standin_records_c"))
        self.must(program)
        (self.work / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.24)\nproject(records LANGUAGES C CXX Fortran)\n"
            "find_package(zktarn_util 0.1 REQUIRED COMPONENTS fortran standin_c)\n"
            "add_executable(records records.f90)\n"
            "target_link_libraries(records PRIVATE zktarn::fortran\n"
            "  zktarn::fortran_standin_records)\n")
        self.build(self.work, prefix, "records")

    def build(self, project, prefix, program):
        configured = self.configure(project, prefix)
        if configured.returncode != 0:
            fail(f"did not configure\n{configured.stdout}{configured.stderr}")
        self.must(self.options.cmake, "--build", self.work / "build")
        self.must(self.work / "build" / program)

    def fortran_without_language(self):
        prefix = self.install()
        project = self.work / "no_fortran"
        project.mkdir()
        (project / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.24)\nproject(no_fortran LANGUAGES C)\n"
            "find_package(zktarn_util 0.1 REQUIRED COMPONENTS fortran)\n")
        self.refused(self.configure(project, prefix), "Component 'fortran' needs the language")

    def missing_c(self):
        prefix = self.install("util", "standin", "fortran")
        self.refused(self.configure(self.examples / "c", prefix), "Component 'c' is not installed")

    def fortran_without_c(self):
        prefix = self.install("util", "standin", "fortran")
        self.refused(self.configure(self.examples / "fortran", prefix),
                     "Component 'fortran' needs component 'c'")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("scenario")
    for name in ("source", "build", "work", "cmake", "c-compiler", "fortran-compiler"):
        parser.add_argument(f"--{name}", required=True)
    arguments = parser.parse_args()
    getattr(Scenarios(arguments), arguments.scenario)()


if __name__ == "__main__":
    main()
