#!/usr/bin/env python3
"""Runs qel against failing servers: every failure is a clear error, in bounded time and memory."""
import base64
import http.server
import os
import pathlib
import re
import resource
import socket
import ssl
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import unittest.mock
import zlib

QEL = ""
WINDOWS = "QEL_WINDOWS_PROGRAM" in os.environ  # under Wine
HERE = pathlib.Path(__file__).resolve().parent
REQUEST_SECONDS = 8
ENVELOPE = ('<?xml version="1.0" encoding="%s"?>\n<SOAP-ENV:Envelope xmlns:SOAP-ENV="http://schemas.xmlsoap.org/soap/'
            'envelope/" xmlns:xsi="x" xmlns:xsd="y"><SOAP-ENV:Body>%s</SOAP-ENV:Body></SOAP-ENV:Envelope>')
CATALOGS = ENVELOPE % ("UTF-8", "<r><root><row><CATALOG_NAME>Books &amp; more</CATALOG_NAME></row>"
                                "<row><CATALOG_NAME>Other</CATALOG_NAME></row></root></r>")
FAULT = ("<SOAP-ENV:Fault><faultcode>S.1</faultcode><faultstring>Execute failed</faultstring><detail><XA:error>"
         "<code>9</code><desc>The caf\u00e9 is closed</desc></XA:error></detail></SOAP-ENV:Fault>")
MEMBER = "<Member><UName>[A].[b]</UName><Caption>b</Caption><LName>[A].[L]</LName><LNum>1</LNum></Member>"
AXES = ('<Axes><Axis name="Axis0"><Tuples><Tuple>' + MEMBER + '</Tuple></Tuples></Axis><Axis name="Axis1"><Tuples>'
        '<Tuple>' + MEMBER + "</Tuple></Tuples></Axis></Axes>")


def cellset(cells, axes=AXES):
    return ENVELOPE % ("UTF-8", f"<r><root>{axes}<CellData>{cells}</CellData></root></r>")


def packed_blanks(megabytes):
    """Blanks, compressed piece by piece so that they never fill this program's memory."""
    packer = zlib.compressobj(wbits=31)
    blanks = b" " * (1 << 20)
    return b"".join(packer.compress(blanks) for _ in range(megabytes)) + packer.flush()


def cell(value, ordinal="0", kind="xsd:double"):
    return f'<Cell CellOrdinal="{ordinal}"><Value xsi:type="{kind}">{value}</Value></Cell>'


# Answers to a statement: status, body, headers. Slow answers are methods of the handler.
EXECUTES = {
    "good": (200, cellset(cell("4.25"))),
    "empty-cell": (200, cellset("")),
    "fault": (200, (ENVELOPE % ("ISO-8859-1", FAULT)).encode("latin-1")),
    "fault-500": (500, ENVELOPE % ("UTF-8", FAULT)),
    "messages": (200, ENVELOPE % ("UTF-8", '<r><root><Exception/><Messages><Error ErrorCode="1" Description="No such '
                                           'measure &lt;x&gt;"/></Messages></root></r>')),
    "error-cell": (200, cellset('<Cell CellOrdinal="0"><Value><Error><ErrorCode>7</ErrorCode><Description>Divided by '
                                "zero</Description></Error></Value></Cell>")),
    "status-401": (401, "<html>no</html>"),
    "status-403": (403, "no"),
    "status-404": (404, "<!DOCTYPE html><html>"),
    "status-500": (500, "out of order"),
    "html": (200, "<html><body>Log in first</body></html>"),
    "text": (200, "Welcome!"),
    "empty": (200, ""),
    "cut-xml": (200, cellset(cell("4.25"))[:-60]),
    "entities": (200, '<?xml version="1.0"?><!DOCTYPE a [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;&a;&a;">'
                      "<!ENTITY c '&b;&b;&b;&b;&b;&b;'>]><a>&c;</a>"),
    "nested": (200, "<Envelope>" + "<a>" * 200_000),
    "long-text": (200, ENVELOPE % ("UTF-8", "<a>" + "x" * 2_000_000 + "</a>")),
    "number": (200, cellset(cell("12,5"))),
    "ordinal": (200, cellset(cell("1", ordinal="-3"))),
    "axes": (200, cellset("", axes='<Axes><Axis name="Axis7"/></Axes>')),
    "encoding": (200, ENVELOPE % ("KOI-17", "<a/>")),
    "packed-bomb": (200, packed_blanks(200), {"Content-Encoding": "gzip"}),
}

