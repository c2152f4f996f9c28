#!/usr/bin/env -S python3 -B
"""Types at nxhost's prompt through a terminal, and sends it signals.  usage: terminal.py NXHOST"""
import faulthandler
import fcntl
import os
import pty
import select
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import termios
import time
from pathlib import Path

SECONDS = 60  # for output that never comes
faulthandler.dump_traceback_later(2 * SECONDS, exit=True)
nxhost = os.path.abspath(sys.argv[1])


class Terminal:
    """nxhost at a terminal of its own."""

    def __init__(self, folder, *arguments):
        environment = os.environ | {"TERM": "dumb", "NXHOST_HISTORY": f"{folder}/history", "LC_ALL": "C"}
        self.seen = b""
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.execve(nxhost, ["nxhost", *arguments], environment)

    def expect(self, text):
        """Waits until `text` has been shown, returns what came before, and looks only behind it from then on."""
        while text.encode() not in self.seen:
            if not select.select([self.terminal], [], [], SECONDS)[0]:
                raise AssertionError(f"{text!r} does not come, only {self.seen!r}")
            try:
                self.seen += os.read(self.terminal, 4096)
            except OSError:
                raise AssertionError(f"ended before {text!r}: {self.seen!r}") from None
        before, _, self.seen = self.seen.partition(text.encode())
        return before.decode(errors="replace")

    def type(self, text):
        os.write(self.terminal, text.encode())

    def enter(self, line, *expected):
        self.expect("> ")
        self.type(line + "\r")
        self.expect("\r\n")
        for text in expected:
            self.expect(text)

    def expect_exit(self, code):
        try:
            while more := os.read(self.terminal, 4096):
                self.seen += more
        except OSError:
            pass  # a terminal ends this way
        status = os.waitpid(self.process, 0)[1]
        os.close(self.terminal)
        assert os.waitstatus_to_exitcode(status) == code, self.seen.decode(errors="replace")


def evaluates(folder):
    terminal = Terminal(folder)
    terminal.enter("1 + 1, 'two'", "2\ttwo\r\n")
    terminal.enter("= 3", "3\r\n")
    terminal.enter("x = 4")
    terminal.enter("for i = 1, 2 do")
    terminal.enter("print('line', i, x)")
    terminal.enter("end", "line\t1\t4\r\nline\t2\t4\r\n")
    terminal.enter("print('ä€')", "ä€\r\n")
    terminal.enter("x = = 1", "nxhost: prompt:1: unexpected symbol near '='\r\n")
    terminal.enter("error('oh')", "nxhost: prompt:1: oh\r\nstack traceback:\r\n")
    assert "nxhost:" not in terminal.expect("> ")
    terminal.type("\r")
    terminal.enter("host.later(function() print('meanwhile') end)", "meanwhile\r\n")
    terminal.enter("host.later(function() error('behind') end)", "nxhost: prompt:1: behind")
    terminal.expect("> ")
    terminal.type("\x04")
    terminal.expect_exit(0)


def completes(folder):
    terminal = Terminal(folder)
    terminal.expect("> ")
    terminal.type("nxSupport.Con\t.ex\t")
    terminal.expect("nxSupport.Context.exec")
    terminal.type("\r")
    terminal.enter("host.document:un\t()", "false\r\n")
    terminal.expect("> ")
    terminal.type("host.document:\t")
    terminal.expect("autosave  copy  describe  discardAutosave  duplicate  edit  find  findId  get  listen  names  open  panel  "
                    "recover  recoverable  redo  save  select  set  undo  undoTo  validate  watch")
    terminal.type("nothing\t\x03")
    terminal.enter("'alive'", "alive\r\n")
    terminal.enter("os.exit(3)")
    terminal.expect_exit(3)


