// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// page.js - the settings page: logging in, the views, and the connection to the device.

import { ConnectionLost, get, post, Refused, setToken } from "./api.js";
import { review, setSession, tell, tellFailure } from "./changes.js";
import { ask, byId, button, clearNotices, element, sleep } from "./dom.js";
import { whenSessionEnds } from "./jobs.js";
import { isWaiting, pollPending, setMine, showLost, whenEnded } from "./pending.js";
import * as settings from "./settings.js";
import { texts } from "./texts.js";
import { errorLines } from "./values.js";
import { doctorView, historyView, statusView } from "./views.js";

const POLL_WAITING_MS = 2000;
const POLL_IDLE_MS = 10_000;
// A page that nobody uses asks no more, so that its session can end.
const IDLE_AFTER_MS = 5 * 60_000;
const RETRY_S = 5;

let user = null;
let lastUser = null; // the unsaved changes are of this user
let view = "settings";
let lastUse = performance.now();
let loggedIn = null; // resolves the promise of whoever waits for the next login
let drawing = 0;

// ---- Texts of index.html -----------------------------------------------------------------------

for (const node of document.querySelectorAll("[data-text]")) {
    node.textContent = texts[node.dataset.text];
}
for (const node of document.querySelectorAll("[data-label]")) {
    node.setAttribute("aria-label", texts[node.dataset.label]);
}

// ---- Logging in and out ------------------------------------------------------------------------

function showLogin(reason) {
    user = null;
    setToken(null);
    if (byId("dialog").open) {
        byId("dialog").close();
    }
    byId("top").hidden = true;
    byId("work").hidden = true;
    byId("bar").hidden = true;
    byId("login").hidden = false;
    byId("login-reason").textContent = reason;
    byId("login-problem").textContent = "";
    byId("password").value = "";
    byId(byId("user").value === "" ? "user" : "password").focus();
}

function sessionEnded() {
    if (byId("login").hidden) {
        const again = settings.unsavedCount() > 0 ? texts.loginKept : texts.loginAgain;
        showLogin(lastUser === null ? texts.loginHint : again);
    }
}

whenSessionEnds(() => {
    sessionEnded();
    return new Promise((resolve) => { loggedIn = resolve; });
});

async function enter(session) {
    if (lastUser !== null && lastUser !== session.user) {
        settings.discardAll();
        forgetData();
    }
    user = session.user;
    lastUser = user;
    setToken(session.token);
    setSession(session);
    byId("login").hidden = true;
    byId("top").hidden = false;
    byId("work").hidden = false;
    byId("host").textContent = session.host_name || texts.title;
    document.title = session.host_name ? `${session.host_name} – ${texts.title}` : texts.title;
    showBar();
    loggedIn?.();
    loggedIn = null;
    await showView();
    await poll();
}

function forgetData() {
    byId("view").replaceChildren();
    delete byId("view").dataset.view;
    clearNotices();
}

async function waitToLogIn(seconds) {
    byId("login-button").disabled = true;
    for (let left = seconds; left > 0; --left) {
        byId("login-problem").textContent = texts.loginWait(left);
        await sleep(1000);
    }
    byId("login-button").disabled = false;
    byId("login-problem").textContent = "";
}

async function logIn(event) {
    event.preventDefault();
    const name = byId("user").value;
    const password = byId("password").value;
    if (name === "" || password === "") {
        byId("login-problem").textContent = texts.loginEmpty;
        byId(name === "" ? "user" : "password").focus();
        return;
    }
    byId("login-problem").textContent = "";
    byId("login-button").disabled = true;
    try {
        const session = await post("login", { user: name, password });
        byId("password").value = "";
        online();
        await enter(session);
    } catch (error) {
        await showLoginFailure(error);
    } finally {
        byId("login-button").disabled = false;
    }
}

