# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Every setting of the catalogue is shown, changed and refused. No setting is named here."""

import json
import unittest

from kit import PageTest, Select

SECRET = "0123456789"  # a key of every kind


def shown_text(setting, value):
    """The value as the page shows it in a field or beside it."""
    if value is None:
        return "" if setting["set"] else "none"
    return " ".join(value) if setting["type"] == "addresses" else str(value)


def another(setting, value):
    """A valid value that differs."""
    kind = setting["type"]
    if setting["secret"]:
        return SECRET
    if kind == "address":
        is_mask = "mask" in setting["expected"]
        return "255.255.0.0" if is_mask else "192.168.7%s.%d" % (setting["interface"][-1], setting["id"] % 100)
    if setting["values"] and kind != "schedule":
        others = [text for text in setting["values"] if text != str(value)]
        return int(others[0]) if kind == "number" else others[0]
    return {"addresses": ["10.0.0.53", "10.0.0.54"], "host": "time.example", "text": "Ünïcode <b>&",
            "schedule": "monthly 31 23:45"}[kind]


WRONG = {"address": "300.1.1.1", "addresses": ["1.2.3"], "host": "two words", "text": "x" * 600, "secret": "x" * 70}


class ShownTest(PageTest):
    def test_each_setting_is_shown_with_its_value(self):
        browser = self.logged_in()
        readings = {reading["name"]: reading for reading in self.device.velkctl("show")["settings"]}
        settings = self.device.velkctl("list")["settings"]
        self.assertEqual(len(browser.all(".row")), len(settings))
        for setting in settings:
            with self.subTest(setting["name"]):
                row = browser.row(setting["name"])
                self.assertIn(setting["description"][1:], row.text)
                self.check_value(browser, setting, readings.get(setting["name"]))

    def check_value(self, browser, setting, reading):
        field = browser.field(setting["name"])
        if reading is not None and reading["error"] is not None:
            self.assertIn(reading["error"]["detail"], browser.row(setting["name"]).text)
            self.assertIn("fix: " + reading["error"]["remedy"], browser.row(setting["name"]).text)
        elif reading is None:
            self.assertEqual(field.get_attribute("value"), "")
        elif not setting["set"]:
            self.assertEqual(field.text, shown_text(setting, reading["value"]))
        elif setting["secret"]:
            self.assertEqual(field.get_attribute("value"), "")
            self.assertEqual(field.get_attribute("type"), "password")
        elif setting["type"] == "switch":
            self.assertEqual(field.is_selected(), reading["value"] == "on")
        elif setting["type"] == "schedule":
            self.assertTrue(reading["value"].startswith(field.get_attribute("value")))
        else:
            self.assertEqual(field.get_attribute("value"), shown_text(setting, reading["value"]))

    def test_secrets_never_reach_the_page(self):
        browser = self.logged_in()
        secrets = [setting["name"] for setting in self.device.velkctl("list")["settings"] if setting["secret"]]
        for name in secrets:
            value = self.value(name)
            if value:
                self.assertNotIn(value, browser.driver.page_source)