def helps(folder):
    terminal = Terminal(folder)
    terminal.enter("{1, 'two', {x = true, ['a b'] = {}}}", '{1, "two", {["a b"] = {}, x = true}}\r\n')
    terminal.enter("t = {} t.t = t return t", "{t = {...}}\r\n")
    terminal.enter("t = {} for i = 1, 2000 do t[i] = i end return t", "1,\r\n", "...\r\n}\r\n")
    for value in ["{i, 2 * i}", "{name = 'row ' .. i, size = {i, i}}", "{('x'):rep(99), i}", "{{{('x'):rep(99)}}}"]:
        terminal.enter(f"t = {{}} for i = 1, 2000 do t[i] = {value} end return t")
        shown = terminal.expect("...\r\n}\r\n")
        assert 15 < shown.count("\n") < 27, (value, shown)
    terminal.enter("{('long\\n'):rep(1000)}", 'long\\n...\r\n}\r\n')
    terminal.enter("{{{('ü'):rep(99)}, ('x'):rep(99)}}")
    assert max(map(len, terminal.expect("}\r\n> ").encode().split(b"\r\n"))) <= 120
    terminal.type("\r")
    terminal.enter("{}, nil, host.document", "{}\tnil\tnxhost::Document")
    terminal.enter("help", "help(x)", "quit")
    terminal.enter("help(host.document)", "class nxhost::Document\r\n", "edit(name: string, body: function)\r\n")
    terminal.enter("help(nxSupport.Context)", "class nxSupport::Context")
    terminal.enter("help(host)", "table host\r\n", "span(name: string, body: function)")
    terminal.enter("help()", "help(x)", "quit")
    terminal.enter("help(nx)", "table nx\r\n", "decodeJSON(text: string): any, string?\r\n")
    terminal.enter("help(nx.encodeJSON)", "nx.encodeJSON(value: any, indent?: number): string?, string?\r\n")
    terminal.enter("help(host.span)", "host.span(name: string, body: function)\r\n")
    terminal.enter("help(nxSupport.Context.exec)", "nxSupport::Context.exec(")
    terminal.enter("help(host.document.undoTo)", "nxhost::Document.undoTo(steps: number): boolean\r\n")
    terminal.enter("c = host.network:createConnection() help(c.start)", "nxNet::Connection.start()\r\n")
    terminal.enter("help(print)", "nothing is known of this function\r\n")
    terminal.enter("help({})", "nothing is known of this table\r\n")
    for columns, longest in ((60, 60), (10, 40), (300, 300), (0, 120)):
        fcntl.ioctl(terminal.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 0, columns, 0, 0))
        terminal.enter("t = {} for i = 1, 90 do t[i] = {{{{{{{{('x'):rep(999)}}}}}}}} end return t")
        assert max(map(len, terminal.expect("...\r\n}\r\n").split("\r\n"))) == longest, columns
    Path(folder, "some file.txt").touch()
    Path(folder, "some folder").mkdir()
    terminal.expect("> ")
    terminal.type(f"#'{folder}/some f\t\t")
    terminal.expect("some file.txt  ")
    terminal.expect("some folder/")
    terminal.type("i\t'\r")
    terminal.expect(f"{len(folder) + len('/some file.txt')}\r\n")
    terminal.enter(" quit ")
    terminal.expect_exit(0)


def remembers(folder):
    terminal = Terminal(folder)
    terminal.enter("'remember ' .. 'me'", "remember me\r\n")
    terminal.expect("> ")
    terminal.type("\x10\r")
    terminal.expect("\r\nremember me\r\n")
    terminal.expect("> ")
    terminal.type("\x04")
    terminal.expect_exit(0)
    terminal = Terminal(folder)
    terminal.expect("> ")
    terminal.type("\x10\r")
    terminal.expect("\r\nremember me\r\n")
    terminal.expect("> ")
    terminal.type("\x03")
    terminal.expect_exit(130)
    Path(folder, "history").unlink()
    Path(folder, "history").symlink_to("/dev/zero")  # an endless file
    terminal = Terminal(folder)
    terminal.enter("'there'", "there\r\n")
    terminal.expect("> ")
    terminal.type("\x04")
    terminal.expect_exit(0)
    Path(folder, "history").unlink()


def stops(folder):
    terminal = Terminal(folder, "-i", "-e", "print('first')")
    terminal.expect("first\r\n")
    terminal.enter("print('busy') while true do pcall(function() while true do end end) end", "busy\r\n")
    terminal.type("\x03")
    terminal.expect("interrupted")
    terminal.enter("print('waiting') while true do host.later(function() end) host.turn() end", "waiting\r\n")
    terminal.type("\x03")
    terminal.expect("interrupted")
    terminal.expect("> ")
    terminal.type("for i = 1, 2 do\r")
    terminal.expect(">> ")
    terminal.type("\x03")  # drops the whole chunk
    terminal.enter("'still here'", "still here\r\n")
    terminal.expect("> ")
    terminal.type("\x03")
    terminal.expect_exit(130)


def terminates(folder):
    for typed in ["", "print(", "print('busy') while true do end\r"]:
        terminal = Terminal(folder)
        terminal.expect("> ")
        terminal.type(typed)
        if typed:
            terminal.expect("\r\nbusy\r\n" if typed.endswith("\r") else typed)
        os.kill(terminal.process, signal.SIGTERM)
        terminal.expect_exit(143)


def signalled(code, number, expected_code, expected_text, *options):
    """Runs a script and sends it a signal once it has said that it is there."""
    with subprocess.Popen([nxhost, *options, "-e", code], text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE) as process:
        assert process.stdout.readline() == "there\n"
        process.send_signal(number)
        _, complaint = process.communicate(timeout=SECONDS)
        assert process.returncode == expected_code, (code, process.returncode, complaint)
        assert expected_text in complaint, (code, complaint)


