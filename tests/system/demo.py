#!/usr/bin/python3
"""Runs ./run.sh as a newcomer does: waits for what it prints, tries the three things, presses Ctrl-C.   demo.py"""

import asyncio
import json
import os
import re
import signal
import socket
import subprocess
import sys
import threading
import urllib.request
from pathlib import Path

import websockets

ROOT = Path(__file__).resolve().parents[2]
PATIENCE = 3600  # it may have to build


class Demo:
    def __init__(self, port):
        self.port = port
        self.lines, self.changed = [], threading.Condition()
        environment = os.environ | {"HTTP_PORT": str(port), "DISCOVERY_PORT": str(free_port()), "SPEED": "10"}
        self.process = subprocess.Popen([ROOT / "run.sh"], env=environment, text=True, start_new_session=True,
                                        stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            with self.changed:
                self.lines.append(line)
                self.changed.notify_all()

    def wait_for(self, pattern, seconds):
        with self.changed:
            if not self.changed.wait_for(lambda: any(re.search(pattern, line) for line in self.lines), seconds):
                raise AssertionError(f"{pattern} was not printed:\n" + "".join(self.lines[-50:]))

    def get(self, path, body=None):
        request = urllib.request.Request(f"http://127.0.0.1:{self.port}{path}", headers={"Content-Type": "application/json"},
                                         data=None if body is None else json.dumps(body).encode())
        with urllib.request.urlopen(request, timeout=5) as answer:
            return json.load(answer)

    def start_page(self):
        request = urllib.request.Request(f"http://127.0.0.1:{self.port}/", headers={"Accept": "text/html"})
        with urllib.request.urlopen(request, timeout=5) as answer:
            return answer.headers["Content-Type"], answer.read().decode()

    async def first_view(self):
        async with websockets.connect(f"ws://127.0.0.1:{self.port}/") as client:
            await client.send(json.dumps({"action": "subscribe", "path": "/ChargingManagementCore/views", "requestId": "1"}))
            async for text in client:
                message = json.loads(text)
                if message.get("event") == "snapshot" and message["data"]:
                    return message["data"][0]
                if message.get("event") == "added":
                    return message["data"]

    def stop(self):
        os.killpg(self.process.pid, signal.SIGINT)
        return self.process.wait(15)


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


def running():
    """The programs of this checkout that run now."""
    found = []
    for link in Path("/proc").glob("[0-9]*/exe"):
        try:
            program = link.readlink()
        except OSError:  # ended meanwhile
            continue
        if program.parent == ROOT / "build/release/bin":
            found.append(program.name)
    return found


def main():
    demo = Demo(free_port())
    try:
        demo.wait_for(r"The bridge listens on", PATIENCE)
        view = asyncio.run(asyncio.wait_for(demo.first_view(), 60))
        assert view["type"] == "popup", view
        assert demo.get(view["uri"], {"visibility": "requestedViewVisible"})["visibility"] == "requestedViewVisible"
        assert [each["uri"] for each in demo.get("/ChargingManagementCore/views")] == [view["uri"]]
        demo.wait_for(r"^bridge \| .* INFO TROV ", 1)
        demo.wait_for(r"^ +vehicle \| .*\"subscribed\"", 1)
        kind, page = demo.start_page()
        assert kind.startswith("text/html") and "Charging management core" in page, (kind, page[:200])
        busy = subprocess.run([ROOT / "run.sh"], env=os.environ | {"HTTP_PORT": str(demo.port)}, capture_output=True, text=True, timeout=PATIENCE)
        assert busy.returncode == 1 and f"port {demo.port} is in use" in busy.stderr, busy
    finally:
        status = demo.stop()
    demo.wait_for(r"^Both stopped\.", 5)
    demo.wait_for(r"TROV version .* has stopped!", 5)
    assert status == 0, status
    assert not running(), f"processes are left: {running()}"
    print("the demo runs and stops")


if __name__ == "__main__":
    sys.exit(main())
