"""Installs tedious from the npm registry into the folder given, then runs its tests against the sample server."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

from sample_server import SKIPPED, SampleServer, make_certificates

HERE = pathlib.Path(__file__).parent


def install(folder):
    folder.mkdir(parents=True, exist_ok=True)
    shutil.copy(HERE / "package.json", folder)
    if (folder / "node_modules" / "tedious").exists():
        return True
    done = subprocess.run(["npm", "install", "--no-audit", "--no-fund"], cwd=folder)
    return done.returncode == 0


def run(folder, server, authority=None):
    environment = {**os.environ, "NODE_PATH": str(folder / "node_modules"), "VANTOR_SAMPLE_PORT": str(server.port)}
    if authority:
        environment["VANTOR_SAMPLE_AUTHORITY"] = authority
    return subprocess.run(["node", "--test", HERE / "tedious_test.js"], env=environment, timeout=120).returncode


def main(folder):
    if not shutil.which("node") or not shutil.which("npm"):
        print("SKIPPED: node and npm are not there")
        return SKIPPED
    if not install(folder):
        print("SKIPPED: npm could not install tedious (no registry?)")
        return SKIPPED
    with SampleServer() as server:
        status = run(folder, server)
    with tempfile.TemporaryDirectory() as certificates:
        make_certificates(certificates)
        files = ["--cert", f"{certificates}/server.pem", "--key", f"{certificates}/server.key"]
        with SampleServer("--tls", "require", *files) as server:
            return status or run(folder, server, f"{certificates}/authority.pem")


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
