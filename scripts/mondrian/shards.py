#!/usr/bin/env python3
"""Runs a COMMAND over PostgreSQL servers on this machine that hold what `qel cube export --shards` wrote.

Every shard and the coordinator is a server of its own on a loopback port. The command finds the coordinator in QEL_JDBC
and QEL_USER, which serve.py reads, and the ports of all servers in QEL_PORTS: the coordinator's, then those of the
shards. The folders of their data, QEL_DATA, and the lines of QEL_OPTIONS have the same order; pg_ctl stops the server
of a folder and starts it with its options.

  scripts/mondrian/shards.py served -- scripts/mondrian/serve.py served -- bash
"""
import argparse
import contextlib
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile

PROGRAMS = max(pathlib.Path("/usr/lib/postgresql").glob("*/bin"), default=None)
USER = "cubes"


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


class Postgres:
    """A server in a folder. It does not run as the administrator, and trusts everybody on this machine."""

    def __init__(self, folder, memory):
        self.folder, self.port = folder, free_port()
        self.as_user = ["runuser", "-u", "postgres", "--"] if os.geteuid() == 0 else []
        self.options = (f"-F -k {folder.parent} -p {self.port} -c listen_addresses=127.0.0.1 -c shared_buffers={memory} "
                        "-c jit=off -c max_wal_size=4GB")

    def make(self):
        self.run("initdb", "-D", self.folder, "-U", USER, "-A", "trust", "--no-sync", "-E", "UTF8", "--locale=C")

    def run(self, program, *arguments):
        subprocess.run([*self.as_user, PROGRAMS / program, *arguments], check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, cwd=self.folder.parent, timeout=600)

    def start(self):
        self.run("pg_ctl", "-D", self.folder, "-w", "-l", f"{self.folder}.log", "-o", self.options, "start")

    def stop(self):
        with contextlib.suppress(subprocess.CalledProcessError):
            self.run("pg_ctl", "-D", self.folder, "-m", "immediate", "stop")

    def load(self, *inputs):
        """Starts a client that runs SQL files and texts in one transaction each."""
        parts = [part for text in inputs for part in (("-f", text) if isinstance(text, pathlib.Path) else ("-c", text))]
        return subprocess.Popen([PROGRAMS / "psql", "-X", "-q", "-1", "-h", "127.0.0.1", "-p", str(self.port), "-U", USER,
                                 "-d", "postgres", "-v", "ON_ERROR_STOP=1", *parts], stdout=subprocess.DEVNULL)


def connect(ports):
    """What the coordinator needs before coordinator.sql; docs/servers.md explains the options."""
    text = "CREATE EXTENSION postgres_fdw;"
    for number, port in enumerate(ports, 1):
        text += (f"CREATE SERVER shard{number} FOREIGN DATA WRAPPER postgres_fdw OPTIONS (host '127.0.0.1', port '{port}', "
                 "dbname 'postgres', use_remote_estimate 'true', connect_timeout '10');"
                 f"CREATE USER MAPPING FOR {USER} SERVER shard{number} OPTIONS (user '{USER}', password_required 'false');")
    return text


def await_all(clients):
    if any([client.wait() for client in clients]):
        sys.exit("shards.py: the servers were not filled")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=lambda text: pathlib.Path(text).resolve(), help="what qel cube export wrote")
    parser.add_argument("--memory", default="128MB", help="for the buffers of each server (default: 128MB)")
    parser.add_argument("command", nargs=argparse.REMAINDER, metavar="-- COMMAND")
    options = parser.parse_args()
    command = options.command[1:] if options.command[:1] == ["--"] else options.command
    scripts = sorted(options.folder.glob("shard*.sql"), key=lambda path: int(path.stem[5:]))
    if not scripts or not command or not PROGRAMS:
        parser.error("it needs shards in the folder, a COMMAND, and PostgreSQL")
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    with contextlib.ExitStack() as ending:
        home = pathlib.Path(ending.enter_context(tempfile.TemporaryDirectory(prefix="qel-shards-", dir="/tmp")))
        if os.geteuid() == 0:
            shutil.chown(home, "postgres")
        servers = [Postgres(home / f"data{number}", options.memory) for number in range(len(scripts) + 1)]
        servers[0].make()
        for server in servers[1:]:
            subprocess.run([*server.as_user, "cp", "-r", servers[0].folder, server.folder], check=True)
        for server in servers:
            ending.callback(server.stop)
            server.start()
        coordinator, *shards = servers
        await_all([shard.load(script) for shard, script in zip(shards, scripts)])
        await_all([coordinator.load(connect([shard.port for shard in shards]), options.folder / "coordinator.sql")])
        environment = {"QEL_JDBC": f"jdbc:postgresql://127.0.0.1:{coordinator.port}/postgres", "QEL_USER": USER,
                       "QEL_PORTS": " ".join(str(server.port) for server in servers),
                       "QEL_DATA": " ".join(str(server.folder) for server in servers),
                       "QEL_OPTIONS": "\n".join(server.options for server in servers)}
        return subprocess.run(command, env={**os.environ, **environment}).returncode


if __name__ == "__main__":
    sys.exit(main())
