#!/usr/bin/env python3
"""A peer of the event benchmarks: the standard library's HTTP client and JSON. event_reader.py URL"""

import http.client
import json
import sys
import time
import urllib.parse

url = urllib.parse.urlparse(sys.argv[1])
started = time.perf_counter()
connection = http.client.HTTPConnection(url.hostname, url.port)
connection.request("GET", f"{url.path}?{url.query}")
events = text = 0
data = []
for line in connection.getresponse():
    line = line.rstrip(b"\r\n")
    if line.startswith(b"data:"):
        data.append(line[5:].removeprefix(b" "))
    elif not line and data:
        events += 1
        delta = json.loads(b"\n".join(data)).get("delta", "")
        text += len(delta.encode("utf-16-le")) // 2
        data = []
print(f"ms={(time.perf_counter() - started) * 1e3:.1f} events={events} text={text}")
