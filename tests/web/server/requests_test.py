# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""requests_test.py - the server side of the settings page without a browser: bad requests and bad clients.

Runs on a simulated device, which has the web server and its files. Every bad request gets a status 4xx. Where
velk-web answers, the body is a document of its errors; where the web server itself answers, it is its own page.
"""

import fcntl
import json
import os
import pathlib
import pty
import random
import socket
import subprocess
import sys
import termios
import threading
import time

import kit
from kit import RUN_FOLDER, Session, check, request

SEED = 20261122
GETS = ["session", "list", "describe?setting=eth0.dns", "show", "status", "doctor", "pending", "history", "job?id=0"]
POSTS = ["logout", "check", "apply", "confirm", "revert", "restart", "undo"]
# Statuses that the web server gives to requests which it does not pass on.
WEB_SERVER_STATUSES = {302, 400, 403, 404, 408, 413, 501, None}
ERROR_MEMBERS = ["schema", "verb", "status", "notes", "errors"]
PROBLEM_MEMBERS = ["message", "detail", "cause", "remedy", "setting", "result"]


def check_refusal(subject, answer, *statuses):
    """Checks a refusal of velk-web: status, headers and form."""
    document = answer.json
    check(f"{subject}: status", answer.status in statuses, (answer.status, answer.body))
    check(f"{subject}: type", answer.is_ours(), answer.headers)
    check(f"{subject}: cache", answer.headers.get("cache-control") == "no-store", answer.headers)
    check(f"{subject}: sniffing", answer.headers.get("x-content-type-options") == "nosniff", answer.headers)
    check(f"{subject}: members", document is not None and list(document) == ERROR_MEMBERS, answer.body)
    if document and document.get("errors"):
        check(f"{subject}: problem", list(document["errors"][0]) == PROBLEM_MEMBERS, answer.body)
    check(f"{subject}: no path of the server", b"/run/velk-web" not in answer.body, answer.body)


def check_bad(subject, answer):
    """Checks that a request that may stop at the web server or at velk-web is refused."""
    if answer.is_ours():
        check_refusal(subject, answer, 400, 401, 403, 404, 405, 408, 411, 413, 415)
    else:
        check(f"{subject}: status", answer.status in WEB_SERVER_STATUSES, (answer.status, answer.body))


# ---- Who asks -----------------------------------------------------------------------------------


def refuses_without_login():
    for name in GETS:
        check_refusal(f"GET {name}", request("GET", name), 401)
    for name in POSTS:
        check_refusal(f"POST {name}", request("POST", name, {}), 401)
    for cookie in ["", "velk_session=", "velk_session=" + "0" * 64, "velk_session=../sessions", "velk_session=" + "f" * 4000,
                   "velk_session=%2e%2e", "velk_session=" + "A" * 64, "other=" + "0" * 64, ";;;", "=", "velk_session"]:
        check_refusal(f"cookie {cookie[:40]}", request("GET", "show", None, {"Cookie": cookie}), 401)


def refuses_forged_requests(session, other):
    tokens = [None, "", "0" * 64, other.token, session.token[:-1], session.token + "0", session.token.upper()]
    origins = ["null", "http://evil.example", "http://127.0.0.1:8081", "http://127.0.0.1", "file://",
               "http://127.0.0.1:8080.evil.example", "https://127.0.0.1:8080/"]
    for name in POSTS:
        for token in tokens:
            answer = request("POST", name, {}, {"Cookie": session.cookie, "X-Velk-Token": token})
            check_refusal(f"POST {name} with token {token}", answer, 403)
        for origin in origins:
            check_refusal(f"POST {name} from {origin}", session.post(name, {}, {"Origin": origin}), 403)
        for site in ["cross-site", "same-site", "x"]:
            check_refusal(f"POST {name}, {site}", session.post(name, {}, {"Sec-Fetch-Site": site}), 403)
    for origin in origins:
        answer = request("POST", "login", {"user": "admin", "password": kit.PASSWORD}, {"Origin": origin})
        check_refusal(f"login from {origin}", answer, 403)
    own = f"http://127.0.0.1:{kit.PORT}"
    check("own origin", session.post("check", {"settings": {}}, {"Origin": own}).status == 200)
    check("session after forged requests", session.get("session").status == 200)


def ends_sessions(session):
    """Idle, old, logged out, or with another password."""
    for position, subject in [(4, "idle"), (3, "old")]:
        mortal = Session()
        before = {path.name for path in (RUN_FOLDER / "sessions").iterdir()}
        check(f"{subject}: begins", mortal.get("session").status == 200)
        for path in (RUN_FOLDER / "sessions").iterdir():
            lines = path.read_text().split("\n")
            lines[position] = str(int(lines[position]) - (16 * 60 if position == 4 else 13 * 3600))
            if is_newest(path):
                path.write_text("\n".join(lines))
        check_refusal(f"{subject} session", mortal.get("session"), 401)
        after = {path.name for path in (RUN_FOLDER / "sessions").iterdir()}
        check(f"{subject}: removed", len(before - after) == 1, before - after)
    gone = Session()
    check("logout", gone.post("logout", {}).status == 200)
    check_refusal("after the logout", gone.get("session"), 401)
    kit.set_password("third", "one")
    old = Session("third", "one")
    check("third logs in", old.login.status == 200, old.login.body)
    kit.set_password("third", "two")
    check_refusal("after a new password", old.get("session"), 401)
    check("other users stay", session.get("session").status == 200)


def is_newest(path):
    return path == max((RUN_FOLDER / "sessions").iterdir(), key=lambda entry: entry.stat().st_mtime_ns)


def keeps_few_sessions():
    first = Session()
    time.sleep(1.1)  # The times of sessions are in whole seconds.
    for _ in range(20):
        Session()
    count = len(list((RUN_FOLDER / "sessions").iterdir()))
    check("sessions", count == 16, count)
    check_refusal("the oldest session", first.get("session"), 401)


def slows_guessing_down(log):
    kit.forget_failures()
    for number in range(5):
        answer = request("POST", "login", {"user": "admin" if number % 2 else "nobody", "password": f"guess{number}"})
        check_refusal(f"guess {number}", answer, 401)
        check(f"text {number}", answer.message() == "the user or the password is wrong", answer.body)
    for password in ["guess", kit.PASSWORD]:
        answer = request("POST", "login", {"user": "admin", "password": password})
        check_refusal("after five guesses", answer, 429)
        check("Retry-After", answer.headers.get("retry-after", "").isdigit(), answer.headers)
    answer = request("POST", "login", {"user": "admin", "password": kit.PASSWORD}, source="127.0.0.2")
    check("another address", answer.status == 200, answer.body)
    kit.forget_failures()
    statuses = []
    for number in range(40):
        answer = request("POST", "login", {"user": "admin", "password": "x"}, source=f"127.0.1.{number + 1}")
        statuses.append(answer.status)
    check("guesses from many addresses", statuses[:29] == [401] * 29 and 429 in statuses[29:], statuses)
    kit.forget_failures()
    text = log.read()
    check("log has the failures", "login of admin from 127.0.0.1 failed" in text, text)
    check("log has no unknown name", "nobody" not in text and "an unknown user" in text, text)


def costs_the_same_for_unknown_users():
    times = {"admin": [], "nobody": []}
    for _ in range(6):
        for user in times:
            kit.forget_failures()
            begin = time.monotonic()
            request("POST", "login", {"user": user, "password": "wrong"})
            times[user].append(time.monotonic() - begin)
    ratio = min(times["nobody"]) / min(times["admin"])
    check("time of an unknown user", 0.5 < ratio < 2, ratio)
    kit.forget_failures()


# ---- Form ---------------------------------------------------------------------------------------


def refuses_methods(session):
    for name in GETS + POSTS + ["login"]:
        allowed = "GET" if name in GETS else "POST"
        for method in ["GET", "POST", "PUT", "DELETE", "HEAD", "OPTIONS", "PATCH", "get", "X" * 30]:
            if method.upper() == allowed:  # busybox httpd takes small letters, too
                continue
            answer = request(method, name, None, session.headers)
            check_bad(f"{method} {name}", answer)
            if answer.is_ours():
                check(f"{method} {name}: Allow", answer.headers.get("allow") == allowed, answer.headers)


def refuses_types_and_lengths(session):
    for name in POSTS + ["login"]:
        for kind in [None, "", "text/plain", "application/x-www-form-urlencoded", "multipart/form-data; boundary=x",
                     "application/jsonx", "application/json, text/plain", "application/json; charset=utf-16", "json"]:
            check_refusal(f"{name} as {kind}", session.post(name, {}, {"Content-Type": kind}), 415)
        check_refusal(f"{name} without length", session.post(name, None, {"Content-Type": "application/json"}), 411)
        for length in ["abc", "-1", "+2", "1e3", "0x2", "2 2", "2,2", "99999999999999999999999", ""]:
            check_bad(f"{name} of length {length}", session.post(name, {}, {"Content-Length": length}))
        for length in ["65537", "100000", "2000000000"]:
            check_refusal(f"{name} of length {length}", session.post(name, b"", {"Content-Length": length}), 413)
        chunked = {"Transfer-Encoding": "chunked", "Content-Length": None}
        check_refusal(f"{name} in chunks", session.post(name, b"2\r\n{}\r\n0\r\n\r\n", chunked), 411)
        check_refusal(f"{name} packed", session.post(name, {}, {"Content-Encoding": "gzip"}), 411)


def bad_bodies(dice):
    """Yields bodies that are no request of any name."""
    yield from [b"", b"{", b"[]", b"null", b"1", b'"x"', b"{}x", b"{}{}", b"\0", b"{\0}", b"\xff\xfe", b'{"a":\xff}',
                b"[" * 60000, b'{"a":' * 9000, b'{"settings":{},"settings":{}}', b'{"a":1e999999}', b"{'a':1}",
                b'{"a":1,}', b"\xef\xbb\xbf{", b'{"unknown":1}', b'{"settings":{"ntp":"on","ntp":"off"},"x":1}']
    for _ in range(60):
        yield bytes(dice.randrange(256) for _ in range(dice.randrange(1, 200)))
    whole = b'{"settings":{"eth0.dns":["1.1.1.1"]},"restart":false,"confirm_within":null}'
    for _ in range(40):
        yield whole[: dice.randrange(1, len(whole))]
    for _ in range(40):
        at = dice.randrange(len(whole))
        yield whole[:at] + b"\x00\x01"[dice.randrange(2) :] + whole[at + 1 :]


def refuses_bodies(session):
    for name in ["check", "apply", "confirm", "revert", "restart", "undo", "login"]:
        for number, body in enumerate(bad_bodies(random.Random(SEED))):
            answer = session.post(name, body)
            # busybox httpd hands a length of zero over as none.
            check_refusal(f"{name}, body {number} {body[:40]}", answer, 400 if body else 411)


def refuses_members(session):
    wrong = {
        "check": [{}, {"settings": []}, {"settings": "x"}, {"settings": {}, "more": 1}],
        "apply": [{"settings": {}, "restart": 1}, {"settings": {}, "dry_run": "yes"}, {"settings": {}, "confirm_within": -5},
                  {"settings": {}, "confirm_within": "10 --force"}, {"settings": {}, "confirm_within": 1.5},
                  {"settings": {}, "confirm_within": 86401}, {"settings": None}, {"settings": {}, "confirm_if": "id"}],
        "confirm": [{"id": "--force"}, {"id": "abc"}, {"id": "abcde"}, {"id": "AB12"}, {"id": 1234}, {"id": ["a"]}],
        "revert": [{"id": "../x"}, {"id": "a b1"}, {"id": ""}, {"id": True}],
        "undo": [{"entry": "--json"}, {"entry": "a;id"}, {"entry": 7}, {"entry": {}}, {"id": "abcd"}],
        "restart": [{}, {"interface": "lo"}, {"interface": "eth0;id"}, {"interface": "eth0 eth1"}, {"interface": ["eth0"]},
                    {"interface": "--help"}, {"interface": "eth0", "confirm_within": 60}, {"interface": "eth2"}],
        "login": [{}, {"user": "admin"}, {"user": 1, "password": "x"}, {"user": "a", "password": None},
                  {"user": "a", "password": "x", "more": 1}],
    }
    for name, bodies in wrong.items():
        for body in bodies:
            check_refusal(f"{name} {body}", session.post(name, body), 400)
    for query in ["", "?setting=", "?setting=--help", "?setting=a%20b", "?setting=../x", "?setting=A", "?setting=-x",
                  "?setting=" + "a" * 65, "?setting=a;id", "?setting=$(id)", "?other=x", "?setting", "?&&&="]:
        check_refusal(f"describe{query}", session.get("describe" + query), 400)
    for query in ["", "?id=", "?id=../../sessions", "?id=" + "0" * 32, "?id=" + "g" * 32, "?id=%00", "?id=" + "0" * 5000]:
        check_refusal(f"job{query[:30]}", session.get("job" + query), 404)


def refuses_values_as_velkctl_does(session):
    """The answers of velkctl, each with its setting."""
    secret = "SECRETKEY" * 20
    answer = session.post("check", {"settings": {"eth0.address": "1.2.3", "nope": 1, "eth1.psk": secret}})
    problems = answer.json["errors"]
    check("check: status", answer.status == 200 and answer.json["status"] == 2, answer.body)
    check("check: settings", {"eth0.address", "eth1.psk"} <= {problem["setting"] for problem in problems}, problems)
    check("check: no key", b"SECRETKEY" not in answer.body, answer.body)
    for value in [None, True, 7, -1, 1e300, "x" * 60000, ["a"] * 1000, {"a": {"b": {}}}, "\0", "\u202e", "$(id)", "';id;'",
                  "a\nb", [[["a"]]], 18446744073709551615]:
        for setting in ["eth0.address", "eth0.dns", "ntp", "ntp-server", "location", "web-update", "eth1.channel", "eth1.ssid"]:
            answer = session.post("check", {"settings": {setting: value}})
            check(f"check {setting} {str(value)[:20]}", answer.status in (200, 413), (answer.status, answer.body))


def refuses_paths(session):
    secret_words = [b"root:", b"$y$", b"admin:"]
    tricks = ["/../../etc/passwd", "/cgi-bin/../../../etc/shadow", "/%2e%2e/%2e%2e/etc/passwd", "/..%2f..%2fetc/passwd",
              "/cgi-bin/velk/../../../../etc/velk/web-users", "//etc/passwd", "/./././../etc/passwd", "/cgi-bin/", "/cgi-bin",
              "/cgi-bin/sh", "/cgi-bin/velk%00", "/cgi-bin/velk/%00", "/cgi-bin/velk/login%00", "/httpd.conf",
              "/../httpd.conf", "/cgi-bin/velk/..", "/cgi-bin/velk//login", "/cgi-bin/velk/login/", "/cgi-bin/velk/LOGIN",
              "/cgi-bin/velk/" + "a" * 3000, "/" + "a/" * 2000, "/cgi-bin/velk/sess%69on/x", "/cgi-bin/velk", "/cgi-bin/velk/",
              "/\\..\\..\\etc\\passwd", "/%c0%ae%c0%ae/etc/passwd", "http://x/etc/passwd", "*", ""]
    for path in tricks:
        answer = request("GET", "", None, {"Cookie": session.cookie}, path=path)
        check_bad(f"path {path[:40]}", answer)
        check(f"path {path[:40]}: contents", not any(word in answer.body for word in secret_words), answer.body)
    for raw in [b"\r\n\r\n", b"GET\r\n\r\n", b"GET /\r\n", b"\0\0\0\0", b"GET / HTTP/9.9\r\n" + b"A: b\r\n" * 5000 + b"\r\n",
                b"GET /cgi-bin/velk/a\0b HTTP/1.1\r\n\r\n", b"POST /cgi-bin/velk/login HTTP/1.1\r\n: x\r\n\r\n",
                b"GET /cgi-bin/velk/session HTTP/1.1\r\nHost" + b"x" * 20000 + b"\r\n\r\n", b"\x16\x03\x01\x02\x00" + b"a" * 500]:
        with kit.connect() as connection:
            connection.sendall(raw)
            connection.shutdown(1)
            answer = kit.receive(connection)
        kit.counts["requests"] += 1
        check(f"raw {raw[:20]}", answer.status is None or answer.status != 200 or b"<html" in answer.body, answer.body[:200])


def refuses_random_requests(session):
    """Requests that are put together at random, with and without the session."""
    dice = random.Random(SEED)
    names = [name.split("?")[0] for name in GETS + POSTS] + ["login", "", "x", "../x", "list/x", "%6cist"]
    bodies = [b"", b"{}", b"{", b"[]", b'{"settings":1}', b"\xff" * 9]
    for number in range(400):
        headers = {}
        if dice.random() < 0.3:
            headers["Cookie"] = session.cookie
        if dice.random() < 0.2:
            headers["X-Velk-Token"] = "0" * 64
        if dice.random() < 0.3:
            headers["Origin"] = dice.choice(["null", "http://evil.example", "x"])
        if dice.random() < 0.3:
            headers["Content-Length"] = dice.choice(["-1", "x", "70000", "", "00"])
        if dice.random() < 0.3:
            headers["Content-Type"] = dice.choice(["text/plain", "", "application/json;x"])
        answer = request(dice.choice(["POST", "PUT", "DELETE", "TRACE"]), dice.choice(names), dice.choice(bodies), headers)
        check_bad(f"random request {number}", answer)


# ---- Bad clients --------------------------------------------------------------------------------


def serves_beside_slow_clients(session):
    slow = [kit.connect() for _ in range(20)]
    for connection in slow[:10]:
        connection.sendall(b"GET /cgi-bin/velk/sess")
    head = f"POST /cgi-bin/velk/check HTTP/1.1\r\nHost: 127.0.0.1:{kit.PORT}\r\nCookie: {session.cookie}\r\n"
    head += f"X-Velk-Token: {session.token}\r\nContent-Type: application/json\r\nContent-Length: 20\r\n\r\n"
    for connection in slow[10:]:
        connection.sendall(head.encode() + b'{"se')
    deaf = []
    for _ in range(10):
        connection = kit.connect()
        connection.setsockopt(1, 8, 1)  # SO_RCVBUF: the answer does not fit
        connection.sendall(f"GET /cgi-bin/velk/list HTTP/1.1\r\nCookie: {session.cookie}\r\n\r\n".encode())
        deaf.append(connection)
    begin = time.monotonic()
    check("beside slow clients", session.get("session").status == 200)
    check("beside slow clients: time", time.monotonic() - begin < 5, time.monotonic() - begin)
    answer = kit.receive(slow[10])
    check_refusal("slow body", answer, 408)
    check("slow body: time", 8 < time.monotonic() - begin < 20, time.monotonic() - begin)
    for connection in slow + deaf:
        connection.close()
    short = kit.connect()
    short.sendall(head.encode() + b"{}")
    short.shutdown(1)
    check_bad("short body", kit.receive(short))


def serves_many_at_once(session):
    statuses = []

    def ask(name):
        statuses.append(session.get(name).status)

    threads = [threading.Thread(target=ask, args=[name]) for name in ["session", "list"] * 40]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    check("many at once", set(statuses) <= {200, 503} and statuses.count(200) >= 40, sorted(statuses))
    check("after many", session.get("list").status == 200)


def at_once(calls):
    """Makes all calls at once and returns their results."""
    results = []
    threads = [threading.Thread(target=lambda call=call: results.append(call())) for call in calls]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return results


def asks_the_daemon_in_turn(session):
    """The wireless daemon replies to one path: runs that ask it at once would take each other's replies."""
    body = {"settings": {"eth1.wep-key-2": "abcde"}}
    answers = at_once([lambda: session.post("check", body)] * 12)
    check("checks at once", all(answer.status == 200 and answer.json["status"] == 0 for answer in answers),
          [answer.body for answer in answers if answer.status != 200 or answer.json["status"] != 0])


