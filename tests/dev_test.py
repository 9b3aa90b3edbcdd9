"""What ./dev does about packages that are missing, on machines made of a few programs."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

DEV = pathlib.Path(os.environ["ACECONV_SOURCE"]) / "dev"

# Each machine has the programs that it names, and these.
COMMON = ("bash", "dirname", "nproc", "cat", "env", "grep")
FAKES = {
    "dpkg-query": 'while read -r name; do echo "installed $name"; done <"$MACHINE/installed"',
    "apt-cache": '[[ $1 != madison ]] || grep -x -- "$2" "$MACHINE/offered"',
    "apt-get": 'echo "${DEBIAN_FRONTEND-}" apt-get "$@" >>"$MACHINE/calls"\n'
               'if [[ $1 == update ]]; then cat "$MACHINE/mirror" >>"$MACHINE/offered"; exit; fi\n'
               '[[ ! -e $MACHINE/offline ]]',
    "sudo": 'echo sudo >>"$MACHINE/calls"; exec env -u DEBIAN_FRONTEND "$@"',
    "cmake": "exit 9",
    "id": 'echo "$USER_ID"',
}
DEBIAN = ("dpkg-query", "apt-cache", "apt-get")
BUILD, ALL = (subprocess.run(["bash", "-c", f'source scripts/packages.sh; echo "${{{task}_packages[@]}}"'],
                              cwd=DEV.parent, check=True, capture_output=True, text=True).stdout.split()
               for task in ("build", "all"))
FIRST, SECOND = ([names.split("|")[at] for names in ALL] for at in (0, -1))
GO_ON = ": install them or what they hold by other means, then go on with ACECONV_NO_INSTALL=1\n"
INSTALL = "apt-get install -y -qq --no-install-recommends"


def without(names, *left_out):
    return [name for name in names if name not in left_out]


class Packages(unittest.TestCase):
    def on(self, programs, installed, offered=(), mirror=(), user=0, online=True,
           verb="deps", more=()):
        """(exit code, messages, calls) of ./dev VERB on such a machine."""
        with tempfile.TemporaryDirectory() as folder:
            machine = pathlib.Path(folder)
            (machine / "bin").mkdir()
            for name in COMMON:
                (machine / "bin" / name).symlink_to(shutil.which(name))
            for name in (*programs, "cmake", "id"):
                fake = machine / "bin" / name
                fake.write_text("#!" + shutil.which("bash") + "\n" + FAKES[name] + "\n")
                fake.chmod(0o755)
            for name, lines in (("installed", installed), ("offered", offered), ("mirror", mirror)):
                (machine / name).write_text("".join(line + "\n" for line in lines))
            if not online:
                (machine / "offline").touch()
            done = subprocess.run(
                [DEV, verb], check=False, capture_output=True, text=True,
                env={"PATH": str(machine / "bin"), "MACHINE": folder, "USER_ID": str(user), **dict(more)})
            calls = machine / "calls"
            return (done.returncode, done.stderr,
                    [line.strip() for line in calls.read_text().splitlines()] if calls.exists() else [])

    def test_machines(self):
        some, names = without(FIRST, "g++", "libyang2-dev"), "g++ libyang2-dev"
        refused = "dev: packages {} are missing, and {}" + GO_ON
        said = "dev: going on without packages {}, as ACECONV_NO_INSTALL says\n"
        never = {"more": {"ACECONV_NO_INSTALL": "1"}}
        update = ["apt-get update -qq", f"noninteractive {INSTALL} {names}"]
        for told, programs, installed, more, code, err, calls in (
                ("all there", DEBIAN, FIRST, {}, 0, "", []),
                ("the names of another release", DEBIAN, SECOND, {}, 0, "", []),
                ("installed as root", DEBIAN, some, {"offered": FIRST}, 0, f"Installing {names}\n", update),
                ("lists that come with the update", DEBIAN, some, {"mirror": SECOND}, 0,
                 "Installing g++ libyang-dev\n", [update[0], f"noninteractive {INSTALL} g++ libyang-dev"]),
                ("by sudo", (*DEBIAN, "sudo"), some, {"offered": FIRST, "user": 7}, 0,
                 f"Installing {names}\n", ["sudo", update[0], "sudo", update[1]]),
                ("not root", DEBIAN, some, {"offered": FIRST, "user": 7}, 1,
                 refused.format(names, "only root can install them"), []),
                ("no network", DEBIAN, some, {"offered": FIRST, "online": False}, 1,
                 f"Installing {names}\n" + refused.format(names, "apt-get could not install them"), update),
                ("no apt", (), [], {}, 1, refused.format(" ".join(ALL), "there is no apt-get"), []),
                ("the demo tests nothing", DEBIAN, FIRST[:len(BUILD)], {"verb": "demo"}, 9, "", []),
                ("never, nothing missing", DEBIAN, FIRST, never, 0, "", []),
                ("never, some missing", DEBIAN, some, never, 0,
                 said.format("g++ libyang2-dev|libyang-dev"), []),
                ("never, no apt", (), [], never, 0, "", [])):
            with self.subTest(told):
                self.assertEqual(self.on(programs, installed, **more), (code, err, calls))


if __name__ == "__main__":
    unittest.main()