FAILURES = [
    ("a fault's own words, in the letters of its encoding", "fault", "Execute failed: The caf\u00e9 is closed"),
    ("a fault with status 500", "fault-500", "Execute failed: The caf\u00e9 is closed"),
    ("an error that is no fault", "messages", "No such measure <x>"),
    ("an error in a cell", "error-cell", "Divided by zero"),
    ("credentials wanted", "status-401", "requires a user and a password"),
    ("access denied", "status-403", "denies access"),
    ("nothing there", "status-404", "nothing at that path"),
    ("a broken server", "status-500", "HTTP status 500"),
    ("a page instead of an answer", "html", "begins with <html>"),
    ("a text instead of an answer", "text", "is not XML"),
    ("an empty answer", "empty", "ended before it was complete"),
    ("XML that is cut", "cut-xml", "ended before it was complete"),
    ("a body that is cut", "cut-body", "cannot be read"),
    ("entities that expand", "entities", "declares a document type"),
    ("elements in elements", "nested", "nested too deeply"),
    ("a text without end", "long-text", "too long"),
    ("an answer without end", "endless", "AnswerMegabytes"),
    ("an answer that unpacks to very much", "packed-bomb", "is not XML" if WINDOWS else "AnswerMegabytes"),
    ("a malformed number", "number", "'12,5' as a number"),
    ("a malformed cell ordinal", "ordinal", "'-3' as a cell's number"),
    ("axes out of order", "axes", "axis 'Axis7'"),
    ("an unknown encoding", "encoding", "is not XML"),
    ("no answer at all", "silent", "did not answer in time"),
    ("a byte now and then", "drip", "did not answer in time"),
    ("no HTTP", "garbage", "cannot be"),
    ("a redirection to another host", "elsewhere", "it is another host"),
    ("a redirection to another port", "other-port", "it has another scheme or port"),
    ("redirections in a circle", "circle", "redirects in a circle"),
    ("a redirection to nowhere", "nowhere", "redirects to nowhere"),
]


# A cube for formulas: OBS 1, the months of 2024, and accounts whose value in month m is account + m / 4.
KNOWN = ("4000", "5000", "6000", "7000")
ACCOUNT, MONTH = "[Accounts].[AccountCodes].[All].[%s]", "[Date].[2024].[%s]"


def rows(*fields):
    return ENVELOPE % ("UTF-8", "<r><root>" + "".join(
        "<row>" + "".join(f"<{name}>{value}</{name}>" for name, value in row.items()) + "</row>" for row in fields)
        + "</root></r>")


def hierarchy(name, *levels):
    """The rows of a dimension of one hierarchy, of that hierarchy, and of its levels."""
    of = {"DIMENSION_UNIQUE_NAME": f"[{name}]", "HIERARCHY_UNIQUE_NAME": f"[{name}]"}
    return ({"DIMENSION_NAME": name, **of}, {"HIERARCHY_NAME": name, **of},
            [{"LEVEL_NAME": level, "LEVEL_UNIQUE_NAME": f"[{name}].[{level}]", "LEVEL_NUMBER": number, **of}
             for number, level in enumerate(levels)])


ACTX, DATE = hierarchy("ActX", "All", "Name", "Number"), hierarchy("Date", "All", "Year", "Month")
CUBE = {
    "MDSCHEMA_CUBES": rows({"CUBE_NAME": "Other"}),
    "MDSCHEMA_DIMENSIONS": rows(ACTX[0], DATE[0]),
    "MDSCHEMA_HIERARCHIES": rows(ACTX[1], DATE[1]),
    "MDSCHEMA_LEVELS": rows(*ACTX[2], *DATE[2]),
    "[Date].[All]": rows({"MEMBER_NAME": "All", "MEMBER_UNIQUE_NAME": "[Date].[All]"}),
    "[Date].[Year]": rows({"MEMBER_NAME": "2024", "MEMBER_UNIQUE_NAME": "[Date].[2024]"}),
    "[Date].[Month]": rows(*({"MEMBER_NAME": month, "MEMBER_UNIQUE_NAME": MONTH % month, "MEMBER_ORDINAL": month,
                              "PARENT_UNIQUE_NAME": "[Date].[2024]"} for month in (1, 2, 3))),
}


