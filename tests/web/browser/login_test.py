# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Logging in and out, the end of a session, and a lost connection."""

import unittest

from kit import PageTest


class LoginTest(PageTest):
    with_adapter = False

    def enter(self, browser, user, password):
        browser.one("#user").clear()
        browser.by_id("user").send_keys(user)
        browser.by_id("password").clear()
        browser.by_id("password").send_keys(password + "\n")

    def problem(self, browser):
        return browser.until(lambda: browser.by_id("login-problem").text, "a problem is shown")

    def test_nothing_is_shown_without_a_login(self):
        browser = self.browser()
        browser.open("#history")
        browser.one("#login")
        self.assertEqual(browser.all(".row, .change, .card table"), [])
        self.assertFalse(browser.by_id("top").is_displayed())

    def test_wrong_words_are_refused_alike_and_many_have_to_wait(self):
        browser = self.browser()
        browser.open()
        self.enter(browser, "", "")
        self.assertEqual(self.problem(browser), "Enter the user name and the password.")
        self.enter(browser, self.device.user, "wrong")
        first = self.problem(browser)
        self.enter(browser, "nobody", "wrong")
        self.assertEqual(self.problem(browser), first)
        for _ in range(20):
            if "Too many attempts" in browser.by_id("login-problem").text:
                break
            self.enter(browser, self.device.user, "wrong")
            browser.until(lambda: browser.by_id("login-button").is_enabled() or
                          "Too many" in browser.by_id("login-problem").text, "the attempt is answered")
        self.assertRegex(self.problem(browser), r"Too many attempts\. Try again in .*\.")
        self.assertFalse(browser.by_id("login-button").is_enabled())
        browser.until(lambda: browser.by_id("login-button").is_enabled(), "the wait ends", 120)

    def test_z_logging_out_ends_the_session(self):
        browser = self.logged_in()
        browser.click("#logout")
        browser.shows("You are logged out.")
        browser.driver.refresh()
        browser.one("#login")

    def test_z_an_ended_session_keeps_the_unsaved_values(self):
        browser = self.logged_in()
        browser.fill("location", "Garden")
        browser.shows("Unsaved changes: 1")
        browser.driver.delete_all_cookies()
        browser.driver.execute_cdp_cmd("Network.clearBrowserCookies", {})
        browser.click("#review")
        browser.shows("Your session has ended. Log in again; your unsaved changes are kept.")
        self.assertEqual(browser.all("dialog[open]"), [])
        browser.by_id("password").send_keys(self.device.password + "\n")
        browser.settings_shown()
        self.assertEqual(browser.field("location").get_attribute("value"), "Garden")
        browser.review()
        browser.apply()
        browser.shows("1 setting is changed.")
        self.assertEqual(self.value("location"), "Garden")

    def test_z_a_page_that_finds_no_device_waits_for_it(self):
        browser = self.browser()
        browser.open()
        browser.one("#login")
        browser.offline(True)
        self.enter(browser, self.device.user, self.device.password)
        browser.shows("No connection to the device.")
        browser.offline(False)
        self.enter(browser, self.device.user, self.device.password)
        browser.settings_shown()

    def test_z_a_lost_connection_is_shown_and_comes_back(self):
        browser = self.logged_in()
        browser.fill("administrator", "Kim")
        browser.offline(True)
        browser.click("#review")
        browser.shows("No connection to the device.")
        browser.offline(False)
        browser.press("Try now", "#offline")
        browser.until(lambda: not browser.by_id("offline").is_displayed(), "the strip is gone")
        self.assertEqual(browser.field("administrator").get_attribute("value"), "Kim")
        browser.review()


if __name__ == "__main__":
    unittest.main()
