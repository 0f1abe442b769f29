// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// pending.js - the panel of the change that waits for its confirmation, made here or in another browser.

import { get } from "./api.js";
import { runAndReport, tell } from "./changes.js";
import { button, byId, element } from "./dom.js";
import { texts } from "./texts.js";
import { valueText } from "./values.js";

// A screen reader hears the time at these seconds only.
const ANNOUNCED_S = new Set([300, 120, 60, 30, 10]);

let shown = null; // {id, isMine, deadline} of the change in the panel
let mine = null; // {id, address} of the last change of this page
let changed = async () => {};
let isBusy = false;
export const whenEnded = (action) => { changed = action; };
export const isWaiting = () => shown !== null;

const secondsLeft = () => (shown.deadline - performance.now()) / 1000;

function settingRows(change) {
    return element("ul", {}, change.settings.map(({ name, old, new: value }) =>
        element("li", {}, element("code", {}, name), ` ${valueText(old)} → ${valueText(value)}`)));
}

function draw(change, isMine) {
    const left = element("p", { id: "pending-left" });
    const spoken = element("p", { id: "pending-spoken", class: "unseen", role: "status" });
    const lost = element("div", { id: "pending-lost", role: "alert" });
    const keep = button(texts.keepIt, () => end("confirm", texts.confirming, texts.kept), { class: "primary", id: "keep" });
    const back = button(texts.putBack, () => end("revert", texts.reverting, texts.wasReverted), { class: "quiet", id: "put-back" });
    byId("pending").replaceChildren(element("section", { class: "card waiting", "aria-labelledby": "pending-title" },
        element("h2", { id: "pending-title" }, isMine ? texts.stillThere : texts.otherWaits),
        settingRows(change), left, spoken, lost, element("div", { class: "buttons" }, keep, back)));
    shown = { id: change.id, isMine, deadline: performance.now() + change.seconds_left * 1000 };
    tick();
    if (isMine) {
        keep.focus();
    }
}

function tick() {
    if (shown === null || byId("pending-left") === null) {
        return;
    }
    const seconds = Math.ceil(secondsLeft());
    byId("pending-left").textContent = seconds > 0 ? texts.secondsLeft(seconds) : texts.timeOver;
    if (ANNOUNCED_S.has(seconds) || seconds === 0) {
        byId("pending-spoken").textContent = byId("pending-left").textContent;
    }
}
setInterval(tick, 1000);

// Says in the panel that the connection is lost. Does nothing without a panel.
export function showLost() {
    const lost = byId("pending-lost");
    if (lost === null || lost.children.length > 0) {
        return;
    }
    lost.append(element("p", {}, texts.lostWhileWaiting));
    if (shown.isMine && mine.address) {
        lost.append(element("p", {}, texts.openNew, " ", element("a", { href: mine.address }, mine.address)));
    }
}

function hide() {
    shown = null;
    byId("pending").replaceChildren();
}

async function end(name, title, success) {
    isBusy = true;
    const { id } = shown;
    const answer = await runAndReport(title, name, { id }, () => success);
    isBusy = false;
    if (answer?.status === 0) {
        hide();
        byId("view-title")?.focus();
    }
    await changed();
}

// Says how a change ended without a button here: in another browser, or by itself. Returns false if the device
// is still putting it back.
async function tellEnd({ id, deadline }) {
    const wasInTime = deadline - performance.now() > 1000;
    const change = (await get("history")).changes.find((entry) => entry.id === id);
    if (change?.state === "reverting" || change?.state === "waiting") {
        return false;
    }
    if (change?.state === "confirmed") {
        tell("good", [texts.kept]);
    } else {
        tell("info", [wasInTime ? texts.wasReverted : texts.wasNotConfirmed]);
    }
    return true;
}

// Notes the change that this page has made, and the page's next address, null if it is not known.
export function setMine(id, address) {
    mine = { id, address };
}

// Asks the device for a waiting change and shows it. Throws ConnectionLost.
export async function pollPending() {
    if (isBusy) {
        return;
    }
    const { pending } = await get("pending");
    await update(pending ?? null);
}

async function update(pending) {
    if (isBusy) {
        return;
    }
    byId("pending-lost")?.replaceChildren();
    if (pending === null) {
        if (shown !== null && await tellEnd(shown)) {
            hide();
            await changed();
        }
        return;
    }
    const isMine = pending.id === mine?.id;
    if (pending.id !== shown?.id || isMine !== shown.isMine) {
        draw(pending, isMine);
    } else {
        shown.deadline = performance.now() + pending.seconds_left * 1000;
    }
}