class Grid:
    """A grid's columns and rows as they were asked for, and the numbers of its cells; a lie changes them."""
    def __init__(self, statement):
        self.columns = re.findall(r"\[Date\]\.\[2024\]\.\[(\d+)\]", statement)
        self.rows = re.findall(r"\[AccountCodes\]\.\[All\]\.\[(\d+)\]", statement)
        self.account, self.month, self.shift = ACCOUNT, MONTH, 0
        self.repeats = 1

    def answer(self):
        def axis(number, names):
            return f'<Axis name="Axis{number}"><Tuples>' + "".join(
                f"<Tuple><Member><UName>{name}</UName></Member></Tuple>" for name in names) + "</Tuples></Axis>"
        cells = [cell(float(row) + float(column) / 4, str(self.shift + i * len(self.columns) + j))
                 for i, row in enumerate(self.rows) for j, column in enumerate(self.columns) if row in KNOWN]
        return cellset("".join(cells * self.repeats), "<Axes>" + axis(0, [self.month % column for column in self.columns])
                       + axis(1, [self.account % row for row in self.rows]) + "</Axes>")


def change(**attributes):
    return lambda grid: vars(grid).update({name: value(getattr(grid, name)) for name, value in attributes.items()})


# What a server may answer to a grid; alone, it answers every formula as it should.
LIES = {
    "the truth": change(),
    "unknown rows left out": change(rows=lambda rows: [row for row in rows if row in KNOWN]),
    "a column left out": change(columns=lambda columns: columns[1:]),
    "all rows left out": change(rows=lambda rows: []),
    "a row too many": change(rows=lambda rows: ["7000", *rows]),
    "a column too many": change(columns=lambda columns: [*columns, "3"]),
    "rows in another order": change(rows=lambda rows: rows[::-1]),
    "columns in another order": change(columns=lambda columns: columns[::-1]),
    "a row twice": change(rows=lambda rows: [*rows, rows[0]]),
    "a row in place of another": change(rows=lambda rows: [rows[0], *rows[:-1]]),
    "a column in place of another": change(columns=lambda columns: [columns[0], *columns[:-1]]),
    "cells beyond the last": change(shift=lambda _: 1),
    "cells twice": change(repeats=lambda _: 2),
    "members of another cube": change(account=lambda _: "[Customers].[Codes].[All].[%s]"),
    "columns of another dimension": change(month=lambda _: "[Delivery].[2024].[%s]"),
    "members without names": change(account=lambda _: "<!-- %s -->"),
}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version, disable_nagle_algorithm = "HTTP/1.1", True  # which delays answers on open connections

    def log_message(self, *_):
        pass

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"])).decode()
        self.server.seen.append((self.path, self.headers.get("Authorization"), body))
        name = self.path.strip("/")
        if name == "moved":
            self.answer(307, "", {"Location": "/good"})
        elif "Discover" in body and self.server.silent_discovers:
            self.silent()
        elif "Discover" in body:
            asked = [answer for what, answer in CUBE.items() if f">{what}<" in body]
            self.answer(200, asked[-1] if asked else CATALOGS)
        elif name == "grids":
            grid = Grid(body)
            if " ON ROWS FROM " in body:
                self.server.lie(grid)
            self.answer(200, grid.answer())
        elif "DRILLTHROUGH" in body:
            self.answer(200, self.server.lines)
        elif name in EXECUTES:
            self.answer(*EXECUTES[name])
        else:
            getattr(self, name.replace("-", "_"))()

    def answer(self, status, body, headers={}):
        body = body.encode() if isinstance(body, str) else body
        self.send_response(status)
        for key, value in {"Content-Type": "text/xml", "Content-Length": len(body), **headers}.items():
            self.send_header(key, str(value))
        self.end_headers()
        try:
            self.wfile.write(body)
        except OSError:
            pass  # the client has had enough

    def cut_body(self):
        self.send_response(200)
        self.send_header("Content-Length", "100000")
        self.end_headers()
        self.wfile.write(cellset(cell("1")).encode())
        self.close_connection = True

    def endless(self):
        self.send_response(200)
        self.end_headers()
        self.send_pieces((ENVELOPE.split("%s</SOAP")[0] % "UTF-8").encode(), b"<row><A>1</A></row>" * 1000, 0)

    def drip(self):
        self.send_response(200)
        self.end_headers()
        self.send_pieces(b"<Envelope>", b" ", 0.1)

    def send_pieces(self, first, piece, pause):
        try:
            self.wfile.write(first)
            while not self.server.ending.wait(pause):
                self.wfile.write(piece)
        except OSError:
            pass
        self.close_connection = True

    def silent(self):
        self.server.ending.wait()
        self.close_connection = True

    def garbage(self):
        self.wfile.write(b"\x00\x01SSH-2.0-nothing\r\n" * 10)
        self.close_connection = True

    def elsewhere(self):
        self.answer(307, "", {"Location": f"http://localhost:{self.server.server_port}/good"})

    def other_port(self):
        self.answer(307, "", {"Location": "http://127.0.0.1:1/xmla"})

    def circle(self):
        self.answer(307, "", {"Location": "/circle"})

    def nowhere(self):
        self.answer(302, "")


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self):
        super().__init__(("127.0.0.1", 0), Handler)
        self.seen, self.ending, self.silent_discovers, self.connections = [], threading.Event(), False, 0
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def process_request(self, *request):
        self.connections += 1
        super().process_request(*request)

    def handle_error(self, *_):
        pass  # clients that hang up are what is tested

    def stop(self):
        self.ending.set()
        self.shutdown()
        self.server_close()


