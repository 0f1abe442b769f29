# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The page for everybody: by keyboard only, with axe-core, on narrow and wide screens, light and dark."""

import unittest

from selenium.webdriver import ActionChains
from selenium.webdriver.common.keys import Keys

from kit import AXE, PageTest

VIEWS = ("settings", "status", "doctor", "history")
STATES = VIEWS + ("wrong", "review", "pending")


class KeyboardTest(PageTest):
    with_adapter = False

    def keys(self, browser, *keys):
        ActionChains(browser.driver).send_keys(*keys).perform()

    def focus(self, browser):
        return browser.driver.switch_to.active_element

    def tab_to(self, browser, condition, expected):
        for _ in range(150):
            self.keys(browser, Keys.TAB)
            if condition(self.focus(browser)):
                return
        self.fail("the Tab key does not reach " + expected)

    def tab_to_text(self, browser, text):
        self.tab_to(browser, lambda found: found.text == text, text)

    def test_a_change_from_login_to_confirmation(self):
        browser = self.browser()
        browser.open()
        browser.one("#login")
        self.keys(browser, self.device.user, Keys.TAB, self.device.password, Keys.ENTER)
        browser.settings_shown()

        self.tab_to(browser, lambda found: found.get_attribute("id") == "field-location", "the field")
        self.assertTrue(browser.driver.execute_script(
            "return document.activeElement.matches(':focus-visible') &&"
            " getComputedStyle(document.activeElement).outlineStyle !== 'none'"))
        ActionChains(browser.driver).key_down(Keys.CONTROL).send_keys("a").key_up(Keys.CONTROL).perform()
        self.keys(browser, "Loft")
        browser.shows("Unsaved changes: 1")
        self.tab_to_text(browser, "Review")
        self.keys(browser, Keys.ENTER)
        browser.one("dialog[open] table.changes", 60)

        self.keys(browser, Keys.ESCAPE)
        browser.until(lambda: not browser.all("dialog[open]"), "Escape closes the dialog")
        self.assertEqual(self.focus(browser).text, "Review")
        self.keys(browser, Keys.ENTER)
        browser.one("dialog[open] table.changes", 60)
        self.tab_to(browser, lambda found: found.get_attribute("id") == "window", "the time to confirm")
        self.keys(browser, Keys.ARROW_DOWN, Keys.ARROW_DOWN)
        self.tab_to_text(browser, "Apply")
        self.keys(browser, Keys.ENTER)
        browser.one("#keep", 60)
        self.assertEqual(self.focus(browser).text, "Keep it")
        self.keys(browser, Keys.ENTER)
        browser.shows("The change is kept.", 60)
        self.assertEqual(self.value("location"), "Loft")
        browser.settings_shown()
        self.assertEqual(self.focus(browser).text, "Settings")

        self.tab_to_text(browser, "History")
        self.keys(browser, Keys.ENTER)
        browser.one(".change")
        self.assertEqual(self.focus(browser).text, "History")

    def test_the_first_tab_stop_skips_to_the_content(self):
        browser = self.logged_in()
        browser.driver.refresh()
        browser.settings_shown()
        self.keys(browser, Keys.TAB)
        self.assertEqual(self.focus(browser).text, "Skip to the content")
        self.keys(browser, Keys.ENTER)
        self.assertEqual(self.focus(browser).get_attribute("id"), "main")


class LookTest(PageTest):
    """Each view and state at 360 and 1280 pixels, light and dark; the screenshots are kept."""

    def setUp(self):
        self.device.velkctl("revert")

    def go_to(self, browser, state):
        if state in VIEWS:
            browser.view(state)
        elif state == "wrong":
            browser.view("settings")
            browser.fill("eth0.address", "300.1.1.1")
            browser.until(lambda: browser.problem("eth0.address"), "the problem is shown")
        elif state == "review":
            browser.fill("eth0.address", "192.168.0.77")
            browser.until(lambda: browser.problem("eth0.address") == "", "the value is valid")
            browser.review()
        else:
            browser.press("Cancel", "dialog")
            browser.press("Reset")
            browser.fill("eth0.dns", "10.0.0.9")
            browser.review()
            browser.apply(window=300)
            browser.one("#keep")
            browser.driver.execute_script("scrollTo(0, 0)")

    def look(self, width, scheme):
        browser = self.browser(width=width, dark=scheme == "dark")
        browser.open()
        browser.one("#login")
        self.check(browser, "login", width, scheme)
        browser.log_in(self.device.user, self.device.password)
        for state in STATES:
            self.go_to(browser, state)
            self.check(browser, state, width, scheme)

    def check(self, browser, state, width, scheme):
        with self.subTest(state=state, width=width, scheme=scheme):
            browser.screenshot("%s-%d-%s" % (state, width, scheme))
            self.assertEqual(self.overflow(browser), 0)
            if AXE:
                self.assertEqual(browser.axe(), [])

    def overflow(self, browser):
        """The pixels that the page is wider than the window."""
        return browser.driver.execute_script(
            "const root = document.documentElement; const open = document.querySelector('dialog[open]');"
            "return Math.max(root.scrollWidth - root.clientWidth, open ? open.scrollWidth - open.clientWidth : 0)")

    def test_telephone_light(self):
        self.look(360, "light")

    def test_telephone_dark(self):
        self.look(360, "dark")

    def test_desk_light(self):
        self.look(1280, "light")

    def test_desk_dark(self):
        self.look(1280, "dark")

    def test_zoom_to_200_percent(self):
        # A browser window of 640 pixels at 200 % has 320 pixels of the page.
        browser = self.logged_in(width=320)
        for view in VIEWS:
            browser.view(view)
            self.assertEqual(self.overflow(browser), 0, view)

    def test_larger_text(self):
        browser = self.logged_in(width=360)
        browser.driver.execute_script("document.documentElement.style.fontSize = '200%'")
        for view in VIEWS:
            browser.view(view)
            self.assertEqual(self.overflow(browser), 0, view)


if __name__ == "__main__":
    unittest.main()
