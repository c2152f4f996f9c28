#!/usr/bin/env -S python3 -B
"""Runs every script in scripts/ with nxhost and compares what it prints, what it complains of and how it ends.

run.py [--update] NXHOST [NAME...]. A line `-- options: …` in a script gives nxhost's options, `-- environment: …` what it
finds in its environment. The scripts' arguments are the URLs of an HTTP and an HTTPS server and a folder. In the expected
output the text of a line of the script stands in place of its number. --update writes what they print now.
"""
import difflib
import json
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

from server import Server

here = Path(__file__).resolve().parent
SECONDS = 100  # for a script that hangs


def environment(more=()):
    clean = {name: value for name, value in os.environ.items()
             if not name.lower().endswith("_proxy") and not name.startswith("NX_")}
    return clean | {"NX_LUA_PATH": str(here / "modules")} | dict(word.split("=", 1) for word in more)


def words_of(script, kind):
    found = re.search(rf"^-- {kind}: (.*)", script.read_text(), re.MULTILINE)
    return found[1].split() if found else []


def make_certificate(folder):
    """A self-signed certificate for 127.0.0.1, and its key, in one file."""
    file = Path(folder) / "certificate.pem"
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                    "-days", "2", "-subj", "/CN=tests", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", file,
                    "-out", f"{file}.crt"], check=True, capture_output=True)
    file.write_text(file.read_text() + Path(f"{file}.crt").read_text())
    return file


def outcome(nxhost, script, arguments, certificate):
    options = [str(certificate) if word == "CERTIFICATE" else word for word in words_of(script, "options")]
    run = subprocess.run([nxhost, *options, script.name, *arguments], cwd=script.parent, timeout=SECONDS,
                         env=environment(words_of(script, "environment")), stdin=subprocess.DEVNULL,
                         capture_output=True, text=True, errors="replace")
    text = re.sub(r"0x[0-9a-f]+", "ADDRESS", run.stdout)
    if run.stderr:
        text += "--- standard error\n" + run.stderr.replace(str(here), ".")
    lines = script.read_text().splitlines()
    text = re.sub(rf"\b{re.escape(script.name)}:(\d+)", lambda match: f"{script.name}:[{lines[int(match[1]) - 1].strip()}]", text)
    return text if run.returncode == 0 else text + f"--- exit {run.returncode}\n"


