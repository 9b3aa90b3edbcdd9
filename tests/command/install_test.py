"""What is installed: the program, wherever its prefix has come to and its libraries lie in it,
and what others build against."""
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import textwrap
import unittest

from harness import Case

SOURCE, BUILD = (pathlib.Path(os.environ["ACECONV_" + name]) for name in ("SOURCE", "BUILD"))
CMAKE = os.environ["CMAKE"]
DOC = SOURCE / "examples" / "border-filter.json"
SANITIZE = ["-fsanitize=" + kinds] if (kinds := os.environ["ACECONV_SANITIZE"]) else []


def install(build, prefix):
    subprocess.run([CMAKE, "--install", build, "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)


class Installed(Case):
    def install_with(self, libraries, prefix):
        """What a build of that layout installs, but of the files under test: its path is as
        long as theirs and takes its place."""
        build = self.dir / "build"
        subprocess.run([CMAKE, "-S", SOURCE, "-B", build, "-G", "Ninja", "-DACECONV_TESTS=OFF",
                        "-DCMAKE_INSTALL_LIBDIR=" + libraries], check=True, stdout=subprocess.DEVNULL)
        commands = subprocess.run([CMAKE, "--build", build, "--", "-t", "commands", "aceconv"],
                                  check=True, capture_output=True, text=True).stdout
        self.assertIn(f'LIBRARY_FOLDER=\\"{libraries}\\"', commands)
        for script in build.rglob("*/cmake_install.cmake"):
            script.write_text("".join(
                line if ".cmake" in line or ".pc" in line else
                line.replace(f"{build}/{libraries}/", f"{BUILD}/lib/").replace(str(build), str(BUILD))
                for line in script.read_text().splitlines(keepends=True)))
        install(build, prefix)
        program = prefix / "bin/aceconv"
        program.write_bytes(program.read_bytes().replace(
            b"\0lib/aceconv/", b"\0" + libraries.encode() + b"/aceconv/"))

    def runs_from(self, prefix, program=None):
        """The folder of its plug-in; the parts must all be those of this prefix."""
        program = program or prefix / "bin" / "aceconv"
        real, env = str(prefix.resolve()), {"PATH": "/usr/bin:/bin"}
        shown = subprocess.run([program, "--version"], env=env, check=True, capture_output=True,
                               text=True, cwd="/").stdout.splitlines()
        plugin, modules = (pathlib.Path(shown[at].split(None, 1)[1]) for at in (1, 3))
        self.assertEqual(str(modules), real + "/share/aceconv/yang")
        done = subprocess.run([program, "check", DOC], env=env, check=False, capture_output=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        return str(plugin.parent.relative_to(real))

    def test_its_parts_are_found_from_where_it_lies(self):
        first, moved, other = self.dir / "first", self.dir / "moved", "l/a"
        self.install_with(other, first)
        first.rename(moved)
        self.assertEqual(self.runs_from(moved), other + "/aceconv")
        os.symlink("moved", self.dir / "linked")
        self.assertEqual(self.runs_from(self.dir / "linked"), other + "/aceconv")
        os.symlink(moved / "bin" / "aceconv", self.dir / "program")
        self.assertEqual(self.runs_from(moved, self.dir / "program"), other + "/aceconv")
        shutil.copytree(moved, self.dir / "copied", symlinks=True)
        self.assertEqual(self.runs_from(self.dir / "copied"), other + "/aceconv")
        install(BUILD, self.dir / "plain")
        self.assertIn(self.runs_from(self.dir / "plain"), ("lib/aceconv", "lib64/aceconv"))

    @unittest.skipUnless((BUILD / "pages").exists(), "there was no libmd4c")
    def test_pages_and_completions_are_where_they_are_looked_for(self):
        install(BUILD, self.dir)
        for name in ("man/man1/aceconv-hostcheck.1", "man/man5/aceconv-record.5", "zsh/site-functions/_aceconv",
                     "bash-completion/completions/aceconv", "fish/vendor_completions.d/aceconv.fish"):
            self.assertGreater((self.dir / "share" / name).stat().st_size, 1000, name)

    def test_nothing_comes_from_the_tree_it_was_built_from(self):
        prefix = self.dir / "prefix"
        install(BUILD, prefix)
        program, plugin = prefix / "bin/aceconv", next(prefix.rglob("libipv4_acl_ace.so"))
        programs = program.resolve().parent
        for part, option, given, said in (
                (prefix / "share", "--modules", SOURCE / "yang", "cannot find the YANG modules: no "
                 f"folder above {programs} has share/aceconv/yang; --modules names "),
                (plugin, "--plugin", BUILD / "lib/aceconv/libipv4_acl_ace.so", "cannot find the plug-in: no "
                 f"folder above {programs} has lib/aceconv/{plugin.name}; --plugin names another")):
            part.rename(self.dir / "aside")
            done = subprocess.run([program, "check", DOC], check=False, capture_output=True, text=True)
            self.assertEqual((done.returncode, said in done.stderr), (3, True), done.stderr)
            subprocess.run([program, "check", "-q", DOC, option, given], check=True)
            (self.dir / "aside").rename(part)


    def test_debug_info_is_that_of_the_stripped_plug_in(self):
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", self.dir, "--strip"], check=True,
                       stdout=subprocess.DEVNULL)
        plugin, = self.dir.rglob("libipv4_acl_ace.so")
        def shown(option, file):
            return subprocess.run(["readelf", "-W", option, file], check=True, capture_output=True,
                                  text=True, errors="replace").stdout
        self.assertNotIn(".debug_info", shown("-S", plugin))
        self.assertIn(f"{plugin.name}.debug", shown("--string-dump=.gnu_debuglink", plugin))
        self.assertIn(".debug_info", shown("-S", f"{plugin}.debug"))


# Beside the example host, what it does not need of the package.
OUTSIDE = """
cmake_minimum_required(VERSION 3.22)
project(outside C)
find_package(aceconv 2.0 QUIET)
if(aceconv_FOUND)
  message(FATAL_ERROR "found as 2.0")
endif()
find_package(aceconv 1.0 REQUIRED)
file(READ ${aceconv_YANG_DIR}/aceconv-um.yang module)
add_subdirectory(%s host)
add_executable(names names.c)
target_link_libraries(names PRIVATE aceconv::keywords)
"""
NAMES = """
#include <stdio.h>
#include "aceconv/keywords.h"
int main(void) { return puts(acl_yang_acl_grant[1].name) < 0; }
"""


class BuiltAgainst(Case):
    EXAMPLE = SOURCE / "examples" / "host"

    def setUp(self):
        super().setUp()
        install(BUILD, self.dir / "first")
        self.prefix = self.dir / "moved"
        (self.dir / "first").rename(self.prefix)

    def output(self, *program):
        done = subprocess.run(program, check=False, capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""), program)
        return done.stdout

    def expect_the_conversions(self, program):
        shown = "".join(f"    {line}\n" for line in self.output(program).splitlines())
        self.assertIn(f"\n\n{shown}\n", (SOURCE / "docs" / "hosting.md").read_text())

    def build_with_cmake(self):
        self.file("CMakeLists.txt", OUTSIDE % self.EXAMPLE)
        self.file("names.c", NAMES)
        self.output(CMAKE, "-S", self.dir, "-B", self.dir / "build", "-G", "Ninja", "-Wno-dev",
                    f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DCMAKE_C_FLAGS={' '.join(SANITIZE)}")
        self.output(CMAKE, "--build", self.dir / "build")
        self.expect_the_conversions(self.dir / "build/host/convert")
        self.assertEqual(self.output(self.dir / "build/names"), "permit\n")

    @unittest.skipIf(SANITIZE, "nothing new to be seen")
    def test_the_plug_in_alone_where_there_is_nothing_but_libsafec(self):
        safec = self.output("pkg-config", "--variable=pcfiledir", "libsafec").strip() + "/libsafec.pc"
        os.symlink(safec, self.dir / "libsafec.pc")
        parts = ("CLI11", "EXPAT", "GTest", "Python3", "nlohmann_json", "simdjson", "benchmark")
        alone, self.prefix = self.dir / "alone", self.dir / "prefix"
        self.output("env", f"PKG_CONFIG_LIBDIR={self.dir}", CMAKE, "-S", SOURCE, "-B", alone, "-G",
                    "Ninja", "--no-warn-unused-cli", "-DACECONV_HOST=OFF", "-DACECONV_WERROR=ON",
                    *(f"-DCMAKE_DISABLE_FIND_PACKAGE_{part}=ON" for part in parts))
        self.output(CMAKE, "--build", alone)
        install(alone, self.prefix)
        self.assertFalse((self.prefix / "bin").exists())
        self.build_with_cmake()

    def test_with_cmake(self):
        self.build_with_cmake()
        host, = (self.dir / "build/host").glob("libexample_host.so")
        # A sanitizer's dlopen does not look where the program's own would.
        given = ["--plugin", *self.prefix.rglob("libipv4_acl_ace.so")] if SANITIZE else []
        self.assertIn(" 0 of them found",
                      self.output(self.prefix / "bin/aceconv-hostcheck", host, *given))

    def test_with_pkg_config(self):
        folder, = self.prefix.rglob("pkgconfig")
        def config(*args):
            return shlex.split(self.output("env", f"PKG_CONFIG_PATH={folder}", "pkg-config", *args))
        (plugin,), (modules,) = (config(f"--variable={name}", "aceconv-plugin")
                                 for name in ("plugin", "yangdir"))
        self.assertTrue(os.path.exists(plugin) and os.path.exists(modules + "/aceconv-um.yang"))
        self.output("cc", *SANITIZE, *self.EXAMPLE.glob("*.c"), "-o", self.dir / "convert",
                    *config("--cflags", "--libs", "aceconv-plugin >= 1.0"),
                    "-Wl,-rpath," + os.path.dirname(plugin))
        self.expect_the_conversions(self.dir / "convert")
        names = self.file("names.c", NAMES)
        self.output("cc", *SANITIZE, names, "-o", self.dir / "names",
                    *config("--cflags", "--libs", "aceconv-keywords"))
        self.assertEqual(self.output(self.dir / "names"), "permit\n")
        readme = (SOURCE / "README.md").read_text()
        program = textwrap.dedent(re.search(r"(?ms)^    #include <aceconv.*?^    }\n", readme)[0])
        self.output("cc", *SANITIZE, self.file("example.c", program), "-o", self.dir / "example",
                    *config("--cflags", "--libs", "aceconv >= 1.0"), "-Wl,-rpath," + str(folder.parent))
        self.assertRegex(self.output(self.dir / "example"), r'^{.*"permit":{.*}\nlost: sequence-str, since ')

    def test_the_library_example_both_ways(self):
        """It gives the bytes of the command, and lies in the docs as it was built."""
        example = SOURCE / "examples" / "library"
        source = (example / "encode.c").read_text()
        self.assertIn("".join(f"    {line}".rstrip() + "\n" for line in source.splitlines()),
                      (SOURCE / "docs" / "library.md").read_text())
        libraries = os.path.dirname(next(self.prefix.rglob("libaceconv.so")))
        self.output(CMAKE, "-S", example, "-B", self.dir / "build", "-G", "Ninja",
                    f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DCMAKE_C_FLAGS={' '.join(SANITIZE)}")
        self.output(CMAKE, "--build", self.dir / "build")
        flags = self.output("env", f"PKG_CONFIG_PATH={libraries}/pkgconfig", "pkg-config", "--cflags",
                            "--libs", "aceconv >= 1.0")
        self.output("cc", *SANITIZE, example / "encode.c", "-o", self.dir / "encode",
                    *shlex.split(flags), "-Wl,-rpath," + libraries)
        entry = b'{"sequence-number": 10, "grant": "permit", "protocol": "tcp"}'
        expected = subprocess.run([self.prefix / "bin/aceconv", "encode", "-q", "--no-labels"], check=True,
                                  input=entry, capture_output=True).stdout
        for program in (self.dir / "build/encode", self.dir / "encode"):
            done = subprocess.run([program], input=entry, capture_output=True, check=False)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (0, expected, b""))
            done = subprocess.run([program], input=b'{"grant": "may"}', capture_output=True, check=False)
            self.assertEqual((done.returncode, b'/grant: "may"; expected ' in done.stderr), (1, True),
                             done.stderr)


if __name__ == "__main__":
    unittest.main()
