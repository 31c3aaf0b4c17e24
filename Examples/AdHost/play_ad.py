#!/usr/bin/env python3
"""play_ad.py VIRLO-ADHOST AUTHORITY PLACEMENT: shows an ad and waits for its reward. Standard library only."""

import json
import queue
import subprocess
import sys
import threading


class AdProcess:
    """virlo-adhost, spoken to by JSON-RPC. Its end gives every call under way an error and a last event "gone"."""

    def __init__(self, *command):
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)
        self.events = queue.Queue()
        self.calls = {}
        self.lock = threading.Lock()
        threading.Thread(target=self._read, daemon=True).start()

    def call(self, method, **parameters):
        response = queue.Queue()
        with self.lock:
            number = len(self.calls) + 1
            self.calls[number] = response
        line = {"jsonrpc": "2.0", "id": number, "method": method, "params": parameters}
        try:
            print(json.dumps(line), file=self.process.stdin)
        except BrokenPipeError:
            raise RuntimeError("the ad process has ended") from None
        message = response.get()
        if "error" in message:
            raise RuntimeError(message["error"]["message"])
        return message["result"]

    def wait_for(self, *methods):
        """The next event of these names; log lines go to standard error."""
        while True:
            method, parameters = self.events.get()
            if method == "log":
                print(parameters["message"], file=sys.stderr)
            elif method in methods:
                return method, parameters
            elif method == "gone":
                raise RuntimeError("the ad process has ended")

    def close(self):
        self.process.stdin.close()  # the end of the input ends the session and the process
        return self.process.wait()

    def _read(self):
        for line in self.process.stdout:
            message = json.loads(line)
            if "method" in message:
                self.events.put((message["method"], message["params"]))
            elif message["id"] in self.calls:
                self.calls[message["id"]].put(message)
        self.events.put(("gone", {}))
        for response in list(self.calls.values()):
            response.put({"error": {"message": "the ad process has ended"}})


def main(program, authority, placement):
    ads = AdProcess(program)
    ads.call("start", appIdentifier="python-host", authorities=authority, reachable=True)
    ad = ads.call("request", placement=placement)["ad"]
    method, parameters = ads.wait_for("ready", "none", "error")
    if method != "ready":
        sys.exit(f"no ad: {parameters}")
    ads.call("show", ad=ad)
    for awaited in ("shown", "closed", "reward"):
        print(awaited, json.dumps(ads.wait_for(awaited)[1]), flush=True)
    return ads.close()


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