USAGE = [  # arguments, standard input, exit code, text in the output
    (["-e", "print(...)", "a", "-b"], "", 0, "a\t-b\n"),
    (["-e", "print(...)", "[1,2]", "--", "--trace=", "{}", ""], "", 0, "[1,2]\t--\t--trace=\t{}\t\n"),
    (["--trace=", "-e", "print(1)"], "", 0, "1\n"),
    (["--open", "DOCUMENT", "--sandbox", "-e", "local d = host.document print(d.root.children[1].size, d.root.class, d:get('x'), "
      "d.undoCount, pcall(d.open, d, 'x'))"], "", 0, "2\tDrawing\t5\t0\tfalse\tfiles are not for the sandbox\n"),
    (["--open", "/nowhere/plan.json", "-e", "print(1)"], "", 2, "nxhost: /nowhere/plan.json: No such file or directory\n"),
    (["--open", "/dev/null", "-e", "print(1)"], "", 2, "nxhost: /dev/null: line 1: "),
    (["--memory", "8M", "-e", "print(host.cache.memoryLimit)"], "", 0, "2097152\n"),
    (["--cache=1M", "--memory", "8M", "--cache", "256M", "-e", "print(host.cache.memoryLimit)"], "", 0, "268435456\n"),
    (["--", "-absent.lua"], "", 2, "nxhost: -absent.lua: No such file or directory\n"),
    (["-e", "return {1, x = 2}, coroutine.create(function() end)"], "", 0, ""),
    (["-e", "n = 1 print(...)", "-e", "print(n + 1) error('x')", "-e", "print(3)", "a"], "", 1, "a\n2\nnxhost: -e:1: x\n"),
    (["-e", "os.exit(300)", "-e", "print(1)"], "", 44, ""),
    (["-e", "os.exit(false)"], "", 1, ""),
    (["-e", "os.exit(true)"], "", 0, ""),
    (["-"], "#!/usr/bin/env nxhost\nprint(1) error('x')", 1, "1\nnxhost: stdin:2: x\nstack traceback:\n"),
    ([], "print(arg[0])", 0, "-\n"),
    (["-e", "nonsense here"], "", 1, "nxhost: -e:1: '=' expected near 'here'\n"),
    (["-e", "error({})"], "", 1, "nxhost: (error object is a table value)\n"),
    (["absent.lua"], "", 2, "absent.lua"),
    (["/"], "", 2, "nxhost: /: read: Is a directory\n"),
    (["--nothing"], "", 2, "nxhost: The following argument was not expected: --nothing (nxhost --help tells more)\n"),
    (["-e"], "", 2, "nxhost: -e: 1 required CODE missing"),
    (["--cache", "12Q"], "", 2, '--cache takes bytes, such as 65536 or 64K, not "12Q"'),
    (["--cache=99999999999G"], "", 2, "--cache takes less than"),
    (["--sandbox", "--sandbox=no"], "", 2, "nxhost: --sandbox takes no value (nxhost --help tells more)\n"),
    (["--authorities", "/nowhere/ca.pem", "-e", "print(1)"], "", 2, "nxhost: /nowhere/ca.pem: No such file or directory"),
    (["--time", "-1"], "", 2, '--time takes a number of seconds, 0 for no limit, not "-1"'),
    (["--allow", "gopherr", "-e", ""], "", 2, 'nxhost: --allow takes a scheme that libcurl knows, not "gopherr"'),
    (["--allow", "file", "--sandbox", "-e", ""], "", 2, "nxhost: --allow file is not for the sandbox"),
    (["--sandbox", "--allow", "ftp,FILE", "-e", ""], "", 2, "nxhost: --allow file is not for the sandbox"),
    (["--sandbox", "--allow", "all", "-e", ""], "", 2, "nxhost: --allow file is not for the sandbox"),
    (["--sandbox", "--allow", "ftp", "-e", "print(1)"], "", 0, "1\n"),
    (["--version"], "", 0, "nxhost 0."),
    (["--help"], "", 0, "NX_UNDO_MEMORY_LIMIT"),
    (["--list"], "", 0, "\nclass nxhost::Connection: nxNet::Connection\n"),
    (["--trace", "/nowhere/trace.json", "-e", ""], "", 2, "nxhost: /nowhere/trace.json: No such file or directory"),
    (["--list"], "", 0, "\nvalue nxhost::Document host.document\n"),
    (["--list", "--stubs"], "", 0, "---@param index? number\n---@return nxhost.Object\nfunction nxhost.Object:add(class, values, index) end\n"),
    *((["--memory", "8M", "-e", f"for i = 1, 1e9 do {grow} end"], "", 1, "memory budget spent") for grow in (
        "host.document.root['name' .. i] = i", "host.document.root:watch(print)", "host.document:describe{name = 'name' .. i}",
        "host.registry:setKey('key' .. i, nil)", "host.document:set('name' .. i, nil)",
        "host.document:set('name' .. i % 10, {i, ('x'):rep(10000)})", "host.document:validate('name', print)",
        "host.later(function() end)", "host.document:edit(('n'):rep(200) .. i, function() host.document:set('a', i) end)",
        "host.cache:resource('name' .. i, print)")),
    (["--instructions", "100000", "-e", "for i = 1, 30000 do end print('ended')"], "", 0, "ended"),
    (["--instructions", "100000", "-e", "for i = 1, 300000 do end"], "", 1, "instruction budget spent"),
    *((["--sandbox", "--instructions", "3000000", "--memory", "100M", "-e", f"local t, s = {{}}, ('[1,'):rep(100000) "
        f"for i = 1, 100000 do t[i] = i end local d = {{}} for i = 1, 60 do d = {{d, d}} end while true do {work} end"],
       "", 1, "instruction budget spent") for work in (
        "nx.encodeJSON(t)", "pcall(nx.encodeJSON, d)", "pcall(nx.decodeJSON, s)", "nx.decodeJSON2(s)",
        "pcall(nx.createLCStack, t)", "host.registry:setKey('s', s)", "host.registry:setKey('t', t)")),
    *((["--sandbox", "--memory", "20M", "-e", make], "", 1, "memory budget spent") for make in (
        "local t, s = {}, ('x'):rep(1000000) for i = 1, 15 do t[i] = s end nx.encodeJSON(t)",
        "local t = {} for i = 1, 100000 do t[i] = i end nx.encodeJSON(t, 16) nx.encodeJSON({t, t, t})",
        "local u, t = {}, {} for i = 1, 1000 do u[i] = {} end for i = 1, 150 do t[i] = u end host.document:set('x', t)",
        "local r = host.network:createRequest() r.url = 'http://192.0.2.1/' r:addPostData('k', ('x'):rep(1000000)) "
        "local t = {} for i = 1, 9 do t[i] = host.network:createConnection() t[i]:setRequest(r) t[i]:start() end",
        "nx.decodeJSON(('['):rep(3000000))", "nx.decodeJSON(('[1,'):rep(5000000))")),
    (["--list", "script.lua"], "", 2, "nxhost: a listing takes neither a script nor -e or -i"),
    (["--list", "--json"], "", 0, '{"name":"encodeJSON","kind":"function","signature":["string?, string?","any","number"],"parameters":['
                                  '{"name":"value","optional":false},{"name":"indent","optional":true}]}'),
    (["--list", "--stubs"], "", 0, "\n---@class nxhost.Connection : nxNet.Connection\n"),
    (["--list", "--stubs"], "", 0, "\n---@param text string\n---@return any value\nfunction nx.decodeJSON2(text) end\n"),
]


