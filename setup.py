"""Builds corvex._core from the C++ core and tool sources with the core's own flags; see
pyproject.toml."""
import glob
import re

import pybind11
from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

# Results must be bit-for-bit those of the CMake build: the same flags, no fused multiply-add.
CORE_FLAGS = ["-std=c++17", "-O2", "-g", "-fno-fast-math", "-ffp-contract=off",
              "-fvisibility=hidden", "-fvisibility-inlines-hidden"]
# Flags of the interpreter's own build that the CMake build of the core does not use.
FOREIGN_FLAGS = {"-fwrapv", "-DNDEBUG"}


def project_version():
    """MAJOR.MINOR.PATCH from the public header, as CMake takes it."""
    with open("include/corvex/aggregate_location.h", encoding="utf-8") as header:
        text = header.read()
    return ".".join(re.search(rf"#define CORVEX_VERSION_{part} ([0-9]+)", text).group(1)
                    for part in ("MAJOR", "MINOR", "PATCH"))


class CoreBuild(build_ext):
    def build_extensions(self):
        for command in ("compiler_so", "compiler_cxx", "linker_so"):
            flags = getattr(self.compiler, command, None)
            if flags:
                setattr(self.compiler, command, [f for f in flags if f not in FOREIGN_FLAGS])
        super().build_extensions()


def tool_sources():
    """The tool's readers, locator and printer, which the package shares: tools/ without the
    command-line front ends (main, the *_command files and the explain report)."""
    return sorted(p for p in glob.glob("tools/*.cc") if not re.search(
        r"/(main|\w+_command|explain_\w+)\.cc$", p))


core = Extension(
    "corvex._core",
    # src/release/ is the hosts' string release function, not part of the locator.
    sources=sorted(p for p in glob.glob("src/**/*.cc", recursive=True)
                   if not p.startswith("src/release/")) + tool_sources()
    + sorted(glob.glob("python/src/*.cc")),
    include_dirs=["include", "src", ".", "python/src", pybind11.get_include()],
    extra_compile_args=CORE_FLAGS,
    language="c++",
)

setup(version=project_version(), ext_modules=[core], cmdclass={"build_ext": CoreBuild},
      options={"build": {"build_base": "build/pip"}, "build_ext": {"parallel": 2}})
