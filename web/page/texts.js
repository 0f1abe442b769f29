// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// texts.js - every text of the page in English. Texts about a setting come from the device: its
// description, its problems and their fixes are those of velkctl.

const count = (number, one, many) => `${number} ${number === 1 ? one : many}`;

// Returns a time such as "4 min 5 s".
export function duration(seconds) {
    const whole = Math.max(0, Math.ceil(seconds));
    const minutes = Math.floor(whole / 60);
    const rest = whole % 60;
    if (minutes === 0) {
        return `${rest} s`;
    }
    return rest === 0 ? `${minutes} min` : `${minutes} min ${rest} s`;
}

// Written in capitals in the name of a setting.
export const abbreviations = ["apipa", "dhcp", "dns", "ip", "mac", "mtu", "ntp", "psk", "ssid", "wep"];

// Headings of the groups. An interface that is not listed here is shown by its name alone.
export const interfaces = { eth0: "Wired port", eth1: "Wireless adapter" };

export const texts = {
    title: "Device settings",
    skip: "Skip to the content",
    views: "Views",
    settings: "Settings",
    status: "Status",
    doctor: "Health",
    history: "History",
    device: "Device",
    groups: "Groups of settings",

    // Logging in
    loginTitle: "Log in",
    loginHint: "Log in to see and change the settings of this device.",
    loginAgain: "Your session has ended. Log in again.",
    loginKept: "Your session has ended. Log in again; your unsaved changes are kept.",
    loggedOut: "You are logged out.",
    user: "User name",
    password: "Password",
    logIn: "Log in",
    logOut: "Log out",
    logOutUnsaved: "Your unsaved changes are lost.",
    loginEmpty: "Enter the user name and the password.",
    loginWait: (seconds) => `Too many attempts. Try again in ${duration(seconds)}.`,

    // Values
    none: "none",
    empty: "empty",
    unknown: "not known",
    secretSet: "set, not shown",
    on: "on",
    off: "off",

    // Fields
    reading: "Reading the settings. A wireless adapter that does not answer can delay this by minutes.",
    readOnly: "read only",
    notAvailable: "not available",
    leave: "not known: leave it as it is",
    writeOnly: "This value can only be set. The device does not show it.",
    invalidNow: "The device would not accept this value now.",
    addressesHint: "Separate several addresses by blanks.",
    secretTyped: "Type a new key to replace it.",
    secretEmpty: "No key is set.",
    show: "Show",
    hide: "Hide",
    showLabel: (label) => `Show the text of ${label}`,
    remove: "Remove the key",
    takesEffect: (time) => `Takes effect ${time}.`,
    before: (value) => `Now: ${value}`,
    reset: "Reset",
    resetLabel: (label) => `Reset ${label}`,
    fix: (remedy) => `fix: ${remedy}`,
    hours: "Hours",
    day: "Day",
    time: "Time",
    scheduleForm: "Repeat",
    checking: "Checking",

    // Unsaved changes
    unsaved: (number) => `Unsaved changes: ${number}`,
    unsavedWrong: (number, wrong) => `Unsaved changes: ${number}, not valid: ${wrong}`,
    review: "Review",
    discard: "Discard",
    discardTitle: "Discard all unsaved changes?",
    discarded: "The unsaved changes are discarded.",
    wrongValues: (number) => `${count(number, "value is", "values are")} not valid. The reason is beside it.`,

    // Review
    reviewTitle: (number) => `Apply ${count(number, "change", "changes")}`,
    setting: "Setting",
    old: "Before",
    new: "After",
    secretNew: "a new key",
    restartNow: "Restart the interfaces that need it, so that the changes take effect now",
    keep: "Keep the changes",
    keepAtOnce: "at once",
    keepWithin: (seconds) => `if I confirm within ${duration(seconds)}`,
    cutOff: (name) => `This can cut you off from the device: you reach it through ${name}.`,
    cutOffUnknown: "This can cut you off from the device: it is not known through which interface you reach it.",
    cutOffHelp: "Unless you confirm the changes in time, the device puts its earlier settings back by itself.",
    newAddress: "Afterwards, the page may be at this address:",
    apply: "Apply",
    cancel: "Cancel",
    close: "Close",

    // Work that takes time
    applying: "Applying the changes",
    confirming: "Keeping the change",
    reverting: "Putting the earlier settings back",
    undoing: "Undoing the change",
    restarting: (name) => `Restarting ${name}`,
    elapsed: (seconds) => `${duration(seconds)} so far. This can take more than a minute.`,
    lostInJob: "The connection to the device is lost. It carries on without you. Trying again.",
    lostInWindow: (seconds) =>
        `If you cannot reach it any more, it puts its earlier settings back ${duration(seconds)} after the change has taken effect.`,
    forgotten: "The device no longer knows the result. See the history.",
    applied: (number) => `${count(number, "setting is", "settings are")} changed.`,
    nothingToDo: "The device has these values already. Nothing was changed.",
    restarted: (name) => `${name} was restarted.`,
    restartedWithAddress: (name, address) => `${name} was restarted. Its address is ${address}.`,
    failed: "The change failed.",
    takenBack: "The change failed and was taken back. The device has its earlier settings.",
    undone: "The change is undone.",
    restartTitle: (name) => `Restart ${name}?`,
    restartHelp: "The connection through it is interrupted for up to a minute.",
    restart: "Restart",
    restartLabel: (name) => `Restart ${name}`,
    restartAll: "Interfaces",

    // The confirmation
    stillThere: "Still there?",
    otherWaits: "A change waits for its confirmation",
    secondsLeft: (seconds) => `Unless it is kept, the device puts its earlier settings back in ${duration(seconds)}.`,
    keepIt: "Keep it",
    putBack: "Put back",
    timeOver: "The time is over. The device puts its earlier settings back; this can take more than a minute.",
    lostWhileWaiting: "No connection. Trying this address again.",
    openNew: "Open the page at the new address:",
    kept: "The change is kept.",
    wasReverted: "The change was put back. The device has its earlier settings.",
    wasNotConfirmed: "The change was not confirmed in time, so the device has put its earlier settings back.",

    // Connection
    offline: "No connection to the device.",
    offlineRetry: (seconds) => `No connection to the device. Next attempt in ${seconds} s.`,
    retry: "Try now",
    online: "The connection to the device is back.",
    serverFault: "The device gave no usable answer.",

    // Status
    statusHint: "The configuration beside the running state. A difference means that a change has not taken effect yet, or that it failed.",
    part: "Part",
    configured: "Configured",
    running: "Running",
    differs: "differs",
    allAgree: "The configuration and the running state agree.",
    someDiffer: (number) => `${count(number, "part differs", "parts differ")} from the configuration.`,
    refresh: "Refresh",
    loading: "Loading",

    // Health
    doctorHint: "Problems that keep settings from being read, changed or put into effect.",
    noFindings: "No problems found.",
    findings: (problems, warnings) => `${count(problems, "problem", "problems")}, ${count(warnings, "warning", "warnings")}.`,
    noDevice: "Most of the device's files are missing on this machine.",
    goTo: (name) => `Go to ${name}`,
    place: (file, line) => (line ? `${file}, line ${line}` : file),

    // History
    historyHint: "The changes made on this device, the last one first.",
    noHistory: "No changes yet.",
    undo: "Undo",
    undoLabel: (id) => `Undo the change ${id}`,
    undoTitle: "Undo this change?",
    undoHelp: "The values from before the change are set again, and interfaces that need it are restarted.",
    changeOf: { set: "Set", apply: "Applied", undo: "Undone" },
    stateOf: {
        done: "done", confirmed: "kept", reverted: "put back", kept: "closed as it is", waiting: "waits",
        interrupted: "interrupted", stuck: "not put back completely", prepared: "in progress",
        applying: "in progress", reverting: "being put back",
    },
    dismiss: "Dismiss",
    dismissLabel: "Dismiss this message",
};
