"""Real proxies in front of the relay, each configured to let as much through as possible."""

import contextlib
import os
import shutil
import socket
import subprocess
import time

from relay import PORT as RELAY

PORT = 8082
_PATIENCE_SEC = 30

_NGINX = """
daemon off; master_process off; pid {folder}/nginx.pid; error_log {folder}/error.log;
events {{ worker_connections 256; }}
http {{
  access_log off; default_type text/plain;
  client_body_temp_path {folder}/body; proxy_temp_path {folder}/proxy;
  fastcgi_temp_path {folder}/fastcgi; uwsgi_temp_path {folder}/uwsgi; scgi_temp_path {folder}/scgi;
  underscores_in_headers on; ignore_invalid_headers off; merge_slashes off;
  client_header_timeout 1s; client_body_timeout 1s; keepalive_timeout 5s;
  upstream recorder {{ server 127.0.0.1:{relay}; {pool} }}
  server {{
    listen 127.0.0.1:{port};
    location / {{
      proxy_pass http://recorder; proxy_http_version {version}; {header}
      proxy_request_buffering {buffered}; proxy_ignore_client_abort on;
      proxy_next_upstream off; proxy_read_timeout 5s; client_max_body_size 4m;
    }}
  }}
}}
"""

_HAPROXY = """
global
  maxconn 256
defaults
  mode http
  timeout connect 5s
  timeout client 1s
  timeout server 5s
  timeout http-request 1s
  timeout http-keep-alive 1s
  option accept-invalid-http-request
  option accept-invalid-http-response
  http-reuse {reuse}
frontend clients
  bind 127.0.0.1:{port}
  default_backend recorder
backend recorder
  server one 127.0.0.1:{relay}
"""

_LIGHTTPD = """
server.modules = ( "mod_proxy" )
server.document-root = "{folder}"
server.bind = "127.0.0.1"
server.port = {port}
server.errorlog = "{folder}/error.log"
server.upload-dirs = ( "{folder}" )
server.http-parseopts = ( "header-strict" => "disable", "host-strict" => "disable",
  "host-normalize" => "disable", "url-normalize" => "disable",
  "method-get-body" => "enable" )
server.max-read-idle = 1
server.max-keep-alive-idle = 1
server.stream-request-body = {streamed}
proxy.server = ( "" => (( "host" => "127.0.0.1", "port" => {relay} )) )
proxy.header = ( {header} )
"""

_POOL = {"pool": "keepalive 4;", "header": 'proxy_set_header Connection "";', "version": "1.1"}
# Name: the configuration, the command line that starts the program with it, and what the variant
# tests.
FRONTS = {
    "nginx-1.0": (_NGINX, ["nginx", "-c"], {"pool": "", "header": "", "version": "1.0", "buffered": "on"}),
    "nginx-1.0-streamed": (_NGINX, ["nginx", "-c"], {"pool": "", "header": "", "version": "1.0", "buffered": "off"}),
    "nginx-1.1": (_NGINX, ["nginx", "-c"], {**_POOL, "buffered": "on"}),
    "nginx-1.1-streamed": (_NGINX, ["nginx", "-c"], {**_POOL, "buffered": "off"}),
    "haproxy": (_HAPROXY, ["haproxy", "-db", "-f"], {"reuse": "always"}),
    "haproxy-own": (_HAPROXY, ["haproxy", "-db", "-f"], {"reuse": "never"}),
    "lighttpd": (_LIGHTTPD, ["lighttpd", "-D", "-f"], {"streamed": "0", "header": ""}),
    "lighttpd-streamed": (_LIGHTTPD, ["lighttpd", "-D", "-f"], {"streamed": "2", "header": ""}),
    "lighttpd-1.0": (_LIGHTTPD, ["lighttpd", "-D", "-f"], {"streamed": "0", "header": '"force-http10" => "enable"'}),
}  # fmt: skip


def program(name):
    """The proxy's executable; None where it is not installed."""
    return shutil.which(FRONTS[name][1][0], path=os.environ["PATH"] + ":/usr/sbin:/usr/local/sbin")


@contextlib.contextmanager
def front(name, folder):
    config, words, variant = FRONTS[name]
    path = os.path.join(folder, "proxy.conf")
    with open(path, "w", encoding="ascii") as file:
        file.write(config.format(folder=folder, port=PORT, relay=RELAY, **variant))
    with open(os.path.join(folder, "output.txt"), "wb") as output:
        process = subprocess.Popen([program(name), *words[1:], path], stdin=subprocess.DEVNULL, stdout=output, stderr=output)
    try:
        _wait_for(process, output.name)
        yield process
        assert process.poll() is None, "the proxy ended"
    finally:
        process.terminate()
        process.wait()


def _wait_for(process, output):
    deadline = time.monotonic() + _PATIENCE_SEC
    while True:
        with contextlib.suppress(ConnectionRefusedError):
            socket.create_connection(("127.0.0.1", PORT)).close()
            return
        with open(output, encoding="utf-8") as file:
            assert process.poll() is None and time.monotonic() < deadline, file.read()
        time.sleep(0.02)