def waits_for_its_turn(session):
    """A change begins when a run before it has asked the daemon."""
    with open(RUN_FOLDER / "daemon.lock", "w", encoding="ascii") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        answer = session.post("apply", {"settings": {"location": "hall"}, "restart": False})
        state = session.get(f"job?id={answer.json['job']}").json
        check("turn: waits", state["progress"] == ["waiting for the end of another request"], state)
        begin = time.monotonic()
        check("turn: confirm does not wait", session.await_job(session.post("confirm", {})) is not None)
        check("turn: pending does not wait", session.get("pending").status == 200)
        check("turn: time", time.monotonic() - begin < 10, time.monotonic() - begin)
        check_refusal("turn: a read ends its wait", session.get("show"), 503)
    document = session.await_job(answer)
    check("turn: change", document and document["status"] == 0, document)


def serves_beside_slow_logins(session):
    """Clients without a login cannot take the places of those with one."""
    head = f"POST /cgi-bin/velk/login HTTP/1.1\r\nHost: 127.0.0.1:{kit.PORT}\r\n"
    head += "Content-Type: application/json\r\nContent-Length: 20\r\n\r\n{"
    slow = [kit.connect() for _ in range(40)]
    for connection in slow:
        connection.sendall(head.encode())
    time.sleep(1)
    answer = session.post("check", {"settings": {}})
    check("beside slow logins", answer.status == 200, answer.body)
    for connection in slow:
        connection.close()


