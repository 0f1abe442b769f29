# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""user_browser.py - logs in to the settings page of eth0, asks for everything once and prints the answers in brief."""

import http.client
import json
import time


def ask(method, name, body=None):
    connection = http.client.HTTPConnection("192.168.0.10", 8080, timeout=20)
    headers = {"Cookie": cookie, "X-Velk-Token": token}
    if body is not None:
        headers["Content-Type"] = "application/json"
        body = json.dumps(body)
    connection.request(method, "/cgi-bin/velk/" + name, body, headers)
    answer = connection.getresponse()
    return answer, json.loads(answer.read())


def finish(name, body):
    job = ask("POST", name, body)[1].get("job")
    for _ in range(200):
        state = ask("GET", "job?id=" + str(job))[1]
        if state.get("done", True):
            return state.get("answer", state)
        time.sleep(0.1)
    raise SystemExit(f"{name} does not end")


cookie = token = ""
answer, document = ask("POST", "login", {"user": "admin", "password": "correct horse"})
cookie, token = answer.headers["Set-Cookie"].split(";")[0], document["token"]
print(document["reached_through"])
for name in ["list", "show", "status", "doctor", "pending", "history", "describe?setting=eth0.dns"]:
    answer, document = ask("GET", name)
    print(name.split("?")[0], answer.status, document["verb"], document["errors"][:1])
print("check", ask("POST", "check", {"settings": {"eth0.gateway": "1"}})[1]["errors"][0]["setting"])
change = {"settings": {"location": "roof", "eth0.dns": ["192.168.0.1"]}, "restart": False, "confirm_within": 60}
document = finish("apply", change)
print(document["state"], ask("GET", "pending")[1]["pending"]["id"] == document["id"])
print(finish("confirm", {"id": document["id"]})["state"])
print(finish("apply", {"settings": {"location": "cellar"}, "restart": True, "confirm_within": 60})["state"])
print(finish("revert", {})["state"])
print(finish("undo", {"entry": None})["status"])
print(finish("apply", {"settings": {"location": "dry"}, "dry_run": True})["preview"]["results"][0]["name"])
