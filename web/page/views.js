// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// views.js - the views of the status, the health and the history. Each returns its elements.

import { get } from "./api.js";
import { restartInterface, undo } from "./changes.js";
import { button, element } from "./dom.js";
import { interfaceNames, loadCatalogue } from "./settings.js";
import { texts } from "./texts.js";
import { interfaceTitle, sentence, valueText } from "./values.js";

const hint = (text) => element("p", { class: "hint" }, text);

// ---- Status ------------------------------------------------------------------------------------

function statusRow(state) {
    const mark = state.differs ? element("strong", { class: "mark" }, texts.differs) : null;
    return element("tr", { class: state.differs ? "differs" : "" },
        element("th", { scope: "row" }, state.name),
        element("td", { "data-label": texts.configured }, state.configured ?? "–"),
        element("td", { "data-label": texts.running }, state.running ?? "–", " ", mark));
}

function restartButtons(changed) {
    return element("div", { class: "buttons" }, interfaceNames().map((name) =>
        button(texts.restartLabel(interfaceTitle(name)), () => restartInterface(name, changed), { class: "quiet", "data-restart": name })));
}

export async function statusView(changed) {
    await loadCatalogue();
    const answer = await get("status");
    const states = answer.states ?? [];
    const number = states.filter((state) => state.differs).length;
    const head = [texts.part, texts.configured, texts.running].map((text) => element("th", { scope: "col" }, text));
    return [
        hint(texts.statusHint),
        element("p", { class: number > 0 ? "verdict bad" : "verdict good" }, number > 0 ? texts.someDiffer(number) : texts.allAgree),
        element("div", { class: "card" }, element("table", { class: "states" },
            element("thead", {}, element("tr", {}, head)), element("tbody", {}, states.map(statusRow)))),
        element("section", { class: "card", "aria-labelledby": "restarts" },
            element("h2", { id: "restarts" }, texts.restartAll), restartButtons(changed)),
    ];
}

// ---- Health ------------------------------------------------------------------------------------

function findingCard(finding, goTo) {
    const place = finding.cause ? element("code", {}, texts.place(finding.cause.file, finding.cause.line)) : null;
    const links = finding.settings.map((name) => button(texts.goTo(name), () => goTo(name), { class: "quiet" }));
    return element("li", { class: `card finding ${finding.severity}` },
        element("h2", {}, element("span", { class: "mark" }, finding.severity), ` ${finding.subject} ${finding.effect ?? ""}`.trimEnd()),
        element("p", {}, sentence(finding.description)),
        place ? element("p", {}, place) : null,
        finding.remedy ? element("p", {}, texts.fix(finding.remedy)) : null,
        links.length > 0 ? element("div", { class: "buttons" }, links) : null);
}

export async function doctorView(goTo) {
    const answer = await get("doctor");
    const findings = answer.findings ?? [];
    const summary = findings.length === 0 ? texts.noFindings : texts.findings(answer.problems, answer.warnings);
    return [
        hint(texts.doctorHint),
        answer.device === false ? element("p", { class: "verdict bad" }, texts.noDevice) : null,
        element("p", { class: answer.problems > 0 ? "verdict bad" : "verdict good" }, summary),
        element("ul", { class: "plain" }, findings.map((finding) => findingCard(finding, goTo))),
    ];
}

// ---- History -----------------------------------------------------------------------------------

function changeTable(change) {
    const rows = change.settings.map(({ name, old, new: value }) => element("tr", {},
        element("th", { scope: "row" }, name),
        element("td", { "data-label": texts.old }, valueText(old)),
        element("td", { "data-label": texts.new }, valueText(value))));
    const head = [texts.setting, texts.old, texts.new].map((text) => element("th", { scope: "col" }, text));
    return element("table", { class: "changes" }, element("thead", {}, element("tr", {}, head)), element("tbody", {}, rows));
}

function changeCard(change, changed) {
    const canUndo = change.state === "done" || change.state === "confirmed";
    const title = `${texts.changeOf[change.change] ?? change.change}: ${texts.stateOf[change.state] ?? change.state}`;
    const time = new Date(change.time * 1000);
    return element("li", { class: "card change" },
        element("h2", {}, title, element("span", { class: "name" }, change.id)),
        element("p", { class: "hint" }, element("time", { datetime: time.toISOString() }, time.toLocaleString())),
        changeTable(change),
        canUndo ? element("div", { class: "buttons" }, button(texts.undo, () => undo(change, changeTable(change), changed),
            { class: "quiet", "aria-label": texts.undoLabel(change.id) })) : null);
}

export async function historyView(changed) {
    const { changes = [] } = await get("history");
    return [
        hint(texts.historyHint),
        changes.length === 0 ? element("p", { class: "verdict good" }, texts.noHistory) : null,
        element("ul", { class: "plain" }, changes.map((change) => changeCard(change, changed))),
    ];
}