async function showLoginFailure(error) {
    if (error instanceof Refused && error.status === 429 && error.retryAfter > 0) {
        await waitToLogIn(error.retryAfter);
        return;
    }
    if (!(error instanceof Refused)) {
        byId("login-problem").textContent = error instanceof ConnectionLost ? texts.offline : texts.serverFault;
        return;
    }
    const lines = error.errors.flatMap(errorLines);
    byId("login-problem").textContent = lines.length > 0 ? lines.join(". ") : texts.serverFault;
    byId("password").value = "";
    byId("password").focus();
}

async function logOut() {
    if (settings.unsavedCount() > 0) {
        const answer = await ask(texts.logOut, [element("p", {}, texts.logOutUnsaved)],
            [[texts.logOut, true, "primary"], [texts.cancel, null, "quiet"]]);
        if (answer === null) {
            return;
        }
    }
    try {
        await post("logout");
    } catch (error) {
        if (!(error instanceof Refused && error.status === 401)) {
            handle(error);
            return;
        }
    }
    settings.discardAll();
    forgetData();
    showLogin(texts.loggedOut);
}

// ---- Connection --------------------------------------------------------------------------------

let retry = null; // ends the wait before the next attempt

function online() {
    if (!byId("offline").hidden) {
        byId("offline").hidden = true;
        byId("offline").replaceChildren();
    }
}

// Shows the strip and tries again until the device answers.
async function offline() {
    showLost();
    if (!byId("offline").hidden) {
        return;
    }
    const text = element("span", {}, texts.offline);
    const wait = element("span", { class: "wait", "aria-hidden": "true" });
    byId("offline").replaceChildren(text, wait, button(texts.retry, () => retry?.(), { class: "quiet" }));
    byId("offline").hidden = false;
    while (!byId("offline").hidden) {
        for (let left = RETRY_S, isNow = false; left > 0 && !isNow; --left) {
            wait.textContent = ` ${texts.offlineRetry(left).slice(texts.offline.length)} `;
            isNow = await Promise.race([sleep(1000).then(() => false), new Promise((now) => { retry = () => now(true); })]);
        }
        await tryAgain();
    }
}

async function tryAgain() {
    try {
        const session = await get("session");
        online();
        if (user === null) {
            await enter(session);
        } else {
            setToken(session.token);
            setSession(session);
            await pollPending();
        }
    } catch (error) {
        if (error instanceof Refused && error.status < 500) {
            online();
            handle(error);
        } else if (!(error instanceof ConnectionLost) && !(error instanceof Refused)) {
            throw error;
        }
    }
}

function handle(error) {
    if (error instanceof ConnectionLost) {
        offline();
    } else if (error instanceof Refused && error.status === 401) {
        sessionEnded();
    } else {
        tellFailure(error);
    }
}

async function poll() {
    if (user === null || !byId("offline").hidden) {
        return;
    }
    try {
        await pollPending();
    } catch (error) {
        handle(error);
    }
}

async function keepPolling() {
    for (;;) {
        await sleep(isWaiting() ? POLL_WAITING_MS : POLL_IDLE_MS);
        const isUsed = performance.now() - lastUse < IDLE_AFTER_MS && document.visibilityState === "visible";
        if ((isUsed || isWaiting()) && !byId("dialog").open) {
            await poll();
        }
    }
}

for (const name of ["keydown", "pointerdown", "pointermove"]) {
    document.addEventListener(name, () => { lastUse = performance.now(); }, { passive: true });
}

// ---- Views -------------------------------------------------------------------------------------

async function contentOf(name) {
    if (name === "status") {
        return statusView(deviceChanged);
    }
    if (name === "doctor") {
        return doctorView(goTo);
    }
    if (name === "history") {
        return historyView(deviceChanged);
    }
    await settings.loadValues();
    return settings.settingsView();
}

const views = ["settings", "status", "doctor", "history"];

function showLinks() {
    byId("views").replaceChildren(...views.map((name) =>
        element("a", { href: `#${name}`, "aria-current": name === view ? "page" : null }, texts[name])));
}

