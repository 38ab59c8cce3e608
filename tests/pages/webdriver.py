"""A browser without a window, driven through the WebDriver protocol (W3C) that chromedriver speaks."""

import base64
import json
import re
import shutil
import subprocess
import tempfile
import urllib.error
import urllib.request

OPTIONS = [
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
    "--disable-component-update", "--disable-sync",
    # Whatever is asked for by a name is not found: pages must do without.
    "--host-resolver-rules=MAP * ~NOTFOUND , EXCLUDE localhost",
]
KEYS = {"ArrowLeft": "\ue012", "ArrowUp": "\ue013", "ArrowRight": "\ue014", "ArrowDown": "\ue015", "Enter": "\ue007",
        "Escape": "\ue00c", "Tab": "\ue004"}


class Browser:
    """Ends the browser and its driver when the `with` block is left."""

    def __enter__(self):
        self.profile = tempfile.mkdtemp()
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        self.session = None
        port = None
        while port is None:
            line = self.driver.stdout.readline()
            if not line:
                raise RuntimeError("chromedriver does not start")
            port = re.search(r"started successfully on port (\d+)", line)
        self.base = f"http://localhost:{port[1]}"
        chrome = {"args": OPTIONS + [f"--user-data-dir={self.profile}"]}
        capabilities = {"browserName": "chrome", "goog:chromeOptions": chrome,
                        "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}
        try:
            answer = self.ask("POST", "/session", {"capabilities": {"alwaysMatch": capabilities}})
        except Exception:
            self.__exit__()
            raise
        self.session = "/session/" + answer["sessionId"]
        return self

    def __exit__(self, *_):
        if self.session:
            self.ask("DELETE", self.session)
        self.driver.terminate()
        self.driver.wait()
        shutil.rmtree(self.profile, ignore_errors=True)

    def ask(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        try:
            with urllib.request.urlopen(request, timeout=120) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from error

    def post(self, command, **body):
        return self.ask("POST", f"{self.session}/{command}", body)

    def developer(self, command, **parameters):
        """A command of the browser's own protocol for developers."""
        return self.post("goog/cdp/execute", cmd=command, params=parameters)

    def open(self, url):
        self.post("url", url=url)

    def url(self):
        return self.ask("GET", self.session + "/url")

    def run(self, script, *arguments):
        return self.post("execute/sync", script=script, args=list(arguments))

    def run_async(self, script, *arguments):
        return self.post("execute/async", script=script, args=list(arguments))

    def press(self, key):
        code = KEYS[key]
        strokes = [{"type": "keyDown", "value": code}, {"type": "keyUp", "value": code}]
        self.post("actions", actions=[{"type": "key", "id": "keyboard", "actions": strokes}])

    def complaints(self):
        """What the browser had to say since the last call."""
        return [entry["message"] for entry in self.post("se/log", type="browser")]

    def requests(self):
        """What pages asked for since the last call."""
        events = [json.loads(entry["message"])["message"] for entry in self.post("se/log", type="performance")]
        return [event["params"]["request"]["url"] for event in events if event["method"] == "Network.requestWillBeSent"]

    def set_screen(self, width, height, dots=1, phone=False):
        self.developer("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=dots,
                       mobile=phone)

    def prefer(self, scheme):
        self.developer("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])

    def set_scripts(self, allowed):
        self.developer("Emulation.setScriptExecutionDisabled", value=not allowed)

    def picture(self, path, width, height, scale):
        """A JPEG file of what a window of this size shows."""
        part = {"x": 0, "y": self.run("return scrollY"), "width": width, "height": height, "scale": scale}
        answer = self.developer("Page.captureScreenshot", format="jpeg", quality=85, clip=part)
        with open(path, "wb") as out:
            out.write(base64.b64decode(answer["data"]))
