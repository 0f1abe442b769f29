# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Changes that can fail, wait for their confirmation, or cut the user off. The adapter is out: with it, each
restart of eth0 takes minutes."""

import unittest

from kit import PageTest


class BusyTest(PageTest):
    with_adapter = False

    def test_a_busy_lock_is_reported_and_the_values_stay(self):
        browser = self.logged_in()
        browser.fill("location", "Cellar")
        browser.review()
        with self.device.locked():
            browser.apply()
            browser.shows("The change failed.")
            browser.shows("another program is changing settings")
        self.assertEqual(browser.field("location").get_attribute("value"), "Cellar")
        browser.review()
        browser.apply()
        browser.shows("1 setting is changed.")
        self.assertEqual(self.value("location"), "Cellar")

    def test_a_change_that_fails_is_taken_back_and_the_cause_is_beside_the_setting(self):
        browser = self.logged_in()
        browser.fill("administrator", "Sam")
        # DHCP does not give the DNS servers while the method is static.
        browser.switch("eth0.dhcp-dns")
        browser.review()
        browser.apply(window="")
        browser.shows("The change failed and was taken back. The device has its earlier settings.")
        self.assertIn("eth0.dhcp-dns: the library reported success, but the device holds 'off'\n"
                      "likely cause: /etc/dhclient.conf:", browser.problem("eth0.dhcp-dns"))
        self.assertNotEqual(self.value("administrator"), "Sam")
        browser.shows("Unsaved changes: 2")

    def test_a_change_without_difference_says_so(self):
        browser = self.logged_in()
        browser.fill("administrator", "Kim")
        browser.review()
        self.device.velkctl("set", "administrator", "Kim")
        browser.apply()
        browser.shows("The device has these values already.")
        self.assertFalse(browser.by_id("bar").is_displayed())


class CableTest(PageTest):
    def test_a_pulled_cable_makes_the_wireless_settings_readable(self):
        browser = self.logged_in()
        self.assertIn("refused while the cable is in the wired port", browser.row("eth1.signal").text)
        browser.view("status")
        browser.shows("not used while the cable is in")
        self.device.order("cable", "out")
        # The kernel reports the link a moment later.
        browser.until(lambda: "not used while" not in self.device.run("velkctl", "status"), "the link is down")
        browser.click("#refresh")
        browser.until(lambda: "not used while the cable is in" not in browser.text(), "the status follows the cable")
        browser.view("settings")
        self.assertNotIn("refused while the cable", browser.text())
        self.assertRegex(browser.field("eth1.signal").text, r"^\d+[ ,]+\d+$")

    def test_an_adapter_that_is_gone_is_reported_beside_its_settings(self):
        self.device.order("adapter", "out")
        browser = self.logged_in()
        row = browser.row("eth1.signal").text
        error = next(reading["error"] for reading in self.device.velkctl("show")["settings"]
                     if reading["name"] == "eth1.signal")
        self.assertIn(error["detail"], row)
        self.assertIn("fix: " + error["remedy"], row)


class WindowTest(PageTest):
    """The confirm window."""

    with_adapter = False

    def setUp(self):
        self.device.velkctl("revert")

    def begin(self, browser, text, window=300):
        """Applies a change that has to be confirmed."""
        browser.fill("eth0.dns", text)
        browser.review()
        browser.apply(window=window)
        browser.one("#keep")

    def test_a_risky_change_is_announced_and_kept_at_a_button(self):
        browser = self.logged_in()
        browser.fill("eth0.address", "192.168.0.77")
        browser.review()
        self.assertIn("This can cut you off from the device", browser.by_id("cut-off").text)
        self.assertEqual(browser.by_id("window").get_attribute("value"), "300")
        browser.screenshot("review-1280")
        browser.apply(restart=True)
        browser.shows("Still there?")
        self.assertIn("eth0.address 192.168.0.10 → 192.168.0.77", browser.by_id("pending").text)
        self.assertRegex(browser.by_id("pending-left").text, r"in \d min( \d+ s)?\.")
        self.assertEqual(browser.driver.switch_to.active_element, browser.by_id("keep"))
        browser.screenshot("still-there-1280")
        browser.click("#keep")
        browser.shows("The change is kept.", 60)
        self.assertEqual(self.value("eth0.address"), "192.168.0.77")
        self.assertIsNone(self.device.velkctl("pending")["pending"])

    def test_a_harmless_change_is_kept_at_once(self):
        browser = self.logged_in()
        browser.fill("location", "Roof")
        browser.review()
        self.assertEqual(browser.all("#cut-off"), [])
        self.assertEqual(browser.by_id("window").get_attribute("value"), "")
        browser.apply()
        browser.shows("1 setting is changed.")
        self.assertIsNone(self.device.velkctl("pending")["pending"])

    def test_put_back(self):
        before = self.value("eth0.dns")
        browser = self.logged_in()
        self.begin(browser, "10.0.0.7")
        browser.click("#put-back")
        browser.shows("The change was put back.", 60)
        self.assertEqual(self.value("eth0.dns"), before)
        browser.settings_shown()
        self.assertEqual(browser.field("eth0.dns").get_attribute("value"), " ".join(before))

    def test_a_lost_connection_in_the_window_ends_with_the_earlier_settings(self):
        before = self.value("eth0.dns")
        browser = self.logged_in()
        self.begin(browser, "10.0.0.8", window=30)
        browser.offline(True)
        browser.shows("No connection. Trying this address again.")
        browser.shows("No connection to the device.")
        self.assertRegex(browser.by_id("pending-left").text, r"in \d+ s\.")
        browser.screenshot("lost-connection-1280")
        browser.shows("The time is over.", 60)
        browser.offline(False)
        browser.shows("The change was not confirmed in time", 90)
        self.assertEqual(self.value("eth0.dns"), before)
        self.assertFalse(browser.by_id("offline").is_displayed())

    def test_a_connection_that_comes_back_can_still_keep_the_change(self):
        browser = self.logged_in()
        self.begin(browser, "10.0.0.9")
        browser.offline(True)
        browser.shows("No connection. Trying this address again.")
        browser.offline(False)
        browser.until(lambda: not browser.by_id("offline").is_displayed(), "the connection is back")
        browser.click("#keep")
        browser.shows("The change is kept.", 60)
        self.assertEqual(self.value("eth0.dns"), ["10.0.0.9"])

    def test_a_connection_lost_while_the_change_is_applied(self):
        browser = self.logged_in()
        browser.fill("eth0.netmask", "255.255.0.0")
        browser.review()
        browser.begin_to_apply(restart=True, window=300)
        browser.one("dialog .spinner")
        browser.offline(True)
        browser.shows("The connection to the device is lost. It carries on without you.")
        self.assertIn("puts its earlier settings back 5 min after", browser.one("dialog .lost").text)
        browser.offline(False)
        browser.one("#keep", 120)
        browser.shows("Still there?")
        browser.click("#keep")
        browser.shows("The change is kept.", 60)
        self.assertEqual(self.value("eth0.netmask"), "255.255.0.0")

    def test_the_page_at_the_new_address(self):
        old = self.value("eth0.address")
        new = "192.168.0.99"
        browser = self.browser()
        there = browser.address.replace("127.0.0.1", new)
        browser.address = browser.address.replace("127.0.0.1", old)
        browser.log_in(self.device.user, self.device.password)
        browser.fill("eth0.address", new)
        browser.review()
        link = browser.one("#cut-off a")
        self.assertEqual((link.text, link.get_attribute("href")), (there, there))
        browser.apply(restart=True)
        browser.offline(True)
        browser.shows("Open the page at the new address: " + there)
        browser.offline(False)

        browser.address = there
        browser.log_in(self.device.user, self.device.password)
        browser.shows("A change waits for its confirmation")
        browser.click("#keep")
        browser.shows("The change is kept.", 60)
        self.assertEqual(self.value("eth0.address"), new)

    def test_two_browsers(self):
        first = self.logged_in()
        second = self.logged_in()
        self.begin(first, "10.0.0.10")
        second.shows("A change waits for its confirmation")
        self.assertIn("10.0.0.10", second.by_id("pending").text)

        second.fill("location", "Attic")
        second.review()
        second.apply()
        second.shows("waits for its confirmation")
        second.shows("The change failed.")

        second.click("#keep")
        second.shows("The change is kept.", 60)
        first.until(lambda: not first.all("#keep"), "the panel of the first browser is gone")
        first.shows("The change is kept.")
        self.assertEqual(self.value("eth0.dns"), ["10.0.0.10"])


class RiskTest(PageTest):
    """The page warns of changes of the interface that it is reached through."""

    with_adapter = False

    def is_warned(self, browser, name, text):
        browser.fill(name, text)
        browser.review()
        is_warned = browser.all("#cut-off") != []
        browser.press("Cancel", "dialog")
        browser.press("Reset")
        return is_warned

    def test_through_the_wired_port(self):
        browser = self.browser()
        browser.reached_through("eth0")
        browser.log_in(self.device.user, self.device.password)
        self.assertTrue(self.is_warned(browser, "eth0.gateway", "192.168.0.7"))
        self.assertFalse(self.is_warned(browser, "eth1.gateway", "192.168.0.7"))
        self.assertFalse(self.is_warned(browser, "location", "Shed"))

    def test_through_the_wireless_adapter(self):
        browser = self.browser()
        browser.reached_through("eth1")
        browser.log_in(self.device.user, self.device.password)
        self.assertTrue(self.is_warned(browser, "eth1.gateway", "192.168.0.7"))
        self.assertTrue(self.is_warned(browser, "eth0.gateway", "192.168.0.7"))


class HistoryTest(PageTest):
    with_adapter = False

    def test_undo(self):
        before = self.value("location")
        browser = self.logged_in()
        browser.fill("location", "Hall")
        browser.review()
        browser.apply()
        browser.shows("1 setting is changed.")
        browser.view("history")
        self.assertIn("Hall", browser.one(".change").text)
        browser.press("Undo", ".change")
        browser.press("Undo", "dialog")
        browser.shows("The change is undone.", 60)
        self.assertEqual(self.value("location"), before)
        browser.until(lambda: len(browser.all(".change")) == 2, "the undo is in the history")

    def test_restart_of_an_interface(self):
        browser = self.logged_in()
        browser.view("status")
        browser.click("[data-restart=eth0]")
        browser.shows("This can cut you off")
        browser.press("Restart", "dialog")
        browser.shows("eth0 was restarted. Its address is 192.168.0.", 120)

    def test_doctor_leads_to_the_setting(self):
        self.device.run("sh", "-c", "echo '# nothing' >/var/cron/tabs/root")
        browser = self.logged_in()
        browser.view("doctor")
        finding = self.device.velkctl("doctor")["findings"][0]
        card = browser.one(".finding").text
        self.assertIn(finding["remedy"], card)
        browser.press("Go to " + finding["settings"][0])
        browser.settings_shown()
        browser.until(lambda: browser.driver.switch_to.active_element == browser.field(finding["settings"][0]),
                      "the field has the focus")


if __name__ == "__main__":
    unittest.main()
