"""Meetings in web pages, and the browsers that show them.

A page polls its server several times a second for its contents. A test in which somebody joins changes
the page's list, and knows when the page shows it.
"""

import http.server
import json
import subprocess
import threading
import urllib.parse

from conftest import wait_until

PAGE = """<!DOCTYPE html>
<html lang="en"><meta charset="utf-8"><title>TITLE</title>
<style>STYLE</style>
<div id="banner" role="status"></div>
<h1>Weekly planning</h1>
<section aria-label="In this call"><ul id="people"></ul></section>
<div id="chat" role="log"></div>
MARKUP
<button>Leave call</button>
<script>
function fill(list, kind, texts) {
  while (list.children.length > texts.length) list.lastChild.remove();
  texts.forEach((text, i) => {
    if (i == list.children.length)
      list.appendChild(document.createElement(kind)).appendChild(document.createTextNode(text));
    else if (list.children[i].firstChild.data != text)
      list.children[i].firstChild.data = text;
  });
}
const element = id => document.getElementById(id);
const commands = {
  go: to => location.assign(to),
  open: to => window.open(to),
  openWindow: to => window.open(to, "_blank", "width=900,height=700"),
  close: () => window.close(),
  run: script => eval(script),
};
let shown = -1;
const state = () => `shown=${shown}&visibility=${document.visibilityState}&area=${innerWidth * innerHeight}`;
async function follow() {
  const answer = await fetch(`/now${location.pathname}?${state()}`);
  const now = await answer.json();
  fill(element("banner"), "span", now.banners);
  fill(element("people"), "li", now.people);
  fill(element("chat"), "p", now.chat);
  shown = now.version;
  for (const [command, argument] of now.commands) commands[command](argument);
}
setInterval(() => follow().catch(() => {}), 100);
</script>
"""


class Page:
    """The contents of a page. `version` counts the changes; `shown` is the version on the page.
    `markup` is shown after them and is never changed by them."""

    def __init__(self, title, people=(), banners=(), chat=(), markup=""):
        self.title = title
        self.markup = markup
        self.content = {"people": list(people), "banners": list(banners), "chat": list(chat)}
        self.version = 0
        self.shown = -1
        self.is_visible = False
        self.area = 0
        self.commands = []

    def change(self, **content):
        self.content = {**self.content, **content}
        self.version += 1
        wait_until(lambda: self.shown == self.version, f"the change of {self.title}")

    def wait_until_shown(self):
        wait_until(lambda: self.shown == self.version and self.is_visible, f"the page {self.title}")

    def wait_until_hidden(self):
        wait_until(lambda: not self.is_visible, f"another tab before {self.title}")

    def tell(self, command, argument=""):
        self.commands.append((command, argument))

    def run(self, script):
        """Runs a script in the page; returns when the page has done so."""
        self.tell("run", script)
        self.change()


class Site(http.server.ThreadingHTTPServer):
    """A server of pages. A meeting is recognised by the host name in its address, which these pages
    have in their path."""

    daemon_threads = True

    def __init__(self, style=""):
        super().__init__(("127.0.0.1", 0), Handler)
        self.pages = {}
        self.style = style
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def add(self, path, *arguments, **options):
        page = self.pages[path] = Page(*arguments, **options)
        return page

    def address(self, path, host="127.0.0.1"):
        """The address of a page. "localhost" is another site to a browser."""
        return f"http://{host}:{self.server_port}{path}"

    def handle_error(self, _request, _client):
        pass  # a browser that exits drops its connections

    def end(self):
        self.shutdown()
        self.server_close()


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        url = urllib.parse.urlsplit(self.path)
        asks = url.path.startswith("/now/")
        page = self.server.pages.get(url.path.removeprefix("/now"))
        if page is None:
            self.answer(404, "text/plain", "")
        elif not asks:
            page.shown = -1
            self.answer(200, "text/html", PAGE.replace("TITLE", page.title)
                        .replace("STYLE", self.server.style).replace("MARKUP", page.markup))
        else:
            query = urllib.parse.parse_qs(url.query)
            page.shown = int(query["shown"][0])
            page.is_visible = query["visibility"] == ["visible"]
            page.area = int(query["area"][0])
            commands, page.commands = page.commands, []
            self.answer(200, "application/json", json.dumps(
                {**page.content, "version": page.version, "commands": commands}))

    def answer(self, status, kind, text):
        body = text.encode()
        self.send_response(status)
        self.send_header("Content-Type", f"{kind}; charset=utf-8")
        self.send_header("Content-Length", str(len(body)))
        self.send_header("Cache-Control", "no-store")
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


FIREFOX_PREFERENCES = {
    "app.normandy.enabled": False,
    "app.update.enabled": False,
    "browser.aboutwelcome.enabled": False,
    "browser.preonboarding.enabled": False,
    "browser.sessionstore.resume_from_crash": False,
    "browser.shell.checkDefaultBrowser": False,
    "browser.startup.homepage_override.mstone": "ignore",
    "browser.tabs.splitView.enabled": True,
    "datareporting.policy.dataSubmissionEnabled": False,
    "devtools.everOpened": True,
    "dom.disable_open_during_load": False,
    "dom.documentpip.enabled": True,
    "network.captive-portal-service.enabled": False,
    "network.connectivity-service.enabled": False,
    "network.proxy.type": 0,
    "termsofuse.bypassNotification": True,
    "toolkit.startup.max_resumed_crashes": -1,
    "toolkit.telemetry.reportingpolicy.firstRun": False,
}


def firefox(profile):
    profile.mkdir(exist_ok=True)
    (profile / "user.js").write_text("".join(
        f"user_pref({json.dumps(name)}, {json.dumps(value)});\n"
        for name, value in FIREFOX_PREFERENCES.items()))
    return ["firefox-esr", "--no-remote", "--profile", str(profile)]


def chromium(profile):
    return ["chromium", "--no-sandbox", "--test-type", f"--user-data-dir={profile}",
            "--no-first-run", "--no-default-browser-check", "--disable-gpu",
            "--disable-dev-shm-usage", "--disable-background-networking", "--disable-sync",
            "--disable-component-update", "--disable-popup-blocking", "--no-proxy-server",
            "--password-store=basic"]


BROWSERS = {"firefox": firefox, "chromium": chromium}
NAMES = {"firefox": "Firefox", "chromium": "Chromium"}


class Browser:
    """A running browser with one tab, which the tests control through its page."""

    def __init__(self, desktop, site, name, profile=""):
        self.site = site
        self.kind = name
        path = f"/start/{name}{profile}"
        self.page = site.add(path, "Start")
        self.process = desktop.start(
            [*BROWSERS[name](desktop.home / (name + profile)), site.address(path)],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.page.wait_until_shown()

    def show(self, path, *arguments, **options):
        """Opens a page made of the arguments of Page; returns it when it is shown."""
        self.page = self._direct("go", path, arguments, options)
        return self.page

    def open_tab(self, path, *arguments, **options):
        """The same in a new foreground tab."""
        behind = self.page
        page = self._direct("open", path, arguments, options)
        behind.wait_until_hidden()
        return page

    def _direct(self, command, path, arguments, options):
        page = self.site.add(path, *arguments, **options)
        self.page.tell(command, path)
        page.wait_until_shown()
        return page