def sets_passwords_at_once():
    names = [f"user{number}" for number in range(6)]
    at_once([lambda name=name: kit.set_password(name, "x") for name in names])
    text = kit.USERS_FILE.read_text()
    check("passwords at once", all(f"{name}:" in text for name in ["admin", *names]), text.count("\n"))


def leaves_the_terminal_with_echo():
    """Ctrl-C at the question for a password."""
    program = pathlib.Path(os.environ["VELK_BUILD"]) / "velk-web"
    command, terminal = pty.fork()
    if command == 0:
        os.execlp("sh", "sh", "-c", f"trap : INT; {program} --set-password admin; read x")
    text = b""
    while b"New password" not in text:
        text += os.read(terminal, 100)
    end = time.monotonic() + 10
    while termios.tcgetattr(terminal)[3] & termios.ECHO and time.monotonic() < end:
        time.sleep(0.02)
    os.write(terminal, b"\x03")
    while not termios.tcgetattr(terminal)[3] & termios.ECHO and time.monotonic() < end:
        time.sleep(0.02)
    check("echo after Ctrl-C", termios.tcgetattr(terminal)[3] & termios.ECHO)
    os.close(terminal)
    os.waitpid(command, 0)


def keeps_the_cookie_encrypted():
    """The browser uses a proxy with TLS."""
    origin = {"Origin": f"https://127.0.0.1:{kit.PORT}"}
    answer = request("POST", "login", {"user": "admin", "password": kit.PASSWORD}, origin)
    check("cookie through TLS", "; Secure" in answer.headers.get("set-cookie", ""), answer.headers)