DOCUMENT = {"format": "nxDocument", "version": 1, "classes": {}, "objects": [
    {"class": "Drawing", "id": "00000000-0000-4000-8000-000000000001", "values": {"x": 5},
     "children": [{"class": "Circle", "id": "00000000-0000-4000-8000-000000000002", "values": {"size": 2}}]}]}


def difference(expected, got):
    lines = difflib.unified_diff(expected.splitlines(), got.splitlines(), "expected", "printed", lineterm="")
    return "\n".join(lines)


def misused(nxhost, folder):
    document = str(Path(folder) / "document.json")
    Path(document).write_text(json.dumps(DOCUMENT))
    for arguments, text, code, expected in USAGE:
        arguments = [document if word == "DOCUMENT" else word for word in arguments]
        run = subprocess.run([nxhost, *arguments], input=text, env=environment(), timeout=SECONDS, text=True,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if run.returncode != code or expected not in run.stdout:
            yield f"nxhost {arguments} exits with {run.returncode} and prints {run.stdout!r}"


def left_behind(nxhost, folder):
    """What runs leave in the folder for temporary files when the streams of the program are closed."""
    page = """host.cache.memoryLimit = 1000
              for _, name in ipairs{'a', 'b'} do
                  local text = host.cache:resource(name, function() return name:rep(800) end)
                  text:keepOnDisk()
                  assert(#text.text == 800)
              end
              print(host.cache.statistics.pagesOut)
              os.execute('ls')"""
    shell = ["bash", "-c", 'exec 2>&1; "$0" -e "while true do print(1) end" | head -n 1; "$0" <&-; "$0" -e "print(0)" >&-; '
             'echo $? $(ls); TMPDIR=/nowhere "$0" -e "$1"', nxhost, page]
    run = subprocess.run(shell, cwd=folder, env=environment([f"TMPDIR={folder}"]), timeout=SECONDS, capture_output=True, text=True)
    if run.stdout != LEFT_BEHIND:
        yield f"with streams closed:\n{difference(LEFT_BEHIND, run.stdout)}"


LEFT_BEHIND = """1
nxhost: standard input: read: Bad file descriptor
nxhost: cannot write to standard output
2
1
"""


WALLED = """outside the sandbox the proxy has 1 requests
ADDRESS/hello Complete 200 0
ADDRESS/redirect?to=http://127.0.0.1:PORT/hello ConnectionFailed 302 1
http://9.9.9.9/ ConnectionFailed 0 3
http://100.128.0.1/ ConnectionFailed 0 3
http://172.32.0.1/ ConnectionFailed 0 3
http://192.169.0.1/ ConnectionFailed 0 3
http://223.255.255.1/ ConnectionFailed 0 3
http://[::ffff:9.9.9.9]/ ConnectionFailed 0 3
http://[64:ff9b::909:909]/ ConnectionFailed 0 3
http://[2002:909:909::]/ ConnectionFailed 0 3
http://[2620:fe::fe]/ ConnectionFailed 0 3
http://[2001:200::1]/ ConnectionFailed 0 3
the proxy has 0 more
without any folder for temporary files: 2 nxhost: no folder for temporary files: /tmp: Read-only file system
"""


def walled(nxhost):
    """What the sandbox does not reach though it may, or reaches though it may not. Needs a network of its own."""
    if os.environ.get("NX_SKIP_WALLED"):
        print("not tried, as NX_SKIP_WALLED demands: redirections and proxies out of the sandbox")
        return
    network = ["unshare", "-rnm", "sh", "-c", 'ip link set lo up && ip addr add 1.2.3.4/32 dev lo && exec "$@"', "sh"]
    inside = "import run, sys; run.print_walled(sys.argv[1])"
    run = subprocess.run([*network, sys.executable, "-B", "-c", inside, nxhost], cwd=here, env=environment(),
                         timeout=SECONDS, capture_output=True, text=True)
    if run.stdout != WALLED:
        yield ("the sandbox in a network of its own, which NX_SKIP_WALLED=1 leaves out:\n"
               f"{difference(WALLED, run.stdout)}\n{run.stderr}")


def print_walled(nxhost):
    with Server(address="1.2.3.4") as public, Server(address="1.2.3.4") as proxy, Server() as private:
        variables = os.environ | {"http_proxy": proxy.url, "all_proxy": proxy.url}
        words = [here / "walled.lua", public.url, str(private.server_port)]
        subprocess.run([nxhost, *words, "once"], env=variables, timeout=SECONDS, capture_output=True)
        print(f"outside the sandbox the proxy has {proxy.requests} requests")
        proxy.requests = 0
        text = subprocess.run([nxhost, "--sandbox", *words], env=variables, timeout=SECONDS, capture_output=True, text=True).stdout
        print(text.replace("\t", " ").replace(public.url, "ADDRESS").replace(words[-1], "PORT"), end="")
        print(f"the proxy has {proxy.requests} more")
    subprocess.run(["mount", "--bind", "/tmp", "/tmp"], check=True)
    subprocess.run(["mount", "-o", "remount,bind,ro,nosuid,nodev", "/tmp"], check=True)
    run = subprocess.run([nxhost, "-e", ""], env=os.environ | {"TMPDIR": "/nowhere"}, stderr=subprocess.PIPE, text=True)
    print(f"without any folder for temporary files: {run.returncode} {run.stderr}", end="")


TRACED = """
host.document:listen("size", function() end)
host.document:validate("size", function(size) return size end)
host.document:edit("Paint", function() host.document:set("size", 1) end)
host.document:undo()
print(host.cache:resource("brush", function() return "text" end).text)
nxSupport.Context.exec(host.domain, "Const", function() end)
host.cache:clear()
host.later(function() end)
host.span("layout", function() end)
local connection = host.network:createConnection()
local request = host.network:createRequest()
request.url = "http://127.0.0.1:1/absent"
connection:setRequest(request)
connection:start()
"""
EVENTS = {("context", "Undecided"), ("context", "Const"), ("script", "-e"), ("script", "Paint"), ("script", "brush"),
          ("script", "later"), ("script", "listener"), ("script", "validator"), ("cache", "build"), ("cache", "drop"),
          ("performance", "TASK Execute"), ("performance", "Update Doc"), ("script", "layout"),
          ("span", "GET http://127.0.0.1:1/absent"), ("mark", "Paint"), ("mark", "undo Paint"),
          ("counter", "cache bytes"), ("counter", "history bytes"), ("counter", "script bytes")}
COUNTS = r"""nxhost: NX_DEBUG: there is no Debug_Undoo; do you mean Debug_Undo\?
TASK Execute \.\.\. = 0\.\d+
Update Doc = 0\.\d+
cache    limit 268435456 bytes, keys 1(, \w+ \d+( bytes)?)+, peakMemoryUsed 4 bytes
history  0 steps to undo, 1 to redo, \d+ bytes
"""


def undiagnosed(nxhost, folder):
    """What NX_DEBUG, --stats and --trace fail to show."""
    trace = Path(folder) / "trace.json"
    run = subprocess.run([nxhost, "--stats", "--trace", trace, "-e", TRACED], timeout=SECONDS, capture_output=True, text=True,
                         env=environment(["NX_DEBUG=Debug_Undo,Debug_Undoo"]))
    if run.stdout != 'Undoing "Paint".\ntext\n':
        yield f"with NX_DEBUG printed: {run.stdout}"
    if not re.fullmatch(COUNTS, run.stderr):
        yield f"--stats printed: {run.stderr}"
    events = json.loads(trace.read_text())["traceEvents"]
    seen = {(event["cat"], event["name"] if event["cat"] != "cache" else event["name"].split()[0])
            for event in events if "cat" in event}
    for missing in sorted(EVENTS - seen):
        yield f"--trace does not show {missing}, only {sorted(seen)}"


def untested(nxhost):
    """What the host's own classes and functions offer that no script mentions."""
    listing = json.loads(subprocess.run([nxhost, "--list", "--json"], check=True, capture_output=True).stdout)
    scripts = "".join(script.read_text() for script in sorted(here.glob("*/*.lua")))
    for group in listing["classes"] + listing["tables"]:
        if not re.match(r"nxhost::|host$|urKRCache::|nxNet::|nxSupport::Registry", group["name"]):
            continue
        for member in group.get("members", []) + group.get("functions", []):
            if not re.search(rf"\b{member['name']}\b", scripts):
                yield f"{group['name']}.{member['name']} is in no script"
    for value in listing["values"]:
        if value["name"] not in scripts:
            yield f"{value['name']} is in no script"


def uncompleted(nxhost):
    """What bash does not offer."""
    script = subprocess.run([nxhost, "--completion"], check=True, capture_output=True, text=True).stdout
    for word, wanted in (("--st", "--stubs --stall --stats"), ("file", "")):
        run = subprocess.run(["bash", "-c", f'{script}\nCOMP_WORDS=(nxhost {word}) COMP_CWORD=1; _nxhost; echo "${{COMPREPLY[@]}}"'],
                             capture_output=True, text=True)
        if run.stdout.strip() != wanted or run.stderr:
            yield f"completion of {word}: {run.stdout}{run.stderr}"


def unloadable(nxhost):
    """Declarations for editors that are no Lua, or do not name a parameter."""
    stubs = subprocess.run([nxhost, "--list", "--stubs"], check=True, capture_output=True, text=True).stdout
    load = subprocess.run([nxhost, "-e", 'assert(loadstring(io.read("*a")))'], input=stubs, capture_output=True, text=True)
    if load.returncode != 0:
        yield f"--list --stubs: {load.stderr}"
    for line in re.findall(r"^function.*\bargument[0-9].*", stubs, re.M):
        yield f"--list --stubs: no name of a parameter: {line}"


def main(nxhost, names, update):
    failures = [*unloadable(nxhost), *untested(nxhost), *walled(nxhost), *uncompleted(nxhost)]
    with tempfile.TemporaryDirectory() as folder:
        failures += left_behind(nxhost, folder)
        failures += misused(nxhost, folder)
        failures += undiagnosed(nxhost, folder)
        certificate = make_certificate(folder)
        with Server() as plain, Server(certificate) as secure:
            for script in sorted((here / "scripts").glob("*.lua")):
                if names and script.stem not in names or os.environ.get("SANITIZERS") in words_of(script, "not under"):
                    continue
                got = outcome(nxhost, script, [plain.url, secure.url, folder], certificate)
                expected = script.with_suffix(".expected")
                if update:
                    expected.write_text(got)
                elif got != expected.read_text():
                    failures.append(f"{script.name}:\n{difference(expected.read_text(), got)}")
    print("\n".join(failures) or "all as expected")
    return 1 if failures else 0


if __name__ == "__main__":
    words = sys.argv[1:]
    wants_update = "--update" in words
    words = [word for word in words if word != "--update"]
    sys.exit(main(os.path.abspath(words[0]), words[1:], wants_update))
