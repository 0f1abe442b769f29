// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// settings.js - the view of all settings: their fields, their problems and their unsaved changes.

import { get, post } from "./api.js";
import { button, byId, element } from "./dom.js";
import { fieldId, makeField } from "./fields.js";
import { texts } from "./texts.js";
import { errorLines, groupBy, interfaceTitle, isSame, labelOf, sentence, valueText } from "./values.js";

const CHECK_AFTER_MS = 300;

let catalogue = [];
let readings = new Map(); // the answer of show, by the name of the setting
const rows = new Map(); // {setting, field, problem, changed, node} of each setting that can be changed
const unsaved = new Map(); // values of changed fields, by the name of the setting
let problems = new Map(); // errors of the last check, by the name of the setting
let checkTimer = null;
let running = Promise.resolve(); // ends with the last check that was begun
let isQueued = false; // a check waits for the running one
let onChange = () => {};

export const whenChanged = (listener) => { onChange = listener; };
export const unsavedValues = () => Object.fromEntries(unsaved);
export const unsavedCount = () => unsaved.size;
export const problemCount = () => [...problems.keys()].filter((name) => rows.has(name)).length;
export const settingNamed = (name) => catalogue.find((setting) => setting.name === name) ?? null;
export const interfaceNames = () => [...new Set(catalogue.map((setting) => setting.interface))].filter((name) => name !== null);
export const storedValue = (name) => readings.get(name)?.value;

// The value on the device; undefined if the device does not show it. A failure to read is no value.
function baseline(setting) {
    const reading = readings.get(setting.name);
    return reading === undefined || reading.error !== null ? undefined : reading.value;
}

export async function loadCatalogue() {
    if (catalogue.length === 0) {
        catalogue = (await get("list")).settings;
    }
}

// Reads the values again. Unsaved changes stay.
export async function loadValues() {
    await loadCatalogue();
    const answer = await get("show");
    readings = new Map((answer.settings ?? []).map((reading) => [reading.name, reading]));
}

// ---- Rows --------------------------------------------------------------------------------------

function reasonOf(setting) {
    const reading = readings.get(setting.name);
    if (reading?.error) {
        return errorLines(reading.error).slice(1);
    }
    return reading?.valid === false ? [texts.invalidNow] : [];
}

function aboutOf(setting, label) {
    const hint = setting.type === "addresses" && setting.set ? `. ${texts.addressesHint}` : "";
    const isPlain = labelOf(setting).toLowerCase() === setting.name;
    return element("div", { class: "about" }, label,
        isPlain ? null : element("p", { class: "name" }, setting.name),
        element("p", { class: "hint", id: `${fieldId(setting)}-hint` }, sentence(setting.description) + hint));
}

function readOnlyRow(setting) {
    const id = fieldId(setting);
    const value = baseline(setting);
    const label = element("span", { class: "label", id: `${id}-label` }, labelOf(setting));
    const shown = value === undefined ? texts.notAvailable : valueText(value, setting.secret);
    const isMissing = value === undefined;
    return element("div", { class: "row", id: `row-${setting.name}` }, aboutOf(setting, label),
        element("div", { class: "control" },
            element("p", { class: isMissing ? "fact missing" : "fact", id, tabindex: "-1" }, shown),
            reasonOf(setting).map((line) => element("p", { class: "reason" }, line))));
}

function editableRow(setting) {
    const id = fieldId(setting);
    const value = unsaved.has(setting.name) ? unsaved.get(setting.name) : baseline(setting);
    const field = makeField(setting, baseline(setting));
    if (unsaved.has(setting.name) && !setting.secret) {
        field.write(value);
    }
    const problem = element("div", { class: "problem", id: `${id}-problem`, "aria-live": "polite" });
    const changed = element("p", { class: "changed" });
    const notShown = setting.get ? [] : [texts.writeOnly];
    const node = element("div", { class: "row", id: `row-${setting.name}` },
        aboutOf(setting, element("label", { for: id }, labelOf(setting))),
        element("div", { class: "control" }, field.node, problem, changed,
            [...notShown, ...reasonOf(setting)].map((line) => element("p", { class: "reason" }, line))));
    const row = { setting, field, problem, changed, node };
    field.node.addEventListener("input", () => noteChange(row, false));
    field.node.addEventListener("change", () => noteChange(row, true));
    rows.set(setting.name, row);
    return node;
}

