"""Writes the documentation as pages for a browser: html_docs.py FOLDER PAGE.md..., with paths below the repository.

Links lead to the pages; a link to what is not in FOLDER becomes plain text.
"""
import pathlib
import re
import sys

import markdown

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>{title}</title><style>
body {{ font-family: sans-serif; line-height: 1.5; max-width: 50em; margin: 2em auto; padding: 0 1em; }}
table {{ border-collapse: collapse; }} td, th {{ border: 1px solid #ccc; padding: 0.3em 0.6em; vertical-align: top; }}
pre {{ background: #f4f4f4; padding: 0.8em; overflow-x: auto; }} img {{ max-width: 100%; }}
</style></head><body>
{body}
</body></html>
"""


def linked(page, folder):
    def replace(match):
        target, hash_sign, place = match[1].partition("#")
        if re.match(r"[a-z]+:", target) or not target:
            return match[0]
        shown = re.sub(r"\.md$", ".html", target)
        if (folder / page.parent / shown).exists() or (target != shown and page.parent / target in PAGES):
            return f'<a href="{shown}{hash_sign}{place}">{match[2]}</a>'
        return match[2]
    return replace


FOLDER, *names = sys.argv[1:]
FOLDER, PAGES = pathlib.Path(FOLDER), [pathlib.Path(name) for name in names]
for page in PAGES:
    text = (ROOT / page).read_text(encoding="utf-8")
    text = text.replace('<div dir=', '<div markdown="1" dir=')  # or what is inside stays as it is
    body = markdown.markdown(text, extensions=["tables", "fenced_code", "toc", "sane_lists", "md_in_html"])
    body = re.sub(r'<a href="([^"]*)">(.*?)</a>', linked(page, FOLDER), body, flags=re.DOTALL)
    title = re.search(r"^# (.*)", text, re.MULTILINE)[1]
    target = FOLDER / page.with_suffix(".html")
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_text(PAGE.format(title=title, body=body), encoding="utf-8")
