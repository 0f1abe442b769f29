// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dom.js - makes elements. Text is always added as text, never as markup.

// Makes an element. A function is a listener: {click: f}. True and false add or leave out an
// attribute. Children are elements or texts; null is left out.
export function element(tag, attributes = {}, ...children) {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        if (typeof value === "function") {
            made.addEventListener(name, value);
        } else if (value === true) {
            made.setAttribute(name, "");
        } else if (value !== false && value !== null && value !== undefined) {
            made.setAttribute(name, value);
        }
    }
    made.append(...children.flat().filter((child) => child !== null && child !== undefined));
    return made;
}

export const byId = (id) => document.getElementById(id);

export const sleep = (milliseconds) => new Promise((wake) => setTimeout(wake, milliseconds));

export function button(text, listener, attributes = {}) {
    return element("button", { type: "button", click: listener, ...attributes }, text);
}

// Asks with the page's dialog. `buttons` are [text, result, class]. Returns the result of the button,
// or null after Escape. `body` are elements. `refresh` is called each second with the dialog.
export function ask(title, body, buttons) {
    const dialog = byId("dialog");
    return new Promise((answer) => {
        let result = null;
        const row = element("div", { class: "buttons" }, buttons.map(([text, value, kind]) =>
            button(text, () => {
                result = typeof value === "function" ? value() : value;
                dialog.close();
            }, { class: kind })));
        dialog.replaceChildren(element("h2", { id: "dialog-title", tabindex: "-1" }, title), ...body, row);
        dialog.oncancel = null;
        dialog.onclose = () => answer(result);
        dialog.showModal();
        row.querySelector("button")?.focus();
    });
}

// Shows a message above the view until it is dismissed. `kind` is good, bad or info.
export function notice(kind, lines, dismissText, dismissLabel) {
    const box = element("div", { class: `notice ${kind}` },
        element("div", {}, lines.map((line) => element("p", {}, line))));
    box.append(button(dismissText, () => box.remove(), { class: "quiet", "aria-label": dismissLabel }));
    byId("notices").append(box);
    box.scrollIntoView({ block: "nearest" });
}

export const clearNotices = () => byId("notices").replaceChildren();
