-- options: --stall 1
-- A host that does not answer, a transfer without a byte and the reader of a pipe are given up after a second.
local net = require "fetch"
local _, full = net.fetch("/full")
for title, path in ipairs{"/stall", "/halfway", full} do
    local started = os.time()
    local connection = net.fetch(path)
    print(title, connection.error, os.time() - started < 10)
end
print("slow", net.fetch("/slow").status)

local pipe = net.folder .. "/stalled"
os.execute("mkfifo " .. pipe)
os.execute("sleep 9 < " .. pipe .. " &")
local there, sink
repeat there, sink = pcall(host.fileSink, pipe) until there
local connection = net.connection("/huge?size=1000000")
connection:setDataFunc(function(buffer) pcall(sink.processData, sink, buffer) end)
connection:start()
while host.turn() do end
print("pipe", connection.status)
os.remove(pipe)