class ChangedTest(PageTest):
    def test_each_setting_is_changed(self):
        browser = self.logged_in()
        settings = [setting for setting in self.device.velkctl("list")["settings"] if setting["set"]]
        before = {reading["name"]: reading["value"] for reading in self.device.velkctl("show")["settings"]}
        # An address is set while the method is static, and a switch of DHCP afterwards.
        left = [setting["interface"] for setting in settings if before.get(setting["name"]) == "static"]
        last = [setting for setting in settings if setting["interface"] in left and
                (setting["type"] == "switch" or before.get(setting["name"]) == "static")]
        self.change(browser, [setting for setting in settings if setting not in last], before)
        self.change(browser, last, before)

    def change(self, browser, settings, before):
        wanted = {setting["name"]: another(setting, before.get(setting["name"])) for setting in settings}
        for setting in settings:
            self.enter(browser, setting, wanted[setting["name"]])
        browser.shows("Unsaved changes: %d" % len(settings))
        table = browser.review()
        for name in wanted:
            self.assertIn(name, table.text)
        self.assertNotIn(SECRET, table.text)
        browser.apply(window="")
        self.assertIn("%d setting" % len(settings), browser.messages())
        self.assertFalse(browser.by_id("bar").is_displayed())
        for setting in settings:
            with self.subTest(setting["name"]):
                if setting["get"]:
                    self.assertEqual(self.value(setting["name"]), wanted[setting["name"]])

    def enter(self, browser, setting, value):
        name = setting["name"]
        field = browser.field(name)
        if setting["type"] == "schedule":
            form, day, time = value.split()
            browser.choose(name, form)
            identifier = field.get_attribute("id")
            browser.driver.execute_script(
                "for (const [id, value] of [[arguments[0] + '-day', arguments[1]], [arguments[0] + '-time', arguments[2]]]) {"
                " const part = document.getElementById(id); part.value = value;"
                " part.dispatchEvent(new Event('change', {bubbles: true})); }", identifier, day, time)
        elif field.tag_name == "select":
            Select(field).select_by_value(str(value))
        elif setting["type"] == "switch":
            browser.switch(name)
        else:
            browser.fill(name, " ".join(value) if isinstance(value, list) else value)


class RefusedTest(PageTest):
    """A wrong value is shown beside its field with the message of velkctl."""

    def test_each_wrong_value_is_refused_with_velkctls_message(self):
        browser = self.logged_in()
        settings = [setting for setting in self.device.velkctl("list")["settings"]
                    if setting["set"] and not setting["values"]]
        wrong = {setting["name"]: WRONG["secret" if setting["secret"] else setting["type"]] for setting in settings}
        for name, value in wrong.items():
            browser.fill(name, " ".join(value) if isinstance(value, list) else value)
        document = json.dumps({"schema": 1, "settings": wrong})
        errors = self.device.velkctl("apply", "-", "--dry-run", text=document)["errors"]
        self.assertEqual(len(errors), len(wrong))
        browser.shows("Unsaved changes: %d, not valid: %d" % (len(wrong), len(wrong)))
        for error in errors:
            with self.subTest(error["setting"]):
                self.assertEqual(browser.problem(error["setting"]),
                                 error["message"] + "\nfix: " + error["remedy"])
                field = browser.field(error["setting"])
                self.assertEqual(field.get_attribute("aria-invalid"), "true")
                self.assertIn(field.get_attribute("id") + "-problem", field.get_attribute("aria-describedby"))
        browser.screenshot("wrong-values-1280")

        browser.click("#review")
        browser.shows("%d values are not valid" % len(wrong))
        self.assertEqual(browser.all("dialog[open]"), [])
        first = next(setting["name"] for setting in settings)
        self.assertEqual(browser.driver.switch_to.active_element, browser.field(first))

    def test_reset_and_discard(self):
        browser = self.logged_in()
        name = next(setting["name"] for setting in self.device.velkctl("list")["settings"]
                    if setting["set"] and setting["type"] == "address")
        stored = browser.field(name).get_attribute("value")
        browser.fill(name, "300.1.1.1")
        browser.until(lambda: "is not an IPv4 address" in browser.problem(name), "the problem is shown")
        browser.press("Reset")
        browser.until(lambda: browser.problem(name) == "", "the problem is gone")
        self.assertEqual(browser.field(name).get_attribute("value"), stored)
        self.assertFalse(browser.by_id("bar").is_displayed())
        browser.fill(name, "10.0.0.1")
        browser.click("#discard")
        browser.press("Discard", "dialog")
        browser.shows("The unsaved changes are discarded.")
        self.assertEqual(browser.field(name).get_attribute("value"), stored)


if __name__ == "__main__":
    unittest.main()