def signals(_):
    busy = "print 'there' while true do end"
    signalled(busy, signal.SIGINT, 130, "nxhost: -e:1: interrupted\nstack traceback:\n")
    signalled(busy, signal.SIGTERM, 143, "interrupted")
    # After the script has ended: a function that never ends, and a server that never answers.
    signalled("host.later(function() " + busy + " end)", signal.SIGINT, 130, "interrupted")
    silent = """
        local connection = host.network:createConnection()
        local request = host.network:createRequest()
        request.url = 'http://127.0.0.1:%d/'
        connection:setRequest(request)
        connection:setStatusFunc(function() print 'there' end)
        connection:start() """
    with socket.create_server(("127.0.0.1", 0)) as server:
        silent %= server.getsockname()[1]
        signalled(silent, signal.SIGINT, 130, "")
        signalled(silent + "while host.turn() do end", signal.SIGTERM, 143, "interrupted")


def does_not_wait_for_pipes(folder):
    os.mkfifo(pipe := f"{folder}/pipe")
    reader = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)  # never reads
    writes = f"""
        local connection, request = host.network:createConnection(), host.network:createRequest()
        request.url = 'file://{nxhost}'
        connection:setRequest(request)
        local sink = host.fileSink('{pipe}')
        connection:setDataFunc(function(buffer)
            host.later(function() print 'there' io.stdout:flush() end)
            for i = 1, 9 do sink:processData(buffer) end
        end)
        connection:start()
        while host.turn() do end
        print(connection.status, pcall(sink.close, sink, true)) """
    signalled(writes, signal.SIGTERM, 143, "interrupted", "--allow", "file")
    signalled(writes, signal.SIGINT, 130, "nxhost: data that wait for a pipe are lost\n", "--allow", "file")
    started = time.monotonic()
    run = subprocess.run([nxhost, "--allow", "file", "--time", "0.3", "-e", writes], stdout=subprocess.PIPE, text=True)
    assert run.stdout == "there\nConnectionFailed\tfalse\tthe time limit of the transfer has passed\n", run.stdout
    assert time.monotonic() - started < 20
    os.close(reader)


def running(folder, code):
    """nxhost with its temporary files in `folder`, once its script says that it is there."""
    process = subprocess.Popen([nxhost, "-e", PAGED + code], env=os.environ | {"TMPDIR": folder}, text=True,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    assert process.stdout.readline() == "there\n"
    return process


# The text is in the page file.
PAGED = """
    host.cache.memoryLimit = 1000
    for _, name in ipairs{'a', 'b'} do
        local text = host.cache:resource(name, function() return name:rep(800) end)
        text:keepOnDisk()
        assert(#text.text == 800)
    end
    assert(host.cache.statistics.pagesOut == 1)
    print 'there' io.stdout:flush() """
BUSY = "while true do end"
DEAF = "string.find(('a'):rep(60), ('a?'):rep(60) .. ('a'):rep(60))"  # one instruction that runs for years


def leaves_nothing(_):
    """Temporary folders go with the program, or with a later one when it was killed."""
    with tempfile.TemporaryDirectory() as folder:
        for code in ["", "os.exit(1)", "error()"]:
            running(folder, code).wait(SECONDS)
            assert not list(Path(folder).iterdir()), code
        for code, signals_sent, codes in [(BUSY, [signal.SIGHUP, signal.SIGHUP], [129, -1]),
                                          (BUSY, [signal.SIGINT, signal.SIGTERM], [130, 143, -2, -15]),
                                          (DEAF, [signal.SIGHUP, None, signal.SIGHUP], [-1])]:
            if code == DEAF and os.environ.get("SANITIZERS") == "thread":
                continue  # its run-time library holds back signals until the program calls it
            process = running(folder, code)
            for number in signals_sent:
                process.send_signal(number) if number else time.sleep(1.1)
            assert process.wait(SECONDS) in codes, (code, process.returncode)
            assert not list(Path(folder).iterdir()), (code, signals_sent)


def removes_what_is_left(_):
    with tempfile.TemporaryDirectory() as folder:
        others = [Path(folder, "nxhostconfig"), Path(folder, "nxhost-pages-abcdef"), Path(folder, "nxhost-pages-linked")]
        others[0].mkdir()
        others[1].mkdir()
        Path(others[1], "mine.txt").touch()
        others[2].symlink_to(others[0])
        living = running(folder, BUSY)
        kept = {*others, *Path(folder).iterdir()}
        for process in [running(folder, BUSY) for _ in range(3)]:
            process.kill()
            process.wait(SECONDS)
        assert len(list(Path(folder).iterdir())) == len(kept) + 3
        starts = [running(folder, "") for _ in range(6)]  # at once
        assert all(start.wait(SECONDS) == 0 for start in starts)
        assert set(Path(folder).iterdir()) == kept
        living.terminate()
        living.wait(SECONDS)
        assert set(Path(folder).iterdir()) == set(others) and Path(others[1], "mine.txt").exists()


with tempfile.TemporaryDirectory() as folder:
    for test in [evaluates, completes, helps, remembers, stops, terminates, signals, does_not_wait_for_pipes,
                 leaves_nothing, removes_what_is_left]:
        test(folder)
print("all as expected")
