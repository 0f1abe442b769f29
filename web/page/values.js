// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// values.js - the names and values of settings as texts. Has no access to the page.

import { abbreviations, interfaces, texts } from "./texts.js";

// Returns the name without its interface: "dhcp-dns" for "eth0.dhcp-dns".
export function shortName(setting) {
    return setting.interface === null ? setting.name : setting.name.slice(setting.interface.length + 1);
}

// Returns a label: "DHCP DNS" for "eth0.dhcp-dns", "Link speed" for "eth0.link-speed".
export function labelOf(setting) {
    const words = shortName(setting).split("-").map((word) =>
        abbreviations.includes(word) ? word.toUpperCase() : word);
    const label = words.join(" ");
    return label.charAt(0).toUpperCase() + label.slice(1);
}

export function interfaceTitle(name) {
    if (name === null) {
        return texts.device;
    }
    return interfaces[name] ? `${interfaces[name]} (${name})` : name;
}

// Returns a value as a person reads it.
export function valueText(value, isSecret = false) {
    if (value === undefined) {
        return texts.unknown;
    }
    if (value === null || (Array.isArray(value) && value.length === 0)) {
        return texts.none;
    }
    if (isSecret) {
        return texts.secretSet;
    }
    if (value === "") {
        return texts.empty;
    }
    return Array.isArray(value) ? value.join(" ") : String(value);
}

export const isSame = (one, other) => JSON.stringify(one) === JSON.stringify(other);

// Returns the items by their keys, in the order in which the keys first appear.
export function groupBy(items, keyOf) {
    const groups = new Map();
    for (const item of items) {
        const key = keyOf(item);
        groups.set(key, [...(groups.get(key) ?? []), item]);
    }
    return groups;
}

export function sentence(text) {
    return text.charAt(0).toUpperCase() + text.slice(1);
}

// Returns the lines of an error as velkctl prints them. The place of a value in the document that the page
// sent is left out: the error is shown beside its field.
export function errorLines(error) {
    const lines = [error.message];
    const isOfDocument = error.cause !== null && error.cause?.pointer !== undefined;
    if (error.detail && !isOfDocument) {
        lines.push(error.detail);
    }
    if (error.remedy) {
        lines.push(texts.fix(error.remedy));
    }
    return lines;
}

// Splits a schedule into its form, which is one of the catalogue's values, its day, its hours and its time.
export function splitSchedule(text, forms) {
    const form = forms.find((name) => text === name || text.startsWith(`${name} `)) ?? text;
    const rest = text.slice(form.length).trim().split(" ");
    const time = rest.find((word) => word.includes(":")) ?? "";
    return {
        form, time,
        hours: form === "every" ? rest[0].replace(/h$/, "") : "",
        day: form === "monthly" ? rest[0] : "",
    };
}

export function joinSchedule({ form, hours, day, time }) {
    if (form === "every") {
        return `every ${hours}h`;
    }
    if (form === "monthly") {
        return `monthly ${day} ${time}`;
    }
    return form === "daily" || form.startsWith("weekly") ? `${form} ${time}` : form;
}
