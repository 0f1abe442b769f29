// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// changes.js - applies the unsaved changes: review, risk of losing the connection, and result.

import { ask, clearNotices, element, notice } from "./dom.js";
import { failureLines, runJob } from "./jobs.js";
import * as settings from "./settings.js";
import { texts } from "./texts.js";
import { errorLines, interfaceTitle, labelOf, valueText } from "./values.js";

const WINDOWS_S = [30, 60, 300, 900];
const USUAL_WINDOW_S = 300;

let session = {};
export const setSession = (value) => { session = value; };

export function tell(kind, lines) {
    notice(kind, lines, texts.dismiss, texts.dismissLabel);
}

const tellFailure = (error) => tell("bad", failureLines(error));

// ---- Risk --------------------------------------------------------------------------------------

const needsRestart = (setting) => /\brestart of\b/.test(setting.takes_effect ?? "");

// True if the change of these settings can cut off the user. A restart of the first interface, the wired port,
// can restart the others too.
function isRisky(changed) {
    const reached = session.reached_through ?? null;
    if (reached === null) {
        return changed.some((setting) => setting.interface !== null || needsRestart(setting));
    }
    const first = settings.interfaceNames()[0];
    return changed.some((setting) => setting.interface === reached ||
        (needsRestart(setting) && (setting.interface === null || setting.interface === first)));
}

// Returns the page's address after the change; null if it is not known or stays.
function nextAddress(values) {
    const addresses = Object.entries(values).filter(([name, value]) => {
        const setting = settings.settingNamed(name);
        const isOfUser = (session.reached_through ?? setting.interface) === setting.interface;
        return setting.type === "address" && isOfUser && settings.storedValue(name) === location.hostname && value !== null;
    });
    if (addresses.length !== 1) {
        return null;
    }
    const port = location.port ? `:${location.port}` : "";
    return `${location.protocol}//${addresses[0][1]}${port}${location.pathname}`;
}

function warningOf(address) {
    const reached = session.reached_through ?? null;
    const first = reached === null ? texts.cutOffUnknown : texts.cutOff(reached);
    return element("div", { class: "notice bad", id: "cut-off", role: "note" },
        element("div", {}, element("p", {}, first), element("p", {}, texts.cutOffHelp),
            address ? element("p", {}, texts.newAddress, " ", element("a", { href: address }, address)) : null));
}

// ---- Review ------------------------------------------------------------------------------------

function changesTable(values) {
    const rows = Object.entries(values).map(([name, value]) => {
        const setting = settings.settingNamed(name);
        const isNewKey = setting.secret && value !== null;
        return element("tr", {},
            element("th", { scope: "row" }, labelOf(setting), element("span", { class: "name" }, name)),
            element("td", { "data-label": texts.old }, valueText(settings.storedValue(name), setting.secret)),
            element("td", { "data-label": texts.new }, isNewKey ? texts.secretNew : valueText(value)));
    });
    const head = [texts.setting, texts.old, texts.new].map((text) => element("th", { scope: "col" }, text));
    return element("table", { class: "changes" }, element("thead", {}, element("tr", {}, head)), element("tbody", {}, rows));
}

function restartBox(changed) {
    const box = element("input", { type: "checkbox", id: "restart-now", checked: true });
    box.checked = changed.some(needsRestart);
    const row = element("p", { class: "choice" }, box, element("label", { for: "restart-now" }, texts.restartNow));
    row.hidden = !box.checked;
    return { row, box };
}

function windowChoice(risky) {
    const select = element("select", { id: "window" }, element("option", { value: "" }, texts.keepAtOnce),
        WINDOWS_S.map((seconds) => element("option", { value: seconds }, texts.keepWithin(seconds))));
    select.value = risky ? USUAL_WINDOW_S : "";
    return { row: element("p", { class: "choice" }, element("label", { for: "window" }, texts.keep), select), select };
}

