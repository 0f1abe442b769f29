// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// api.js - the requests to the device.

const FOLDER = "cgi-bin/velk/";
const QUICK_MS = 10_000;
// Reading waits for the wireless daemon, at most for some minutes.
const READING_MS = 300_000;
const SLOW = new Set(["show", "status", "doctor", "list", "check"]);

let token = null;

// No answer came: the device cannot be reached.
export class ConnectionLost extends Error {}

// The server refused the request, or answered something else than a document.
export class Refused extends Error {
    constructor(status, answer, retryAfter) {
        super(`status ${status}`);
        this.status = status;
        this.errors = answer?.errors ?? [];
        this.retryAfter = retryAfter;
    }
}

export function setToken(value) {
    token = value;
}

async function send(name, options) {
    const limit = SLOW.has(name) ? READING_MS : QUICK_MS;
    try {
        return await fetch(options.url, {
            ...options, cache: "no-store", credentials: "same-origin", redirect: "error",
            signal: AbortSignal.timeout(limit),
        });
    } catch (error) {
        throw new ConnectionLost(error.message);
    }
}

async function documentOf(response) {
    try {
        return await response.json();
    } catch {
        return null;
    }
}

async function request(name, options) {
    const response = await send(name, options);
    const answer = await documentOf(response);
    if (!response.ok || answer === null) {
        throw new Refused(response.status, answer, Number(response.headers.get("Retry-After")) || 0);
    }
    return answer;
}

export function get(name, query = {}) {
    const words = new URLSearchParams(query).toString();
    return request(name, { method: "GET", url: FOLDER + name + (words ? `?${words}` : "") });
}

export function post(name, body = {}) {
    const headers = { "Content-Type": "application/json" };
    if (token !== null) {
        headers["X-Velk-Token"] = token;
    }
    return request(name, { method: "POST", url: FOLDER + name, headers, body: JSON.stringify(body) });
}