class HostileServer(unittest.TestCase):
    def setUp(self):
        self.server = Server()
        self.addCleanup(self.server.stop)
        self.folder = tempfile.TemporaryDirectory(prefix="qel-hostile-")
        self.addCleanup(self.folder.cleanup)
        self.home = pathlib.Path(self.folder.name)
        self.settings = self.home / "qel" / "servers.ini"
        self.settings.parent.mkdir()
        self.limits = f"[Limits]\nConnectSeconds=8\nRequestSeconds={REQUEST_SECONDS}\nAnswerMegabytes=4\n"
        self.settings.write_text(self.limits)

    def address(self, path, credentials="", scheme="http", port=None):
        return f"{scheme}://{credentials}127.0.0.1:{port or self.server.server_port}/{path}"

    def origin(self, scheme="http"):
        return f"{scheme}://127.0.0.1:{self.server.server_port}"

    def qel(self, *arguments, text=""):
        folder = f"Z:{self.home}".replace("/", "\\") if WINDOWS else str(self.home)
        environment = {**os.environ, "XDG_CONFIG_HOME": folder, **({} if WINDOWS else {"HOME": folder})}
        done = subprocess.run([QEL, *arguments], input=text.encode(), capture_output=True, env=environment, timeout=600)
        return done.returncode, done.stdout.decode(), done.stderr.decode()

    def mdx(self, address, catalog="Books & more"):
        return self.qel("mdx", address, catalog, "SELECT {[A]} ON COLUMNS FROM x")

    def value_formula(self, path, account="4000", month=1, function="QelF1"):
        return (f'={function}("{self.address(path)}","Other",{{"OBS"}},{{"1"}},{{"All"}},{{"All"}},{{"All"}},"All","All",'
                f'"{account}","Amount","All","All","All","All","All","01/0{month}/2024","28/0{month}/2024")')

    def test_a_server_that_answers(self):
        for path, shown in (("good", "4.25"), ("moved", "4.25")):
            status, output, errors = self.mdx(self.address(path))
            self.assertEqual((status, errors), (0, ""), path)
            self.assertIn(shown, output, path)
        status, output, errors = self.mdx(self.address("empty-cell"), catalog="books & MORE")
        self.assertEqual((status, errors), (0, ""))

    def test_the_lines_of_a_server(self):
        schema = ('<xsd:schema xmlns:xsd="http://www.w3.org/2001/XMLSchema"><xsd:complexType name="row"><xsd:sequence>'
                  '<xsd:element name="Account" sql:field="[Accounts].[Account]" type="xsd:string"/>'
                  '<xsd:element name="Amount" sql:field="[Measures].[Amount]" type="%s"/></xsd:sequence></xsd:complexType>'
                  "</xsd:schema>").replace("sql:field", 'xmlns:sql="urn:sql" sql:field')
        lines = rows({"Account": "4000", "Amount": "4.5"}, {"Account": "4000", "Amount": "-0.25"})
        wrong = rows({"Account": "4000", "Amount": "4,25"})
        cases = [("xsd:double", lines, 0, "2 lines, sum 4.25"), ("xsd:double", wrong, 1, "'4,25' as a number"),
                 ("xsd:double", rows({"Account": "4000", "Amount": "4"}), 1, "the lines add up to 4, and"),
                 (None, rows({"Account": "4000"}), 0, "1 line, without their amounts; the formula's value is 4.25")]
        for kind, answer, ended, words in cases:
            self.server.lines = answer.replace("<root>", "<root>" + schema % kind) if kind else answer
            status, output, errors = self.qel("lines", "--allow-server", self.origin(), self.value_formula("good"))
            with self.subTest(words):
                self.assertIn(words, output + errors)
                self.assertEqual(status, ended)

    def test_every_failure_is_reported_in_time(self):
        for what, path, words in FAILURES:
            with self.subTest(what):
                started = time.monotonic()
                status, output, errors = self.mdx(self.address(path))
                self.assertEqual((status, output), (1, ""), errors)
                self.assertIn(words, errors)
                # Generous, because the machine may be busy. Without the limit the request would never end.
                self.assertLess(time.monotonic() - started, REQUEST_SECONDS + 60)
        largest = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
        self.assertLess(largest, 150 * 1024, "kilobytes of memory")

    def test_a_sheet_over_a_silent_server_does_not_wait_for_every_cell(self):
        self.server.silent_discovers = True
        cells = [self.value_formula("silent", account, function="QelFuncDemo") for account in range(300)]
        _, output, _ = self.qel("eval", "--allow-server", self.origin(), text="\n".join(cells))
        values = output.split("\n")[:-1]
        self.assertEqual(values, ["#err -2147217791"] * 300)
        self.assertLess(len(self.server.seen), 20, "every cell asked the silent server")

    def test_a_grid_that_is_not_what_was_asked_for_changes_no_value(self):
        asked = [("4000", 1), ("9999", 1), ("5000", 1), ("6000", 1), ("4000", 2), ("9999", 2), ("5000", 2), ("6000", 2)]
        formulas = [self.value_formula("grids", account, month) for account, month in asked]
        right = [f"{int(account) + month / 4:g}" if account in KNOWN else "0" for account, month in asked]
        for what, lie in LIES.items():
            with self.subTest(what):
                self.server.lie = lie
                self.server.seen.clear()
                status, output, errors = self.qel("eval", "--allow-server", self.origin(), *formulas)
                self.assertEqual((output.split(), status), (right, 0), errors)
                statements = [body for _, _, body in self.server.seen if "Execute" in body]
                self.assertEqual(len(statements) == 1, what == "the truth", "a grid that is right is enough")

    def test_a_cube_of_too_many_parts_is_refused(self):
        for part, parts in (("DIMENSION", "DIMENSIONS"), ("HIERARCHY", "HIERARCHIES"), ("LEVEL", "LEVELS")):
            many = {f"MDSCHEMA_{parts}": rows(*[{f"{part}_NAME": "x"}] * 10_001)}
            with self.subTest(part), unittest.mock.patch.dict(CUBE, many):
                explained = self.qel("explain", "--allow-server", self.origin(), self.value_formula("good"))[1]
                self.assertIn("a cube of 10001 dimensions, hierarchies or levels", explained)

    def test_a_description_that_lacks_a_name_or_is_in_disorder_is_refused(self):
        year, months = "[Date].[Year]", "[Date].[Month]"
        cases = [("MDSCHEMA_DIMENSIONS", "<DIMENSION_NAME>Date</DIMENSION_NAME>", "", "a row without DIMENSION_NAME"),
                 ("MDSCHEMA_HIERARCHIES", "[ActX]", "", "a row without DIMENSION_UNIQUE_NAME"),
                 ("MDSCHEMA_LEVELS", "[Date].[Month]", "", "a row without LEVEL_UNIQUE_NAME"),
                 (year, "[Date].[2024]", "", "a row without MEMBER_UNIQUE_NAME"),
                 (year, "[Date].[2024]", "[Date].[2023]", "names [Date].[2024] as the parent of [Date].[2024].[1]"),
                 (months, MONTH % 3, MONTH % 2, "lists [Date].[2024].[2] twice"),
                 (months, "ORDINAL>3<", "ORDINAL>0<", "[Date].[2024].[1] is earlier than the member before it")]
        for answer, text, other, words in cases:
            damaged = {answer: CUBE[answer].replace(text, other)}
            with self.subTest(words, answer=answer), unittest.mock.patch.dict(CUBE, damaged):
                explained = self.qel("explain", "--allow-server", self.origin(), self.value_formula("good"))[1]
                self.assertIn(words, explained)

    def test_a_check_of_many_catalogs_asks_for_the_cubes_of_the_first(self):
        many = {"DBSCHEMA_CATALOGS": rows(*({"CATALOG_NAME": f"Books{i}"} for i in range(250)))}
        with unittest.mock.patch.dict(CUBE, many):
            status, output, errors = self.qel("server", "check", self.address("good"))
        self.assertEqual((status, errors), (0, ""))
        self.assertEqual(re.findall(r"^catalog: +(.*)$", output, re.M), [f"Books{i}: Other" for i in range(100)])
        self.assertIn("250 in all, the first 100 listed", output)
        self.assertLess(len(self.server.seen), 110)
        self.assertEqual(self.server.connections, 1)
        self.assertIn("<Catalog>Books7</Catalog>", "".join(body for _, _, body in self.server.seen))

    def test_unknown_catalogs_are_reported_with_the_known_ones(self):
        status, _, errors = self.mdx(self.address("good"), catalog="Boks")
        self.assertEqual(status, 1)
        self.assertIn("no catalog 'Boks'; it has 'Books & more', 'Other'", errors)

    def test_servers_that_cannot_be_reached(self):
        with socket.socket() as closed:
            closed.bind(("127.0.0.1", 0))  # bound, not listening
            cases = [
                ("refused", self.address("good", port=closed.getsockname()[1]), "cannot be reached"),
                ("unknown host", "http://no-such-host.invalid/xmla", "cannot be reached"),
                ("TLS where there is none", self.address("good", scheme="https"), "No trusted connection"),
                ("no port of that number", "http://127.0.0.1:99999/xmla", "address cannot be read"),
            ]
            for what, address, words in cases:
                status, _, errors = self.mdx(address)
                self.assertEqual(status, 1, what)
                self.assertIn(words, errors, what)

    def test_certificates_are_checked(self):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(HERE / "self_signed.pem")
        self.server.socket = context.wrap_socket(self.server.socket, server_side=True)
        status, _, errors = self.mdx(self.address("good", credentials="ann:s3cret@", scheme="https"))
        self.assertEqual(status, 1)
        self.assertIn("No trusted connection", errors)
        self.assertEqual(self.server.seen, [], "something was sent to an untrusted server")

    def test_credentials(self):
        secret = "pa%ss w\u00f6rd"
        sent = "Basic " + base64.b64encode(f"ann:{secret}".encode()).decode()
        host, stored = "127.0.0.1", f"User=ann\nPassword={secret}\n"
        cases = [
            ("none", "", "", "", None),
            ("in the address", "ann:pa%25ss%20w%C3%B6rd@", "", "", sent),
            ("in the settings", "", f"[{self.origin()}]\n{stored}", "", sent),
            ("of another host", "", f"[olap.example]\n{stored}", "", None),
            ("of another port, and of the host's own for TLS", "", f"[http://{host}]\n{stored}[{host}]\n{stored}", "", None),
            ("of another scheme", "", f"[{self.origin('https')}]\n{stored}", "", None),
            ("in the netrc file", "", "", f'machine {host} login ann password "{secret}"\n', None if WINDOWS else sent),
            ("the address before the others", "ann:pa%25ss%20w%C3%B6rd@", f"[{self.origin()}]\nUser=bob\nPassword=x\n",
             f"machine {host} login cid password y\n", sent),
        ]
        for what, credentials, settings, netrc, expected in cases:
            with self.subTest(what):
                self.settings.write_text(self.limits + settings)
                self.settings.chmod(0o600)
                (self.home / ".netrc").write_text(netrc)
                self.server.seen.clear()
                for path in ("good", "status-401"):
                    _, output, errors = self.mdx(self.address(path, credentials=credentials))
                    for text in (output, errors):
                        self.assertNotIn("pa%", text)
                self.assertEqual({authorization for _, authorization, _ in self.server.seen}, {expected})

    def test_a_password_that_others_may_read_is_not_used(self):
        self.settings.write_text(self.limits + f"[{self.origin()}]\nUser=ann\nPassword=s3cret\n")
        self.settings.chmod(0o644)
        status, _, errors = self.mdx(self.address("good"))
        self.assertEqual(status, 1)
        self.assertIn("chmod 600", errors)
        self.assertEqual(self.server.seen, [])

    def test_nothing_is_sent_to_a_server_that_the_user_does_not_know(self):
        formula, origin = self.value_formula("grids"), self.origin()
        allow = ("--allow-server", self.address("any"))
        other = self.origin().replace(f":{self.server.server_port}", ":1")
        cases = [
            ("unknown", "", (), "it is not a known server"),
            ("another port is known", f"[{other}]\nAccess=always\n", (), "it is not a known server"),
            ("another port is allowed", "", ("--allow-server", other), "it is not a known server"),
            ("refused for good", f"[{origin}]\nAccess=never\nUser=ann\n", (), "you refused it"),
            ("an unknown word", f"[{origin}]\nAccess=sometimes\n", (), "it can be 'never' or 'always'"),
            ("known", f"[{origin}]\n", (), None),
            ("allowed for good", f"[{origin.upper()}]\naccess=ALWAYS\n", (), None),
            ("allowed for this call", "", allow, None),
            ("allowed for this call, though refused for good", f"[{origin}]\nAccess=never\n", allow, None),
        ]
        for what, settings, options, reason in cases:
            with self.subTest(what):
                self.settings.write_text(self.limits + settings)
                self.server.seen.clear()
                status, output, errors = self.qel("eval", *options, formula, formula)
                self.assertEqual((status, output), (0, "0\n0\n" if reason else "4000.25\n4000.25\n"), errors)
                self.assertEqual("2 zeros are shown instead of an error" in errors, reason is not None)
                explained = self.qel("explain", *options, formula)[1]
                self.assertIn(reason or "value:           4000.25", explained)
                self.assertEqual(bool(self.server.seen), reason is None, "sent")

    def test_passwords_travel_unencrypted_only_where_the_settings_say_so(self):
        origin = "http://no-such-host.invalid:8080"
        for what, credentials, settings, words in (
                ("in the address", "ann:s3cret@", "", "the password would travel unencrypted"),
                ("in the settings", "", f"[{origin}]\nUser=ann\nPassword=s3cret\n", "the password would travel unencrypted"),
                ("none", "", "", "cannot be reached"),
                ("as the settings say", "", f"[{origin}]\nUser=ann\nPassword=s3cret\nPasswordWithoutTls=yes\n",
                 "cannot be reached")):
            self.settings.write_text(self.limits + settings)
            self.settings.chmod(0o600)
            _, _, errors = self.mdx(origin.replace("//", "//" + credentials) + "/xmla")
            self.assertIn(words, errors, what)

    def test_redirections_do_not_carry_credentials_elsewhere(self):
        self.mdx(self.address("elsewhere", credentials="ann:s3cret@"))
        self.assertNotIn("/good", [path for path, _, _ in self.server.seen])

    def test_invalid_limits(self):
        self.settings.write_text("[Limits]\nRequestSeconds=soon\n")
        status, _, errors = self.mdx(self.address("good"))
        self.assertEqual(status, 1)
        self.assertIn("RequestSeconds in [Limits] is 'soon'", errors)


if __name__ == "__main__":
    QEL = sys.argv.pop(1)
    unittest.main()