async function askToApply(values, notes) {
    const changed = Object.keys(values).map(settings.settingNamed);
    const risky = isRisky(changed);
    const address = risky ? nextAddress(values) : null;
    const restart = restartBox(changed);
    const keep = windowChoice(risky);
    const body = [changesTable(values), ...notes.map((note) => element("p", { class: "hint" }, note)),
        risky ? warningOf(address) : null, restart.row, keep.row].filter((node) => node !== null);
    const chosen = () => ({
        restart: restart.box.checked, address, seconds: keep.select.value === "" ? null : Number(keep.select.value),
    });
    return ask(texts.reviewTitle(changed.length), body, [[texts.apply, chosen, "primary"], [texts.cancel, null, "quiet"]]);
}

// Shows the result of an apply. Returns true if the device has the values.
function report(answer) {
    if (answer === null) {
        tell("info", [texts.forgotten]);
        return false;
    }
    const others = settings.showErrors(answer.errors);
    if (answer.status !== 0) {
        const lines = answer.errors.flatMap(errorLines);
        tell("bad", [answer.taken_back ? texts.takenBack : texts.failed, ...lines]);
        if (others.length < answer.errors.length) {
            settings.focusFirstProblem();
        }
        return false;
    }
    const number = answer.changes?.length ?? 0;
    const restarts = (answer.restarts ?? []).map(restartLine);
    tell("good", [number === 0 ? texts.nothingToDo : texts.applied(number), ...restarts, ...answer.notes]);
    return true;
}

export function restartLine({ interface: name, state }) {
    return state?.address ? texts.restartedWithAddress(name, state.address) : texts.restarted(name);
}

// Reviews and applies the unsaved changes. `changed` runs after the device may have changed.
export async function review(changed) {
    clearNotices();
    const answer = await settings.check();
    if (answer === null) {
        return;
    }
    if (settings.problemCount() > 0) {
        tell("bad", [texts.wrongValues(settings.problemCount())]);
        settings.focusFirstProblem();
        return;
    }
    if (answer.others.length > 0) {
        tell("bad", answer.others.flatMap(errorLines));
        return;
    }
    const values = settings.unsavedValues();
    const choice = await askToApply(values, answer.notes ?? []);
    if (choice !== null) {
        await apply(values, choice, changed);
    }
}

async function apply(values, { restart, seconds, address }, changed) {
    const body = { settings: values, restart, confirm_within: seconds, dry_run: false };
    const result = await runJob(texts.applying, "apply", body, { window: seconds, address });
    if (report(result)) {
        settings.forget(Object.keys(values));
    }
    await changed(result?.id ?? null, address);
}

// ---- Other work --------------------------------------------------------------------------------

// Runs a job whose answer has no more to show than its success.
export async function runAndReport(title, name, body, success) {
    clearNotices();
    try {
        const answer = await runJob(title, name, body);
        if (answer === null) {
            tell("info", [texts.forgotten]);
        } else if (answer.status !== 0) {
            tell("bad", [texts.failed, ...answer.errors.flatMap(errorLines)]);
        } else {
            tell("good", [...[success(answer)].flat(), ...answer.notes]);
        }
        return answer;
    } catch (error) {
        tellFailure(error);
        return null;
    }
}

export async function restartInterface(name, changed) {
    const body = [element("p", {}, texts.restartHelp)];
    if ((session.reached_through ?? name) === name) {
        const reached = session.reached_through ?? null;
        body.push(element("div", { class: "notice bad", role: "note" },
            element("p", {}, reached === null ? texts.cutOffUnknown : texts.cutOff(name))));
    }
    const answer = await ask(texts.restartTitle(interfaceTitle(name)), body,
        [[texts.restart, true, "primary"], [texts.cancel, null, "quiet"]]);
    if (answer !== null) {
        await runAndReport(texts.restarting(name), "restart", { interface: name, confirm_within: null },
            (done) => restartLine(done));
        await changed();
    }
}

export async function undo(change, table, changed) {
    const answer = await ask(texts.undoTitle, [table, element("p", { class: "hint" }, texts.undoHelp)],
        [[texts.undo, true, "primary"], [texts.cancel, null, "quiet"]]);
    if (answer !== null) {
        await runAndReport(texts.undoing, "undo", { entry: change.id },
            (done) => [texts.undone, ...(done.restarts ?? []).map(restartLine)]);
        await changed();
    }
}

export { tellFailure };
