"""The recipes for Slurm and Dask as the page on large lists has them, where the engine is
installed. Slurm's daemons are started for it; Dask starts workers, in the long tests."""
import functools
import os
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import time
import unittest

from harness import ACECONV, LONG, Case

SOURCE = pathlib.Path(os.environ["ACECONV_SOURCE"])
PAGE = (SOURCE / "docs" / "bulk.md").read_text()
COUNT, LINES, BAD = 2000, 600, 1500
PATH = os.environ["PATH"] + ":/usr/sbin:/sbin"
which = functools.partial(shutil.which, path=PATH)
DAEMONS = ("munged", "slurmctld", "slurmd")
DASK = next((python for python in (sys.executable, "/usr/bin/python3") if subprocess.run(
    [python, "-c", "import distributed"], check=False, stderr=subprocess.DEVNULL).returncode == 0), None)

SLURM = """
ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={ports[0]}
SlurmdPort={ports[1]}
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd.log
ProctrackType=proctrack/pgid
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
ReturnToService=2
NodeName={host} NodeAddr=127.0.0.1 CPUs=2 State=UNKNOWN
PartitionName=all Nodes={host} Default=YES State=UP
"""


def recipe(word):
    """The page's block of commands with that word, in small parts."""
    block, = (block for block in re.findall(r"(?:^    .*\n)+", PAGE, re.M) if word in block)
    assert "50000" in block
    return block.replace("50000", str(LINES))


class Cluster(Case):
    def setUp(self):
        super().setUp()
        self.lines = subprocess.run([os.environ["ACECONV_GENERATOR"], str(COUNT)], check=True,
                                    capture_output=True).stdout.splitlines(keepends=True)
        (self.dir / "bin").mkdir()
        (self.dir / "bin/aceconv").symlink_to(ACECONV)
        (self.dir / "examples").symlink_to(SOURCE / "examples")
        self.env = {**os.environ, "PATH": f"{self.dir}/bin:{PATH}"}

    def joined(self, word, lines):
        """(exit code, encodings or nothing, messages) of a recipe over these lines."""
        shutil.rmtree(self.dir / "parts", ignore_errors=True)
        (self.dir / "entries.bags").unlink(missing_ok=True)
        self.file("entries.ndjson", b"".join(lines))
        done = subprocess.run(["bash", "-e", "-c", recipe(word)], cwd=self.dir, env=self.env,
                              check=False, timeout=120, capture_output=True, text=True)
        said = done.stderr + "".join(file.read_text()
                                     for file in sorted(self.dir.glob("parts/*.messages")))
        made = self.dir / "entries.bags"
        return done.returncode, made.read_bytes() if made.exists() else None, said

    def expect_the_bytes_of_one_process(self, word):
        alone = self.ok("encode", "--schema", "base", "-q", "-", stdin=b"".join(self.lines))
        self.assertEqual(self.joined(word, self.lines), (0, alone, ""))
        bad = [*self.lines[:BAD], b'{"grant":"drop"}\n', *self.lines[BAD:]]
        code, _, err = self.run_command("encode", "--schema", "base", "-q", "-", stdin=b"".join(bad))
        self.assertIn(f":{BAD + 1}: ", err)
        self.assertEqual(self.joined(word, bad), (code, None, err))

    def start(self, *command):
        daemon = subprocess.Popen([which(command[0]), *command[1:]], env=self.env,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(daemon.wait)
        self.addCleanup(daemon.terminate)

    @unittest.skipUnless(all(map(which, (*DAEMONS, "sbatch"))), "Slurm is not installed (slurm-wlm)")
    @unittest.skipIf(os.getuid(), "only root can start Slurm's daemons")
    def test_slurm(self):
        for folder in ("state", "spool"):
            (self.dir / folder).mkdir()
        key = self.dir / "key"
        key.write_bytes(os.urandom(64))
        key.chmod(0o600)
        self.start("munged", "--foreground", "--force", f"--key-file={key}",
                   *(f"--{name}={self.dir}/munge.{name.split('-')[0]}"
                     for name in ("socket", "pid-file", "log-file", "seed-file")))
        sockets = [socket.create_server(("127.0.0.1", 0)) for _ in range(2)]
        ports = [s.getsockname()[1] for s in sockets]
        for s in sockets:
            s.close()
        self.env["SLURM_CONF"] = self.file("slurm.conf", SLURM.format(
            host=socket.gethostname().split(".")[0], user="root", ports=ports,
            folder=self.dir))
        self.start("slurmctld", "-D", "-i")
        self.start("slurmd", "-D")
        for _ in range(100):
            if "idle" in subprocess.run(["sinfo"], env=self.env, check=False, capture_output=True,
                                        text=True).stdout:
                break
            time.sleep(0.2)
        self.expect_the_bytes_of_one_process("sbatch")

    @unittest.skipUnless(DASK, "Dask is not installed (python3-distributed)")
    @unittest.skipUnless(LONG, "with the long tests")
    def test_dask(self):
        (self.dir / "bin/python3").symlink_to(DASK)
        self.expect_the_bytes_of_one_process("dask_parts.py")


if __name__ == "__main__":
    unittest.main()
