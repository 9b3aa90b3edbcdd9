"""The installed program, wherever its prefix has come to and its libraries lie in it."""
import os
import pathlib
import shutil
import subprocess
import unittest

from harness import Case

SOURCE, BUILD = (pathlib.Path(os.environ["ACECONV_" + name]) for name in ("SOURCE", "BUILD"))
CMAKE = os.environ["CMAKE"]
DOC = SOURCE / "examples" / "border-filter.json"


class Installed(Case):
    def install(self, build, prefix):
        subprocess.run([CMAKE, "--install", build, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL)

    def configured(self, libraries):
        """A build tree of that layout that installs the programs of the one under test."""
        build = self.dir / "build"
        subprocess.run([CMAKE, "-S", SOURCE, "-B", build, "-G", "Ninja", "-DACECONV_TESTS=OFF",
                        "-DCMAKE_INSTALL_LIBDIR=" + libraries], check=True, stdout=subprocess.DEVNULL)
        for script in build.rglob("*/cmake_install.cmake"):
            script.write_text("".join(
                line if "include(" in line else line.replace(str(build), str(BUILD))
                for line in script.read_text().splitlines(keepends=True)))
        return build

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
        first, moved, other = self.dir / "first", self.dir / "moved", "lib/some-triplet"
        self.install(self.configured(other), first)
        first.rename(moved)
        self.assertEqual(self.runs_from(moved), other)
        os.symlink("moved", self.dir / "linked")
        self.assertEqual(self.runs_from(self.dir / "linked"), other)
        os.symlink(moved / "bin" / "aceconv", self.dir / "program")
        self.assertEqual(self.runs_from(moved, self.dir / "program"), other)
        copied = self.dir / "copied"
        shutil.copytree(moved, copied, symlinks=True)
        (copied / other / "aceconv").mkdir()
        (copied / other / "libipv4_acl_ace.so").rename(copied / other / "aceconv/libipv4_acl_ace.so")
        self.assertEqual(self.runs_from(copied), other + "/aceconv")
        self.install(BUILD, self.dir / "plain")
        self.assertIn(self.runs_from(self.dir / "plain"), ("lib", "lib64"))

    def test_nothing_comes_from_the_tree_it_was_built_from(self):
        prefix = self.dir / "prefix"
        self.install(BUILD, prefix)
        program, plugin = prefix / "bin/aceconv", next(prefix.rglob("libipv4_acl_ace.so"))
        beside = str(plugin.resolve())
        for part, option, given, said in (
                (prefix / "share", "--modules", SOURCE / "yang", "cannot find the YANG modules: no "
                 f"folder above {plugin.resolve().parent} has share/aceconv/yang; --modules names "),
                (plugin, "--plugin", BUILD / "lib/libipv4_acl_ace.so", f"the plug-in is neither {beside} "
                 f"nor {plugin.resolve().parent}/aceconv/{plugin.name}; --plugin names another")):
            part.rename(self.dir / "aside")
            done = subprocess.run([program, "check", DOC], check=False, capture_output=True, text=True)
            self.assertEqual((done.returncode, said in done.stderr), (3, True), done.stderr)
            subprocess.run([program, "check", "-q", DOC, option, given], check=True)
            (self.dir / "aside").rename(part)


if __name__ == "__main__":
    unittest.main()