# ---- Jobs and secrets ---------------------------------------------------------------------------


def keeps_jobs_to_their_user(session):
    answer = session.post("apply", {"settings": {"location": "cellar"}, "restart": False})
    check("apply", answer.status == 202, answer.body)
    document = session.await_job(answer)
    check("apply: document", document and document["verb"] == "apply" and document["status"] == 0, document)
    job = answer.json["job"]
    check("same user", Session().get(f"job?id={job}").status == 200)
    kit.set_password("second", "password two")
    check_refusal("another user", Session("second", "password two").get(f"job?id={job}"), 404)
    check_refusal("nobody", request("GET", f"job?id={job}"), 401)


def begins_jobs_beside_old_ones(session):
    """Ended jobs make room."""
    statuses = []
    for _ in range(36):
        answer = session.post("confirm", {})
        statuses.append(answer.status)
        session.await_job(answer)
    check("many jobs in sequence", statuses == [202] * 36, statuses)


def ends_a_change_without_its_connection(session):
    body = json.dumps({"settings": {"location": "attic"}, "restart": False}).encode()
    head = f"POST /cgi-bin/velk/apply HTTP/1.1\r\nHost: x\r\nCookie: {session.cookie}\r\nX-Velk-Token: {session.token}\r\n"
    head += f"Content-Type: application/json\r\nContent-Length: {len(body)}\r\n\r\n"
    connection = kit.connect()
    connection.sendall(head.encode() + body)
    connection.shutdown(1)
    connection.close()
    end = time.monotonic() + 30
    value = None
    while value != "attic" and time.monotonic() < end:
        run = subprocess.run(["velkctl", "get", "location"], capture_output=True, text=True, check=False)
        value = run.stdout.strip()
        time.sleep(0.1)
    check("change without connection", value == "attic", value)


