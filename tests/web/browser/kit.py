# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The kit of the browser tests: a simulated device with its settings page, and a headless browser.

VELK_BUILD is the build folder, and WEB_ARTEFACTS the folder for screenshots. AXE is the file of axe-core; without
it the accessibility checks are skipped."""

import contextlib
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from selenium import webdriver
from selenium.common.exceptions import StaleElementReferenceException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import Select

BUILD = pathlib.Path(os.environ["VELK_BUILD"])
ARTEFACTS = pathlib.Path(os.environ.get("WEB_ARTEFACTS", BUILD / "web"))
AXE = os.environ.get("AXE")
LOCK = "/var/tmp/vklib_lock"
WAIT_S = 30


class Device:
    """A simulated device with its settings page, until close()."""

    count = 0

    def __init__(self):
        Device.count += 1
        self.name = "web%d-%d" % (os.getpid(), Device.count)
        self.messages = tempfile.TemporaryFile("w+", encoding="utf-8")
        self.process = subprocess.Popen([BUILD / "velk-sandbox", "--quiet", "--web", "--name", self.name, "--", "cat"],
                                        stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=self.messages)
        text = self.started()
        self.address = re.search(r"http://127\.0\.0\.1:\d+/", text).group()
        self.user = re.search(r"^ *user (\S+)$", text, re.MULTILINE).group(1)
        self.password = re.search(r"^ *password (\S+)$", text, re.MULTILINE).group(1)

    def started(self):
        """Waits for the messages of the start. Returns them."""
        end = time.monotonic() + WAIT_S
        while True:
            self.messages.seek(0)
            text = self.messages.read()
            if re.search(r"^ *password \S+\n", text, re.MULTILINE):
                return text
            if self.process.poll() is not None or time.monotonic() > end:
                self.close()
                raise AssertionError("velk-sandbox --web did not start: " + text)
            time.sleep(0.05)

    def run(self, *words, **options):
        """Runs a command on the device. Returns its output with any status."""
        return subprocess.run([BUILD / "velk-sandbox", "enter", "--name", self.name, *words], check=False,
                              capture_output=True, text=True, **options).stdout

    def velkctl(self, *words, text=None):
        """The document of a run of velkctl with any status."""
        finished = subprocess.run([BUILD / "velk-sandbox", "enter", "--name", self.name, "velkctl", *words, "--json"],
                                  input=text, capture_output=True, text=True, check=False)
        return json.loads(finished.stdout)

    def order(self, part, state):
        """Connects or disconnects the cable or the adapter."""
        subprocess.run([BUILD / "velk-sandbox", part, state, "--name", self.name], check=True, capture_output=True)

    @contextlib.contextmanager
    def locked(self):
        """Another program holds the lock of the library."""
        holder = subprocess.Popen([BUILD / "velk-sandbox", "enter", "--name", self.name, "flock", "-x", LOCK, "cat"],
                                  stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        holder.stdin.write(b"held\n")
        holder.stdin.flush()
        assert holder.stdout.readline() == b"held\n"
        try:
            yield
        finally:
            holder.stdin.close()
            holder.wait()
            holder.stdout.close()

    def close(self):
        self.process.stdin.close()
        try:
            self.process.wait(5)
        except subprocess.TimeoutExpired:
            os.kill(self.process.pid, signal.SIGTERM)
            self.process.wait(30)
        self.messages.close()


class Browser:
    """A headless Chromium with the page's actions. All waits have a limit. The device's addresses lead to the
    loopback interface."""

    def __init__(self, address, width=1280, height=900, dark=False):
        options = webdriver.ChromeOptions()
        options.binary_location = shutil.which("chromium")
        for word in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--no-first-run", "--disable-background-networking", "--lang=en",
                     "--host-resolver-rules=MAP 192.168.0.* 127.0.0.1, MAP * ~NOTFOUND , EXCLUDE 127.0.0.1"):
            options.add_argument(word)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        options.set_capability("unhandledPromptBehavior", "accept")
        self.driver = webdriver.Chrome(options=options, service=Service(shutil.which("chromedriver")))
        self.address = address
        self.resize(width, height)
        self.colours("dark" if dark else "light")

    def resize(self, width, height=900):
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})

    def colours(self, scheme):
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": scheme},
                         {"name": "prefers-reduced-motion", "value": "reduce"}]})

    def offline(self, is_offline):
        self.driver.execute_cdp_cmd("Network.enable", {})
        self.driver.execute_cdp_cmd("Network.emulateNetworkConditions", {
            "offline": is_offline, "latency": 0, "downloadThroughput": -1, "uploadThroughput": -1})

    def reached_through(self, interface):
        """Makes the page believe that it is reached through this interface. Call it before open()."""
        self.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": """
            const fetched = window.fetch;
            window.fetch = async (url, options) => {
                const response = await fetched(url, options);
                if (!response.ok || !/(session|login)$/.test(url)) { return response; }
                const answer = {...await response.json(), reached_through: "%s"};
                return new Response(JSON.stringify(answer), response);
            };""" % interface})

    def open(self, place=""):
        self.driver.get(self.address + place)

    def until(self, condition, expected, seconds=WAIT_S):
        """Waits until the condition is met. Returns its result."""
        end = time.monotonic() + seconds
        while True:
            with contextlib.suppress(StaleElementReferenceException):
                if result := condition():
                    return result
            if time.monotonic() > end:
                raise AssertionError("after %d s still not: %s\n%s" % (seconds, expected, self.summary()))
            time.sleep(0.05)

    def summary(self):
        """The messages on the page, for a failed test."""
        texts = [found.text for found in self.all("#notices, #pending, #offline, .problem, dialog[open], #bar-text, #login")]
        return "\n".join(text for text in texts if text)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector, seconds=WAIT_S):
        """The first visible element, as soon as there is one."""
        return self.until(lambda: next((found for found in self.all(selector) if found.is_displayed()), None),
                          selector + " is shown", seconds)

    def by_id(self, name):
        return self.driver.find_element(By.ID, name)

    def text(self):
        return self.driver.find_element(By.TAG_NAME, "body").text

    def shows(self, text, seconds=WAIT_S):
        self.until(lambda: text in self.text(), "%r is shown" % text, seconds)

    def click(self, selector):
        self.one(selector).click()

    def press(self, text, inside="body"):
        """Clicks the button with this text."""
        def found():
            return next((button for button in self.all(inside + " button")
                         if button.is_displayed() and button.text == text), None)
        button = self.until(found, "a button %r" % text)
        self.driver.execute_script("arguments[0].scrollIntoView({block: 'center'})", button)
        button.click()

    def log_in(self, user, password):
        self.open()
        self.one("#user").clear()
        self.by_id("user").send_keys(user)
        self.by_id("password").send_keys(password + "\n")
        self.settings_shown()

    def settings_shown(self):
        self.one(".group", 120)
        self.until(lambda: not self.all("#view[aria-busy]"), "the view is complete")

    def view(self, name):
        self.click("a[href='#%s']" % name)
        self.until(lambda: self.all("#views a[href='#%s'][aria-current]" % name) and
                   not self.all("#view[aria-busy]") and not self.all(".loading"), "the view " + name, 120)

    def row(self, name):
        return self.by_id("row-" + name)

    def field(self, name):
        return self.by_id("field-" + name.replace(".", "-"))

    def problem(self, name):
        return self.by_id("field-" + name.replace(".", "-") + "-problem").text

    def fill(self, name, text):
        """Replaces the text of a field and leaves it."""
        field = self.field(name)
        self.driver.execute_script("arguments[0].scrollIntoView({block: 'center'})", field)
        field.clear()
        field.send_keys(text + "\t")

    def choose(self, name, value):
        Select(self.field(name)).select_by_value(value)

    def switch(self, name):
        field = self.field(name)
        self.driver.execute_script("arguments[0].scrollIntoView({block: 'center'})", field)
        field.click()

    def review(self):
        """Opens the review of the unsaved changes."""
        self.click("#review")
        return self.one("dialog[open] table.changes", 60)

    def apply(self, restart=False, window=None):
        """Applies the changes from the open review. Without restart nothing waits for tools."""
        self.begin_to_apply(restart, window)
        self.until(lambda: not self.all("dialog[open]"), "the dialog is closed", 600)
        self.settings_shown()

    def begin_to_apply(self, restart=False, window=None):
        box = self.by_id("restart-now")
        if box.is_displayed() and box.is_selected() != restart:
            box.click()
        if window is not None:
            Select(self.by_id("window")).select_by_value(str(window))
        self.press("Apply", "dialog")

    def messages(self):
        return self.by_id("notices").text

    def axe(self):
        """The violations that axe-core finds, a text each."""
        self.driver.execute_script(pathlib.Path(AXE).read_text(encoding="utf-8"))
        found = self.driver.execute_async_script(
            "const done = arguments[0]; axe.run(document, {resultTypes: ['violations']}).then(done)")
        return ["%s: %s" % (rule["id"], node["html"][:200] + " " + (node["failureSummary"] or ""))
                for rule in found["violations"] for node in rule["nodes"]]

    def screenshot(self, name):
        ARTEFACTS.mkdir(parents=True, exist_ok=True)
        self.driver.save_screenshot(str(ARTEFACTS / (name + ".png")))

    def console(self):
        """Errors and warnings of the console, except those of the network, such as status 401."""
        return [entry for entry in self.driver.get_log("browser")
                if entry["level"] in ("SEVERE", "WARNING") and entry["source"] != "network"]

    def close(self):
        self.driver.quit()


class PageTest(unittest.TestCase):
    """Each class has its own device, each test its own browsers. The console must be free of errors."""

    with_adapter = True

    @classmethod
    def setUpClass(cls):
        cls.device = Device()
        cls.addClassCleanup(cls.device.close)
        if not cls.with_adapter:
            cls.device.order("adapter", "out")

    def browser(self, **options):
        browser = Browser(self.device.address, **options)
        self.addCleanup(browser.close)
        self.addCleanup(lambda: self.assertEqual(browser.console(), []))
        return browser

    def logged_in(self, **options):
        browser = self.browser(**options)
        browser.log_in(self.device.user, self.device.password)
        return browser

    def value(self, name):
        return self.device.velkctl("get", name, "--show-secrets")["settings"][0]["value"]
