"""The manual pages and the completions that the build makes."""
import os
import pathlib
import pty
import re
import shutil
import subprocess
import unittest

from harness import ACECONV, EXAMPLES, TIMES, Case

PAGES = pathlib.Path(os.environ["ACECONV_BUILD"]) / "pages"
VERBS = re.findall(r"(?m)^  (\w+) {3}", subprocess.run(
    [ACECONV, "--help"], check=True, capture_output=True, text=True).stdout.split("Verbs:")[1])
ESCAPES = {r"\-": "-", r"\e": "\\", r"\(aq": "'", r"\(ga": "`", r"\(ha": "^", r"\(ti": "~", r"\&": ""}


def needs(program):
    return unittest.skipUnless(shutil.which(program), f"{program} is not installed")


class Manual(Case):
    def setUp(self):
        super().setUp()
        for path in (*EXAMPLES.glob("*.json"), pathlib.Path(os.environ["ACECONV_EXAMPLE_HOST"])):
            os.symlink(path, self.dir / path.name)
        self.env = {**os.environ, "PATH": f"{pathlib.Path(ACECONV).parent}:{os.environ['PATH']}"}

    @needs("mandoc")
    def test_each_page_is_well_formed(self):
        pages = list(PAGES.glob("man*/*"))
        self.assertEqual({page.name for page in pages}, {"aceconv.1", "aceconv-hostcheck.1", "aceconv-record.5",
                                                         *(f"aceconv-{verb}.1" for verb in VERBS)})
        done = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", *pages], check=False,
                              capture_output=True, text=True)
        self.assertEqual((done.stdout, done.stderr), ("", ""))

    def test_each_page_tells_what_its_verb_takes(self):
        for verb in VERBS:
            page = (PAGES / "man1" / f"aceconv-{verb}.1").read_text().replace(r"\-", "-")
            told = re.findall(r"(?m)^  (?:-\w,)?(--[\w-]+)", self.ok("help", verb).decode())
            self.assertIn("--help", told)
            self.assertEqual(re.findall(r"(?m)^\.TP\n(?:\\fB-\w\\fR, )?\\fB(--[\w-]+)", page), told, verb)
            self.assertIn("\n.SH EXAMPLES\n", page, verb)

    def shown(self, command):
        done = subprocess.run(["bash", "-c", command], cwd=self.dir, env=self.env, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return done.stdout

    def test_examples(self):
        """What a page shows is what comes of it, but for the time it took."""
        for page in sorted(PAGES.glob("man1/*")):
            if "hostcheck" in page.name and os.environ["ACECONV_SANITIZE"]:
                continue
            section = page.read_text().split(".SH EXAMPLES\n")[1].split("\n.SH ")[0]
            text = "".join(re.findall(r"(?s)\.EX\n(.*?)\.EE\n", section))
            text = re.sub(r"\\(\(..|.)", lambda found: ESCAPES[found[0]], text)
            for command, wanted in re.findall(r"(?m)^\$ (.*)\n((?:(?!\$ ).*\n)*)", text):
                with self.subTest(command, page=page.name):
                    self.assertEqual(TIMES.sub("", self.shown(command)), TIMES.sub("", wanted),
                                     "ACECONV_RENEW=1 writes what is shown now into man/")

    @unittest.skipUnless(os.environ.get("ACECONV_RENEW"), "only on demand")
    def test_renew_the_examples(self):
        def renewed(found):
            shown = self.shown(found[1])
            if TIMES.sub("", shown) == TIMES.sub("", found[2].replace("    ", "", 1).replace("\n    ", "\n")):
                return found[0]
            return f"    $ {found[1]}\n" + re.sub(r"(?m)^(?=.)", "    ", shown)
        for text in sorted((EXAMPLES.parent / "man").glob("*.md")):
            text.write_text(re.sub(r"(?m)^    \$ (.*)\n((?:(?!    \$ )    .*\n)*)", renewed, text.read_text()))


class Completion(Case):
    """What follows of a begun command line, in each shell: all of its continuations."""
    CASES = [
        ("", VERBS), ("con", ["convert"]), ("help enc", ["encode"]),
        ("decode --form", ["--format"]), ("decode --format x", ["xml"]),
        ("convert --to ", ["base", "um"]), ("convert -q --schema u", ["um"]),
        ("encode --backend v", ["validating"]), ("encode rul", ["rules.json"]),
        ("encode -o rul", ["rules.json"]), ("diff rules.json rul", ["rules.json"]),
        ("encode --modules fol", ["folder"]), ("--plugin rul", ["rules.json"]),
        ("diff --schema-", ["--schema-a", "--schema-b"]), ("check --no-l", ["--no-losses"]),
    ]

    def setUp(self):
        super().setUp()
        self.file("rules.json", "{}")
        (self.dir / "folder").mkdir()

    def expect(self, complete):
        for line, wanted in self.CASES:
            with self.subTest(line):
                found = [word.rstrip("/") for word in complete("aceconv " + line)]
                self.assertEqual(sorted(found), sorted(wanted))

    def lines(self, *command, **more):
        return subprocess.run(command, cwd=self.dir, check=True, capture_output=True, text=True, timeout=60,
                              **more).stdout.splitlines()

    @unittest.skipUnless(os.path.exists("/usr/share/bash-completion/bash_completion"),
                         "bash-completion is not installed")
    def test_bash(self):
        script = ('source /usr/share/bash-completion/bash_completion; source "$0"; COMP_LINE=$1\n'
                  'COMP_POINT=${#COMP_LINE} COMP_CWORD=$(($# - 2)) COMP_WORDS=("${@:2}")\n'
                  '_aceconv; printf "%s\\n" "${COMPREPLY[@]}"')
        self.expect(lambda line: self.lines("bash", "-c", script, PAGES / "completions" / "aceconv", line,
                                            *line.split(" ")))

    @needs("fish")
    def test_fish(self):
        script = f'source {PAGES}/completions/aceconv.fish; complete -C "$argv[1]"'
        def complete(line):
            found = self.lines("fish", "--no-config", "-c", script, line,
                               env={**os.environ, "HOME": str(self.dir)})
            words = [candidate.split("\t")[0] for candidate in found]
            # A newer one also offers what has the word inside.
            return [word for word in words if word.startswith(line.split(" ")[-1])]
        self.expect(complete)

    @needs("zsh")
    def test_zsh(self):
        """In a terminal; the matches also go into a file, and Control-T says that they are all."""
        self.file("rc", f"fpath=({PAGES}/completions $fpath); autoload -Uz compinit; compinit -u -D\n"
                        "compadd() { local -a found; builtin compadd -O found \"$@\"\n"
                        "  print -rl -- $found >> matches; builtin compadd \"$@\" }\n"
                        "finish() { BUFFER=; print all >> matches }; zle -N finish\n"
                        "PS1='ready> '; bindkey '^I' complete-word; bindkey '^T' finish\n")
        main, side = pty.openpty()
        def complete(line):
            matches = self.dir / "matches"
            matches.write_text("")
            os.write(main, line.encode() + b"\t\x14")
            while not matches.read_text().endswith("all\n"):
                os.read(main, 4096)
            return set(matches.read_text().split()) - {"all"}
        with subprocess.Popen(["zsh", "-f", "-i"], cwd=self.dir, stdin=side, stdout=side, stderr=side,
                              env={**os.environ, "TERM": "dumb"}, start_new_session=True) as shell:
            os.write(main, b"source ./rc\n")
            seen = b""
            while b"ready> " not in seen:
                seen += os.read(main, 4096)
            self.expect(complete)
            shell.kill()


if __name__ == "__main__":
    unittest.main()