def confirms_and_reverts(session):
    for verb, state, place in [("confirm", "confirmed", "roof"), ("revert", "reverted", "garden")]:
        answer = session.post("apply", {"settings": {"location": place}, "restart": False, "confirm_within": 60})
        document = session.await_job(answer)
        check(f"{verb}: waits", document and document["state"] == "waiting", document)
        pending = session.get("pending").json
        check(f"{verb}: pending", pending["pending"] and pending["pending"]["id"] == document["id"], pending)
        document = session.await_job(session.post(verb, {}))
        check(verb, document and document["state"] == state, document)
    document = session.await_job(session.post("undo", {"entry": None}))
    check("undo", document and document["verb"] == "undo" and document["status"] == 0, document)


def words_of_processes():
    text = b""
    for path in pathlib.Path("/proc").glob("[0-9]*"):
        for name in ["cmdline", "environ"]:
            try:
                text += (path / name).read_bytes()
            except OSError:
                pass
    return text


def shows_secrets_nowhere(session, log):
    secret = "Zwiebelkuchen77"
    subprocess.run(["velk-sandbox", "cable", "out"], check=True)
    answer = session.post("apply", {"settings": {"eth1.psk": secret}, "restart": False})
    seen = b""
    job = answer.json["job"]
    state = {"done": False}
    while not state["done"]:
        seen += words_of_processes()
        reply = session.get(f"job?id={job}")
        seen += reply.body
        state = reply.json
    check("key is set", state["answer"]["status"] == 0, state)
    subprocess.run(["velk-sandbox", "cable", "in"], check=True)
    for name in ["show", "history", "status", "doctor", "list"]:
        seen += session.get(name).body
    for path in RUN_FOLDER.rglob("*"):
        seen += path.read_bytes() if path.is_file() else b""
    seen += log.read().encode()
    for text in [secret, kit.PASSWORD]:
        check(f"{text} is nowhere", text.encode() not in seen)
    check("id is in no file", session.cookie.partition("=")[2].encode() not in b"".join(
        path.read_bytes() for path in RUN_FOLDER.rglob("*") if path.is_file()))


