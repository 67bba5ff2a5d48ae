"""A page about a demonstration: each step with its screenshot."""

import html

PAGE = """<!DOCTYPE html>
<html lang="en"><meta charset="utf-8"><meta name="viewport" content="width=device-width">
<title>Quorva at work</title>
<style>
:root {{ color-scheme: light dark; --ink: #1d2430; --soft: #5a6778; --paper: #f4f6f9;
         --card: #fff; --line: #d9e0e8; --good: #1c7c54; --bad: #b3261e }}
@media (prefers-color-scheme: dark) {{
  :root {{ --ink: #e8edf3; --soft: #9fadbd; --paper: #14181e; --card: #1d232b; --line: #313a45;
           --good: #5fd3a0; --bad: #ff8a80 }} }}
body {{ margin: 0; background: var(--paper); color: var(--ink);
        font: 17px/1.55 system-ui, "DejaVu Sans", sans-serif }}
main {{ max-width: 1080px; margin: auto; padding: 48px 24px }}
h1 {{ font-size: 34px; margin: 0 }}
header p {{ color: var(--soft); margin: 6px 0 0 }}
.verdict {{ font-weight: 600; color: var(--good) }}
.verdict.failed {{ color: var(--bad) }}
section {{ background: var(--card); border: 1px solid var(--line); border-radius: 14px;
           margin: 32px 0; padding: 26px 28px }}
h2 {{ margin: 0 0 6px; font-size: 22px }}
h2 span {{ display: inline-block; min-width: 34px; color: var(--soft) }}
section > p {{ margin: 0 0 12px; color: var(--soft) }}
ul {{ margin: 0 0 18px; padding-left: 22px }}
li::marker {{ content: "✓  "; color: var(--good) }}
li.failed::marker {{ content: "✗  "; color: var(--bad) }}
img {{ display: block; width: 100%; border-radius: 10px; border: 1px solid var(--line) }}
</style>
<main><header><h1>Quorva at work</h1>
<p>A private desktop session, a real browser, real desktop services. Recorded {date}.</p>
<p class="verdict {outcome}">{verdict}</p></header>
{steps}
</main></html>
"""
STEP = """<section><h2><span>{number}</span>{title}</h2><p>{about}</p>
<ul>{seen}</ul>{picture}</section>
"""


def item(text, kind=""):
    return f'<li class="{kind}">{html.escape(text)}</li>'


class Story:
    """The steps so far. The page is written after each step, so that it exists after a failure."""

    def __init__(self, folder, date):
        self.folder = folder
        self.date = date
        self.steps = []
        folder.mkdir(parents=True, exist_ok=True)
        for old in folder.glob("*.png"):
            old.unlink()

    def picture(self, name):
        return self.folder / f"{len(self.steps) + 1}-{name}.png"

    def add(self, title, about, seen, picture, failure=None):
        items = [item(text) for text in seen] + ([item(failure, "failed")] if failure else [])
        image = (f'<a href="{picture.name}"><img src="{picture.name}" alt="{html.escape(title)}"></a>'
                 if picture.exists() else "")
        self.steps.append(STEP.format(number=len(self.steps) + 1, title=html.escape(title),
                                      about=html.escape(about), seen="".join(items), picture=image))
        verdict = failure or f"{len(self.steps)} steps, each as it should be."
        (self.folder / "index.html").write_text(PAGE.format(
            date=self.date, outcome="failed" if failure else "", verdict=html.escape(verdict),
            steps="".join(self.steps)))
