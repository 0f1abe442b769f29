// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fields.js - the input field of a setting, by the type that the catalogue gives. A field has its elements
// in `node`, the value in it from read(), write(value), and the element for the focus in `first`. A value that
// is not known is undefined.

import { element } from "./dom.js";
import { texts } from "./texts.js";
import { joinSchedule, labelOf, splitSchedule } from "./values.js";

export const fieldId = (setting) => `field-${setting.name.replace(".", "-")}`;

function attributes(setting) {
    const id = fieldId(setting);
    return { id, name: setting.name, "aria-describedby": `${id}-hint ${id}-problem` };
}

// ---- One of some values ------------------------------------------------------------------------

function choices(setting, value, shown) {
    const known = value === undefined ? [] : [String(value)];
    const values = [...setting.values, ...known.filter((text) => !setting.values.includes(text))];
    const options = values.map((text) => element("option", { value: text }, shown(text)));
    return value === undefined ? [element("option", { value: "" }, texts.leave), ...options] : options;
}

function choiceField(setting, fromText) {
    const select = element("select", attributes(setting));
    const write = (value) => {
        select.replaceChildren(...choices(setting, value ?? undefined, (text) => text));
        select.value = value === undefined || value === null ? "" : String(value);
    };
    return { node: select, first: select, write, read: () => (select.value === "" ? undefined : fromText(select.value)) };
}

function switchField(setting) {
    const box = element("input", { ...attributes(setting), type: "checkbox", role: "switch" });
    const state = element("span", { class: "state", "aria-hidden": "true" });
    const show = () => { state.textContent = box.checked ? texts.on : texts.off; };
    box.addEventListener("change", show);
    const node = element("span", { class: "switch" }, box, state);
    return {
        node, first: box, write: (value) => { box.checked = value === texts.on; show(); },
        read: () => (box.checked ? texts.on : texts.off),
    };
}

// ---- One line ----------------------------------------------------------------------------------

function lineField(setting, more, toText, fromText) {
    const input = element("input", {
        ...attributes(setting), type: "text", autocomplete: "off", autocapitalize: "none", spellcheck: "false", ...more,
    });
    let wasKnown = true;
    const read = () => (!wasKnown && input.value === "" ? undefined : fromText(input.value));
    const write = (value) => {
        wasKnown = value !== undefined;
        input.value = wasKnown ? toText(value) : "";
    };
    return { node: input, first: input, write, read };
}

const plain = (value) => (value === null ? "" : String(value));
const noneIfEmpty = (text) => (text.trim() === "" ? null : text.trim());
const wordsOf = (text) => text.split(/[\s,;]+/).filter((word) => word !== "");
// Text that is no number goes to the device as it is, which says why it is not valid.
const numberOf = (text) => (/^\s*-?\d+\s*$/.test(text) ? Number(text) : text);

// ---- A schedule --------------------------------------------------------------------------------

function scheduleField(setting) {
    const id = fieldId(setting);
    const form = element("select", attributes(setting));
    const hours = element("input", { id: `${id}-hours`, type: "number", min: "1", max: "23", inputmode: "numeric" });
    const day = element("input", { id: `${id}-day`, type: "number", min: "1", max: "31", inputmode: "numeric" });
    const time = element("input", { id: `${id}-time`, type: "time" });
    const parts = [[hours, texts.hours], [day, texts.day], [time, texts.time]].map(([input, text]) =>
        element("span", { class: "part" }, element("label", { for: input.id }, text), input));
    const show = () => {
        const name = form.value;
        parts[0].hidden = name !== "every";
        parts[1].hidden = name !== "monthly";
        parts[2].hidden = !(name === "daily" || name === "monthly" || name.startsWith("weekly"));
    };
    const write = (value) => {
        const split = splitSchedule(value ?? "", setting.values);
        form.replaceChildren(...choices({ values: setting.values }, value === undefined ? undefined : split.form, (text) => text));
        form.value = split.form;
        hours.value = split.hours || "6";
        day.value = split.day || "1";
        time.value = (split.time || "01:00").padStart(5, "0");
        show();
    };
    form.addEventListener("change", show);
    const read = () => (form.value === "" ? undefined
        : joinSchedule({ form: form.value, hours: hours.value, day: day.value, time: time.value }));
    return { node: element("span", { class: "schedule" }, form, parts), first: form, write, read };
}

// ---- A secret ----------------------------------------------------------------------------------

// A secret comes masked, so the field is empty and means no change. The key is removed by the box beside it.
function secretField(setting) {
    const id = fieldId(setting);
    const input = element("input", { ...attributes(setting), type: "password", autocomplete: "new-password", spellcheck: "false" });
    const shown = element("button", {
        type: "button", class: "quiet", "aria-pressed": "false", "aria-label": texts.showLabel(labelOf(setting)),
    }, texts.show);
    shown.addEventListener("click", () => {
        const isShown = input.type === "password";
        input.type = isShown ? "text" : "password";
        shown.setAttribute("aria-pressed", String(isShown));
        shown.textContent = isShown ? texts.hide : texts.show;
    });
    const remove = element("input", { type: "checkbox", id: `${id}-remove` });
    const removal = element("span", { class: "removal" }, remove, element("label", { for: remove.id }, texts.remove));
    remove.addEventListener("change", () => { input.disabled = remove.checked; });
    const write = (value) => {
        input.value = "";
        input.disabled = false;
        remove.checked = false;
        input.placeholder = value === null ? texts.secretEmpty : texts.secretTyped;
        removal.hidden = value === null || value === undefined;
    };
    // A masked value is never sent: without a new key there is no value.
    const read = () => (remove.checked ? null : (input.value === "" ? undefined : input.value));
    return { node: element("span", { class: "secret" }, input, shown, removal), first: input, write, read };
}

// ---- By type -----------------------------------------------------------------------------------

const byType = {
    choice: (setting) => choiceField(setting, (text) => text),
    number: (setting) => (setting.values.length > 0 ? choiceField(setting, numberOf)
        : lineField(setting, { inputmode: "numeric" }, plain, numberOf)),
    address: (setting) => lineField(setting, { inputmode: "decimal" }, plain, noneIfEmpty),
    host: (setting) => lineField(setting, {}, plain, noneIfEmpty),
    addresses: (setting) => lineField(setting, {}, (value) => (value ?? []).join(" "), wordsOf),
    text: (setting) => lineField(setting, {}, plain, (text) => text),
    schedule: scheduleField,
};

// Makes the field of a setting with a value, or with undefined if it is not known.
export function makeField(setting, value) {
    let make = byType[setting.type] ?? byType.text;
    if (setting.secret) {
        make = secretField;
    } else if (setting.type === "switch") {
        make = value === undefined || value === null ? byType.choice : switchField;
    }
    const field = make(setting);
    field.write(value);
    return field;
}
