"""Starts the sample server for the tests of clients that others wrote."""

import os
import subprocess

SKIPPED = 77  # what CTest takes for "could not be tried here"


def make_certificates(folder):
    """Puts authority.pem, server.pem and server.key, for localhost and 127.0.0.1, into the folder."""
    subprocess.run([os.environ["VANTOR_TEST_CERTIFICATES"], folder], check=True)


class SampleServer:
    """A server on a free loopback port: `with SampleServer() as server: server.port`."""

    user = "sa"
    password = "Sample-1"

    def __init__(self, *arguments):
        self._arguments = arguments

    def __enter__(self):
        self._process = subprocess.Popen(
            [os.environ["VANTOR_TEST_SERVER"], "--port", "0", *self._arguments],
            stdout=subprocess.PIPE,
            text=True,
        )
        for line in self._process.stdout:
            if line.startswith("Listening on "):
                self.port = int(line.rsplit(":", 1)[1])
                return self
        raise RuntimeError("the sample server ended before it listened")

    def __exit__(self, *_):
        self._process.terminate()
        try:
            status = self._process.wait(timeout=10)
        except subprocess.TimeoutExpired:
            self._process.kill()
            raise
        self._process.stdout.close()
        assert status == 0, f"the sample server ended with {status}"