function showChanged(row) {
    const { setting, changed } = row;
    const isChanged = unsaved.has(setting.name);
    row.node.classList.toggle("is-changed", isChanged);
    if (!isChanged) {
        changed.replaceChildren();
        return;
    }
    const now = element("span", {}, texts.before(valueText(baseline(setting), setting.secret)));
    const effect = element("span", {}, texts.takesEffect(setting.takes_effect));
    const reset = button(texts.reset, () => resetRow(row), { class: "quiet", "aria-label": texts.resetLabel(labelOf(setting)) });
    changed.replaceChildren(now, " ", effect, " ", reset);
}

function resetRow(row) {
    row.field.write(baseline(row.setting));
    noteChange(row, true);
    row.field.first.focus();
}

// ---- Changes and checks ------------------------------------------------------------------------

function noteChange(row, isComplete) {
    const { setting, field } = row;
    const value = field.read();
    if (value === undefined || (isSame(value, baseline(setting)) && !setting.secret)) {
        unsaved.delete(setting.name);
        problems.delete(setting.name);
    } else {
        unsaved.set(setting.name, value);
    }
    showChanged(row);
    showProblem(row);
    onChange();
    if (isComplete) {
        checkSoon();
    }
}

function showProblem(row) {
    const errors = problems.get(row.setting.name) ?? [];
    const lines = errors.flatMap(errorLines);
    const shown = [...row.problem.children].map((line) => line.textContent);
    row.node.classList.toggle("is-wrong", lines.length > 0);
    if (lines.length > 0) {
        row.field.first.setAttribute("aria-invalid", "true");
    } else {
        row.field.first.removeAttribute("aria-invalid");
    }
    // A live region is read again if its elements are new.
    if (!isSame(lines, shown)) {
        row.problem.replaceChildren(...lines.map((line) => element("p", {}, line)));
    }
}

// Shows errors at their settings. Returns those without a field here.
export function showErrors(errors) {
    problems = groupBy(errors.filter((error) => rows.has(error.setting)), (error) => error.setting);
    rows.forEach(showProblem);
    onChange();
    return errors.filter((error) => !rows.has(error.setting));
}

// Lets the device check the unsaved values and shows its errors. Returns its answer; null without unsaved values.
// Checks follow one another: two at a time disturb each other at the wireless daemon.
export function check() {
    const next = running.catch(() => {}).then(checkNow);
    running = next;
    return next;
}

async function checkNow() {
    if (unsaved.size === 0) {
        showErrors([]);
        return null;
    }
    const values = unsavedValues();
    const answer = await post("check", { settings: values });
    const isOld = !isSame(values, unsavedValues());
    const others = isOld ? [] : showErrors(answer.errors);
    return { ...answer, others };
}

// After the last of several changes, one check is enough.
function checkSoon() {
    clearTimeout(checkTimer);
    checkTimer = setTimeout(() => {
        if (isQueued) {
            return;
        }
        isQueued = true;
        running.catch(() => {}).then(() => {
            isQueued = false;
            return check();
        }).catch(() => {});
    }, CHECK_AFTER_MS);
}

export function focusFirstProblem() {
    const wrong = [...rows.values()].find((row) => problems.has(row.setting.name));
    wrong?.field.first.focus();
    wrong?.node.scrollIntoView({ block: "center" });
}

// Brings a setting into view and focuses it.
export function goToSetting(name) {
    const row = byId(`row-${name}`);
    row?.scrollIntoView({ block: "center" });
    (rows.get(name)?.field.first ?? row?.querySelector("[tabindex]"))?.focus();
}

export function discardAll() {
    unsaved.clear();
    problems.clear();
    onChange();
}

export function forget(names) {
    names.forEach((name) => unsaved.delete(name));
}

// ---- The view ----------------------------------------------------------------------------------

function groupsOf(settings) {
    return [...groupBy(settings, (setting) => setting.interface)];
}

function groupCard([name, settings]) {
    const id = `group-${name ?? "device"}`;
    return element("section", { class: "card group", "aria-labelledby": id },
        element("h2", { id, tabindex: "-1" }, interfaceTitle(name)),
        settings.map((setting) => (setting.set ? editableRow(setting) : readOnlyRow(setting))));
}

function groupLinks(groups) {
    return element("nav", { class: "groups", "aria-label": texts.groups }, groups.map(([name]) =>
        button(interfaceTitle(name), () => {
            const heading = byId(`group-${name ?? "device"}`);
            heading.scrollIntoView({ block: "start" });
            heading.focus({ preventScroll: true });
        }, { class: "quiet" })));
}

// Returns the elements of the view, from the values that were read last.
export function settingsView() {
    rows.clear();
    const groups = groupsOf(catalogue);
    const nodes = [groupLinks(groups), ...groups.map(groupCard)];
    rows.forEach((row) => { showChanged(row); showProblem(row); });
    return nodes;
}
