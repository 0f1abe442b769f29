// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// jobs.js - work on the device that takes time: it is begun, followed and its end reported. The work goes on
// if the connection is lost.

import { ConnectionLost, get, post, Refused } from "./api.js";
import { byId, element, sleep } from "./dom.js";
import { texts } from "./texts.js";
import { errorLines } from "./values.js";

const POLL_MS = 700;
const LOST_POLL_MS = 1500;

// Waits until the user has logged in again. page.js sets it.
let logInAgain = async () => {};
export const whenSessionEnds = (action) => { logInAgain = action; };

function openProgress(title) {
    const dialog = byId("dialog");
    const list = element("ol", { class: "progress", "aria-live": "polite" });
    const lost = element("div", { class: "lost", role: "alert" });
    const elapsed = element("p", { class: "hint" });
    dialog.replaceChildren(
        element("h2", { id: "dialog-title", tabindex: "-1" }, element("span", { class: "spinner", "aria-hidden": "true" }), title),
        elapsed, list, lost);
    // Escape would hide work that goes on.
    dialog.oncancel = (event) => event.preventDefault();
    dialog.onclose = null;
    if (!dialog.open) {
        dialog.showModal();
    }
    byId("dialog-title").focus();
    const begin = performance.now();
    const clock = setInterval(() => {
        elapsed.textContent = texts.elapsed((performance.now() - begin) / 1000);
    }, 1000);
    return { dialog, list, lost, close: () => { clearInterval(clock); dialog.close(); } };
}

// A list that has not changed stays, so that a screen reader does not read it again.
function showProgress(list, lines) {
    const shown = [...list.children].map((item) => item.textContent);
    if (shown.join("\n") !== lines.join("\n")) {
        list.replaceChildren(...lines.map((line) => element("li", {}, line)));
    }
}

function showLost(lost, risk) {
    if (lost.children.length > 0) {
        return;
    }
    const lines = [texts.lostInJob];
    if (risk?.window) {
        lines.push(texts.lostInWindow(risk.window));
    }
    lost.append(...lines.map((line) => element("p", {}, line)));
    if (risk?.address) {
        lost.append(element("p", {}, texts.openNew, " ", element("a", { href: risk.address }, risk.address)));
    }
}

// Returns the state of the job; null if the device does not know it any more. Throws ConnectionLost.
async function stateOf(id) {
    try {
        return await get("job", { id });
    } catch (error) {
        if (error instanceof Refused && error.status === 401) {
            await logInAgain();
            return { done: false };
        }
        if (error instanceof Refused && error.status === 404) {
            return null;
        }
        if (error instanceof Refused && error.status >= 500) {
            throw new ConnectionLost(error.message);
        }
        throw error;
    }
}

async function follow(id, view, risk) {
    for (;;) {
        // A login that was needed meanwhile has closed the dialog.
        if (!view.dialog.open) {
            view.dialog.showModal();
        }
        try {
            const state = await stateOf(id);
            view.lost.replaceChildren();
            if (state === null || state.done) {
                return state?.answer ?? null;
            }
            showProgress(view.list, state.progress ?? []);
            await sleep(POLL_MS);
        } catch (error) {
            if (!(error instanceof ConnectionLost)) {
                throw error;
            }
            showLost(view.lost, risk);
            await sleep(LOST_POLL_MS);
        }
    }
}

// Runs a job and shows its progress. Returns velkctl's answer; null if its end is not known. `risk` is
// {window, address}: the seconds for the confirmation, and the page's next address if it is known.
export async function runJob(title, name, body, risk = null) {
    const view = openProgress(title);
    try {
        const { job } = await post(name, body);
        return await follow(job, view, risk);
    } finally {
        view.close();
    }
}

// Returns the lines of a failure of the server or of the connection.
export function failureLines(error) {
    if (error instanceof ConnectionLost) {
        return [texts.offline];
    }
    if (error instanceof Refused && error.errors.length > 0) {
        return error.errors.flatMap(errorLines);
    }
    if (error instanceof Refused) {
        return [texts.serverFault];
    }
    throw error;
}