def answers_beside_a_stuck_log():
    """The daemon of the log does not read, and its queue is full."""
    pathlib.Path("/dev/log").unlink()
    stuck = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    stuck.bind("/dev/log")
    begin = time.monotonic()
    statuses = [Session().login.status for _ in range(15)]
    check("logins beside a stuck log", statuses == [200] * 15, statuses)
    check("logins beside a stuck log: time", time.monotonic() - begin < 10, time.monotonic() - begin)
    stuck.close()
    pathlib.Path("/dev/log").unlink()


def keeps_its_files_private():
    for path in [RUN_FOLDER, *RUN_FOLDER.rglob("*")]:
        mode = path.stat().st_mode & 0o777
        check(f"mode of {path}", mode == (0o700 if path.is_dir() else 0o600), oct(mode))
    check("mode of the users", kit.USERS_FILE.stat().st_mode & 0o007 == 0)


def answers_before_there_are_users():
    kit.USERS_FILE.unlink()
    answer = request("POST", "login", {"user": "admin", "password": "x"})
    check_refusal("no users", answer, 401)
    check("no users: fix", "--set-password" in answer.body.decode(), answer.body)


def leaves_no_process(server):
    end = time.monotonic() + 10
    names = []
    while time.monotonic() < end:
        run = subprocess.run(["ps", "-eo", "pid,args"], capture_output=True, text=True, check=True)
        names = [line for line in run.stdout.splitlines() if "velk-web" in line or "httpd" in line]
        names = [line for line in names if line.split()[0] != str(server.pid)]
        if not names:
            break
        time.sleep(0.1)
    check("no process is left", not names, names)


