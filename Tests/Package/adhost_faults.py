"""adhost_faults.py VIRLO-ADHOST AUTHORITY LOG: what a host meets when it or the ad process goes wrong."""

import json
import os
import signal
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../Examples/AdHost"))
from play_ad import AdProcess  # noqa: E402

PARSE, INVALID, NO_METHOD, PARAMETERS, STATE = -32700, -32600, -32601, -32602, -32000
START = '{"jsonrpc":"2.0","id":1,"method":"start","params":{"appIdentifier":"a","identifier":"../x"}}'
# What the host writes, and the code of the one response that is due; None: no response.
BROKEN = {
    "no JSON": (b"nonsense", PARSE),
    "an unfinished object": (b'{"jsonrpc":"2.0","id":1', PARSE),
    "not UTF-8": (b'{"jsonrpc":"2.0","id":1,"method":"\xff"}', PARSE),
    "too long": (b" " * (2 << 20) + b"{}", PARSE),
    "deeply nested": (b"[" * 900000, PARSE),
    "a batch": (b'[{"jsonrpc":"2.0","id":1,"method":"start"}]', INVALID),
    "another version": (b'{"id":1,"method":"start"}', INVALID),
    "parameters by position": (b'{"jsonrpc":"2.0","id":1,"method":"start","params":["a"]}', INVALID),
    "unknown method": (b'{"jsonrpc":"2.0","id":1,"method":"stop"}', NO_METHOD),
    "unknown notification": (b'{"jsonrpc":"2.0","method":"stop"}', None),
    "before the start": (b'{"jsonrpc":"2.0","id":1,"method":"show","params":{"ad":1}}', STATE),
    "no identifier": (b'{"jsonrpc":"2.0","id":1,"method":"start"}', PARAMETERS),
    "identifier that is a path": (START.encode(), PARAMETERS),
}


def codes_of_responses(program, lines):
    run = subprocess.run([program], input=b"\n".join(lines) + b"\n", capture_output=True, timeout=60, check=True)
    messages = [json.loads(each) for each in run.stdout.splitlines()]
    return [message["error"]["code"] for message in messages if "error" in message]


def refused(ads, method, **parameters):
    try:
        ads.call(method, **parameters)
    except RuntimeError as error:
        return str(error)
    return None


def main(program, authority, log):
    codes = codes_of_responses(program, [line for line, _ in BROKEN.values()])
    due = {name: code for name, (_, code) in BROKEN.items() if code is not None}
    assert codes == list(due.values()), f"{codes} instead of {due}"

    ads = AdProcess(program)
    ads.call("start", appIdentifier="killed-host", authorities=authority, reachable=True)
    assert refused(ads, "start", appIdentifier="again")
    numbers = [ads.call("request", placement="AppLaunch")["ad"] for _ in range(16)]
    assert refused(ads, "request", placement="AppLaunch"), "ads without end"
    ready = [ads.wait_for("ready", "none", "error") for _ in numbers]
    assert all(method == "ready" for method, _ in ready), ready
    ads.call("dismiss", ad=numbers[1])
    assert refused(ads, "show", ad=numbers[1])
    ads.call("show", ad=numbers[0])
    ads.wait_for("shown")
    assert refused(ads, "show", ad=numbers[2]), "two ads at once"
    ads.call("dismiss", ad=numbers[0])
    ads.wait_for("closed")

    ads.call("show", ad=numbers[2])
    ads.wait_for("shown")
    with open(log, encoding="utf-8") as requests:
        placements = [line for line in requests if "killed-host" in line or "currentPlacement" in line]
    assert not any('"AppClose"' in line or '"AppResume"' in line for line in placements), "the window was taken for the app"
    os.kill(ads.process.pid, signal.SIGKILL)
    begin = time.monotonic()
    try:
        ads.wait_for()
    except RuntimeError:
        pass
    assert time.monotonic() - begin < 2, "the host did not learn of the end"
    assert refused(ads, "foreground") == "the ad process has ended"

    ads = AdProcess(program)  # the next ad is one restart away
    ads.call("start", appIdentifier="next-host", authorities=authority, reachable=True)
    ads.call("setUserProfile", age=30, gender="x", keywords=["a"])
    ads.call("registerThirdPartyUserId", userId="somebody")
    begin = time.monotonic()
    assert ads.close() == 0
    assert time.monotonic() - begin < 3, "the end of the input did not end the process"


main(*sys.argv[1:])