// Shows the frame of a view without its data. Returns the element that the data replaces.
function showFrame(focus) {
    const title = element("h1", { id: "view-title", tabindex: "-1" }, texts[view]);
    const refresh = button(texts.refresh, () => showView(), { class: "quiet", id: "refresh" });
    const loading = element("p", { class: "loading", role: "status" }, view === "settings" ? texts.reading : texts.loading);
    const content = element("div", { id: "content" }, loading);
    byId("view").replaceChildren(element("div", { class: "head" }, title, refresh), content);
    byId("view").dataset.view = view;
    if (focus) {
        title.focus();
    }
}

// Replaces the view's data. The focus stays on the element with the same id.
function fill(nodes) {
    const focused = document.activeElement?.id;
    byId("content").replaceChildren(...nodes.filter((node) => node !== null));
    if (focused && document.activeElement === document.body) {
        byId(focused)?.focus({ preventScroll: true });
    }
}

// Reads the view's data and shows it. Earlier data of the same view stays until then. A later call replaces an
// earlier one that has not ended.
async function showView(focus = false) {
    const number = ++drawing;
    view = views.includes(location.hash.slice(1)) ? location.hash.slice(1) : "settings";
    showLinks();
    showBar();
    if (byId("view").dataset.view !== view) {
        showFrame(focus);
    }
    byId("view").setAttribute("aria-busy", "true");
    try {
        const nodes = await contentOf(view);
        if (number === drawing) {
            fill(nodes);
        }
    } catch (error) {
        byId("content").querySelector(".loading")?.remove();
        handle(error);
    }
    if (number === drawing) {
        byId("view").removeAttribute("aria-busy");
    }
}

window.addEventListener("hashchange", () => {
    if (user !== null && views.includes(location.hash.slice(1))) {
        clearNotices();
        showView(true);
    }
});

async function goTo(name) {
    if (view !== "settings") {
        history.pushState(null, "", "#settings");
        await showView();
    }
    settings.goToSetting(name);
}

// After work that may have changed the device. `id` is the change that this page has made, null if none.
async function deviceChanged(id = null, address = null) {
    if (id !== null) {
        setMine(id, address);
    }
    await poll();
    await showView();
}
whenEnded(() => showView());

// ---- Unsaved changes ---------------------------------------------------------------------------

function showBar() {
    const number = settings.unsavedCount();
    const wrong = settings.problemCount();
    byId("bar").hidden = number === 0 || user === null;
    document.body.classList.toggle("has-bar", number > 0 && user !== null);
    byId("bar-text").textContent = wrong > 0 ? texts.unsavedWrong(number, wrong) : texts.unsaved(number);
}
settings.whenChanged(showBar);

async function discard() {
    const answer = await ask(texts.discardTitle, [element("p", {}, texts.unsaved(settings.unsavedCount()))],
        [[texts.discard, true, "primary"], [texts.cancel, null, "quiet"]]);
    if (answer !== null) {
        settings.discardAll();
        await showView();
        tell("info", [texts.discarded]);
    }
}

async function startReview() {
    if (view !== "settings") {
        history.pushState(null, "", "#settings");
        await showView();
    }
    try {
        await review(deviceChanged);
    } catch (error) {
        handle(error);
    }
}

window.addEventListener("beforeunload", (event) => {
    if (settings.unsavedCount() > 0) {
        event.preventDefault();
    }
});

byId("login-form").addEventListener("submit", logIn);
byId("logout").addEventListener("click", logOut);
byId("review").addEventListener("click", startReview);
byId("discard").addEventListener("click", discard);

async function start() {
    try {
        await enter(await get("session"));
    } catch (error) {
        if (error instanceof Refused && error.status === 401) {
            showLogin(texts.loginHint);
        } else {
            handle(error);
        }
    }
    keepPolling();
}

start();