def main():
    kit.set_password("admin", kit.PASSWORD)
    log = kit.SystemLog()
    server = kit.start_server()
    session, other = Session(), Session()
    check("login", session.login.status == 200 and session.token, session.login.body)
    for attribute in ["HttpOnly", "SameSite=Strict", "Path=/cgi-bin/velk"]:
        check(attribute, attribute in session.attributes, session.attributes)
    parts = [
        refuses_without_login,
        lambda: refuses_forged_requests(session, other),
        lambda: refuses_methods(session),
        lambda: refuses_types_and_lengths(session),
        lambda: refuses_bodies(session),
        lambda: refuses_members(session),
        lambda: refuses_values_as_velkctl_does(session),
        lambda: refuses_paths(session),
        lambda: refuses_random_requests(session),
        lambda: serves_many_at_once(session),
        lambda: serves_beside_slow_clients(session),
        lambda: serves_beside_slow_logins(session),
        lambda: asks_the_daemon_in_turn(session),
        lambda: waits_for_its_turn(session),
        sets_passwords_at_once,
        leaves_the_terminal_with_echo,
        keeps_the_cookie_encrypted,
        lambda: keeps_jobs_to_their_user(session),
        lambda: begins_jobs_beside_old_ones(session),
        lambda: ends_a_change_without_its_connection(session),
        lambda: confirms_and_reverts(session),
        lambda: shows_secrets_nowhere(session, log),
        keeps_its_files_private,
        lambda: ends_sessions(session),
        lambda: slows_guessing_down(log),
        costs_the_same_for_unknown_users,
        keeps_few_sessions,
        answers_beside_a_stuck_log,
        answers_before_there_are_users,
        lambda: leaves_no_process(server),
    ]
    only = [word for word in sys.argv[1:] if word != "-v"]
    for part in parts:
        if only and not set(only) & set([part.__name__, *part.__code__.co_names]):
            continue
        begin = time.monotonic()
        part()
        if "-v" in sys.argv:
            print(f"{time.monotonic() - begin:6.2f} s", part.__code__.co_names[0], len(kit.failures), flush=True)
    check("the server runs", server.poll() is None)
    server.terminate()
    for failure in kit.failures[:40]:
        print("FAILED:", failure)
    print(f"{kit.counts['requests']} requests, {kit.counts['checks']} checks, {len(kit.failures)} failed")
    sys.exit(1 if kit.failures else 0)


if __name__ == "__main__":
    main()
