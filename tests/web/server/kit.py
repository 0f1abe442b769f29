# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""kit.py - a settings page on a simulated device, and a browser that may be a bad one."""

import json
import os
import pathlib
import socket
import subprocess
import threading
import time

RUN_FOLDER = pathlib.Path("/run/velk-web")
USERS_FILE = pathlib.Path("/etc/velk/web-users")
PORT = 8080
PASSWORD = "correct horse"

failures = []
counts = {"requests": 0, "checks": 0}


def check(subject, is_right, actual=""):
    counts["checks"] += 1
    if not is_right:
        failures.append(f"{subject}: {str(actual)[:400]}")


class Answer:
    """An answer. It has no status if the connection ended without one."""

    def __init__(self, raw):
        head, _, self.body = raw.partition(b"\r\n\r\n")
        lines = head.decode("latin-1").split("\r\n")
        words = lines[0].split()
        self.status = int(words[1]) if len(words) > 1 and words[1].isdigit() else None
        self.headers = {}
        for line in lines[1:]:
            name, _, value = line.partition(":")
            self.headers[name.lower()] = value.strip()

    @property
    def json(self):
        try:
            return json.loads(self.body)
        except ValueError:
            return None

    def is_ours(self):
        """True if velk-web has written it, not the web server."""
        return self.headers.get("content-type") == "application/json; charset=utf-8"

    def message(self):
        return self.json["errors"][0]["message"] if self.json and self.json.get("errors") else None


def connect(source=None):
    return socket.create_connection(
        ("127.0.0.1", PORT), timeout=30, source_address=(source, 0) if source else None
    )


def receive(connection):
    parts = []
    try:
        while part := connection.recv(65536):
            parts.append(part)
    except OSError:
        pass
    return Answer(b"".join(parts))


def send_raw(raw, source=None):
    """Sends bytes as they are and returns the answer."""
    counts["requests"] += 1
    with connect(source) as connection:
        try:
            connection.sendall(raw)
        except OSError:
            pass  # the server may have answered and closed
        return receive(connection)


def request(method, name, body=None, headers=None, source=None, path=None):
    """Sends a request. `body` is bytes, or a value that becomes JSON."""
    path = f"/cgi-bin/velk/{name}" if path is None else path
    fields = {"Host": f"127.0.0.1:{PORT}"}
    if body is not None:
        if not isinstance(body, bytes):
            body = json.dumps(body).encode()
        fields["Content-Type"] = "application/json"
        fields["Content-Length"] = str(len(body))
    fields.update(headers or {})
    lines = [f"{method} {path} HTTP/1.1"]
    lines += [f"{key}: {value}" for key, value in fields.items() if value is not None]
    head = "\r\n".join(lines).encode("latin-1") + b"\r\n\r\n"
    return send_raw(head + (body or b""), source)


class Session:
    def __init__(self, user="admin", password=PASSWORD):
        self.login = request("POST", "login", {"user": user, "password": password})
        cookie = self.login.headers.get("set-cookie", "")
        self.cookie = cookie.split(";")[0]
        self.attributes = cookie
        self.token = (self.login.json or {}).get("token", "")

    @property
    def headers(self):
        return {"Cookie": self.cookie, "X-Velk-Token": self.token}

    def get(self, name):
        return request("GET", name, None, {"Cookie": self.cookie})

    def post(self, name, body, headers=None):
        return request("POST", name, body, {**self.headers, **(headers or {})})

    def await_job(self, answer):
        """Returns the document of a job when it has ended."""
        job = (answer.json or {}).get("job")
        end = time.monotonic() + 30
        while job and time.monotonic() < end:
            state = self.get(f"job?id={job}").json
            check(f"job {job}", "done" in (state or {}), state)
            if state.get("done"):
                return state["answer"]
            time.sleep(0.1)
        return None


def set_password(user, password):
    program = pathlib.Path(os.environ["VELK_BUILD"]) / "velk-web"
    return subprocess.run([program, "--set-password", user], input=f"{password}\n", text=True, check=False)


def start_server():
    """Starts the web server of the distribution with the settings page."""
    page = pathlib.Path(os.environ["VELK_BUILD"]) / "web-page"
    command = ["busybox", "httpd", "-f", "-p", f"127.0.0.1:{PORT}"]
    command += ["-h", page / "page", "-c", page / "httpd.conf"]
    server = subprocess.Popen(command, stderr=subprocess.DEVNULL)
    end = time.monotonic() + 30
    while time.monotonic() < end:
        try:
            connect().close()
            return server
        except OSError:
            time.sleep(0.02)
    raise SystemExit("the web server does not start")


def forget_failures():
    """Ends the wait after failed logins."""
    (RUN_FOLDER / "failures").write_text("")


class SystemLog:
    """The system log of the device, which has no daemon for it."""

    def __init__(self):
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.socket.bind("/dev/log")
        self.text = ""
        threading.Thread(target=self.receive, daemon=True).start()

    def receive(self):
        while True:
            self.text += self.socket.recv(4096).decode("latin-1") + "\n"

    def read(self):
        time.sleep(0.2)
        return self.text
