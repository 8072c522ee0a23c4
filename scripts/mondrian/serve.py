#!/usr/bin/env python3
"""Starts a Mondrian server on this machine over the folder that `qel cube export` wrote.

With a COMMAND it runs that, with the server's address in QEL_SERVER, stops the server and ends as the command did;
without one it prints the address and serves until it is interrupted. Every cube of the folder is a catalog of the
cube's name. Rows are loaded into a database in memory unless --jdbc names one that holds them.
"""
import argparse
import ctypes
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import threading
import xml.etree.ElementTree as ElementTree
from xml.sax.saxutils import escape

HERE = pathlib.Path(__file__).resolve().parent
JARS = """mondrian olap4j olap4j-xmla commons-dbcp commons-pool commons-math commons-vfs2 commons-collections3
    commons-logging commons-io eigenbase-properties eigenbase-resgen eigenbase-xom java-cup-0.11b-runtime
    java-cup-0.11b xercesImpl xml-apis log4j-1.2 servlet-api hsqldb postgresql jetty9-server jetty9-servlet
    jetty9-http jetty9-io jetty9-util jetty9-util-ajax jetty9-security jetty9-xml""".split()
IN_MEMORY = "jdbc:hsqldb:mem:cubes"
DRIVERS = {"hsqldb": "org.hsqldb.jdbc.JDBCDriver", "postgresql": "org.postgresql.Driver"}
START_SECONDS = 180


def catalogs(folder):
    """The name of every cube of the export, and its schema file."""
    found = {}
    for path in sorted(folder.glob("*.xml")):
        schema = ElementTree.parse(path).getroot()
        if schema.tag == "Schema":
            found[schema.get("name")] = path
    if not found:
        sys.exit(f"serve.py: no schema in {folder}; write one with: qel cube export FILE --schema mondrian --sql {folder}")
    return found


def data_sources(folder, jdbc, user, password):
    driver = DRIVERS.get(jdbc.split(":")[1])
    info = f"Provider=mondrian;Jdbc={jdbc};JdbcUser={user};JdbcPassword={password}"
    info += f";JdbcDrivers={driver}" if driver else ""
    listed = "".join(f'<Catalog name="{escape(name, {chr(34): "&quot;"})}"><Definition>{escape(path.as_uri())}</Definition></Catalog>'
                     for name, path in catalogs(folder).items())
    return f"""<?xml version="1.0" encoding="UTF-8"?>
<DataSources><DataSource>
  <DataSourceName>Provider=Mondrian;DataSource=Cubes;</DataSourceName>
  <DataSourceDescription>Cubes exported from a cube file</DataSourceDescription>
  <URL>http://127.0.0.1/xmla</URL>
  <DataSourceInfo>{escape(info)}</DataSourceInfo>
  <ProviderName>Mondrian</ProviderName><ProviderType>MDP</ProviderType>
  <AuthenticationMode>Unauthenticated</AuthenticationMode>
  <Catalogs>{listed}</Catalogs>
</DataSource></DataSources>
"""


def end_with_parent():
    """Called in the server's process before it starts: it ends when this program is gone, however that ended."""
    pr_set_pdeathsig = 1
    ctypes.CDLL(None).prctl(pr_set_pdeathsig, signal.SIGKILL)
    os.setpgrp()  # Ctrl+C reaches this program alone, which then stops the server


class Server:
    def __init__(self, options, work):
        sources = work / "datasources.xml"
        sources.write_text(data_sources(options.folder, options.jdbc, options.user, options.password), encoding="utf-8")
        spread = "true" if any((options.folder).glob("shard*.sql")) else "false"
        jars = [f"/usr/share/java/{jar}.jar" for jar in JARS]
        steps = ([HERE / "load-hsql.xml"] if options.jdbc == IN_MEMORY else []) + [HERE / "jetty.xml"]
        command = ["java", f"-Xmx{options.memory}", "-cp", ":".join(filter(os.path.exists, jars)),
                   f"-Dlog4j.configuration={(HERE / 'log4j.properties').as_uri()}",
                   # Hierarchies are addressed as [Dimension].[Hierarchy].
                   "-Dmondrian.olap.SsasCompatibleNaming=true",
                   # A fact may belong to several members of a level; adding those up would count it several times.
                   "-Dmondrian.rolap.EnableInMemoryRollup=false",
                   # Otherwise NON EMPTY on an axis takes members without facts out of sets in formulas too.
                   "-Dmondrian.native.nonempty.enable=false",
                   # The SQL of these fails for some sets.
                   "-Dmondrian.native.filter.enable=false", "-Dmondrian.native.topcount.enable=false",
                   "-Dmondrian.native.crossjoin.enable=false",
                   # The views of a star that is spread over shards are aggregate tables.
                   f"-Dmondrian.rolap.aggregates.Use={spread}", f"-Dmondrian.rolap.aggregates.Read={spread}",
                   f"-Dxmla.port={options.port}", f"-Dxmla.sources={sources.as_uri()}", f"-Dsql.folder={options.folder}",
                   "org.eclipse.jetty.xml.XmlConfiguration", *map(str, steps)]
        self.log = []
        self.address = None
        self.answered = threading.Event()
        self.process = subprocess.Popen(command, cwd=work, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.PIPE, text=True, errors="replace",
                                        preexec_fn=end_with_parent)
        threading.Thread(target=self.read_log, daemon=True).start()

    def read_log(self):
        for line in self.process.stderr:
            self.log = (self.log + [line])[-200:]
            started = re.search(r"Started ServerConnector@.*\{127\.0\.0\.1:(\d+)\}", line)
            if started:
                self.address = f"http://127.0.0.1:{started.group(1)}/xmla"
                self.answered.set()
        self.answered.set()

    def wait(self):
        self.answered.wait(START_SECONDS)
        if not self.address:
            self.stop()
            sys.exit("serve.py: the server did not start:\n" + "".join(line for line in self.log if not line.startswith("\t")))

    def stop(self):
        self.process.kill()
        self.process.wait()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=lambda text: pathlib.Path(text).resolve(), help="what qel cube export wrote")
    parser.add_argument("--port", type=int, default=0, help="(default: a free one)")
    parser.add_argument("--jdbc", default=os.environ.get("QEL_JDBC", IN_MEMORY),
                        help="the database, such as jdbc:postgresql://127.0.0.1/cubes (default: QEL_JDBC, or one in memory)")
    parser.add_argument("--user", default=os.environ.get("QEL_USER", "SA"))
    parser.add_argument("--password", default="")
    parser.add_argument("--memory", default="512m", help="for the server (default: 512m)")
    parser.add_argument("command", nargs=argparse.REMAINDER, metavar="-- COMMAND")
    options = parser.parse_args()
    command = options.command[1:] if options.command[:1] == ["--"] else options.command
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    with tempfile.TemporaryDirectory(prefix="qel-mondrian-") as work:
        server = Server(options, pathlib.Path(work))
        try:
            server.wait()
            if command:
                return subprocess.run(command, env={**os.environ, "QEL_SERVER": server.address}).returncode
            print(server.address, flush=True)
            return server.process.wait()
        except KeyboardInterrupt:
            return 130
        finally:
            server.stop()


if __name__ == "__main__":
    sys.exit(main())
