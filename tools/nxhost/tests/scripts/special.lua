-- Pipes, devices and generated files: no transfer waits forever, and none is sent as empty.
local net = require "fetch"
local pipe = net.folder .. "/pipe"
os.execute("mkfifo " .. pipe)

local function upload(title, path, set)
    local connection, body = net.fetch("/echo", function(request, made)
        request.httpMethod = "PUT"
        request.fileForUpload = path
        if set then set(request, made) end
    end)
    print(title, connection.status, connection.error, (connection.errorText:gsub("%d+", "N")))
    return body
end

print "== pipes"
upload("nobody writes", pipe, function(_, made) made.timeLimit = 0.2 end)
upload("cancelled", pipe, function(_, made) host.later(function() made:cancel() end) end)
for _, set in ipairs{function() end, function(request) request:addPostData("a", "b") end} do
    os.execute("(sleep 0.1; echo first; sleep 0.1; echo second) > " .. pipe .. " &")
    print(upload("written late", pipe, set):match("first\nsecond\n") ~= nil)
end
local fetched = net.fetch("file://" .. pipe)
print("fetched", fetched.status, fetched.errorText)
print "== sizes that tell nothing"
print(upload("made up", "/proc/self/status"):match("^Name:%s*(%w+)"))
print(#upload("empty device", "/dev/null"))
local large = net.write("shrinks", ("x"):rep(50000000))
upload("shorter than its size", large, function(_, made)
    made:setProgressFunc(function() io.open(large, "w"):close() end)
end)

print "== sinks"
local _, buffer = nil
local connection = net.connection("/hello")
connection:setDataFunc(function(arrived) buffer = arrived end)
connection:start()
net.wait(connection)
print("nobody reads", (select(2, pcall(host.fileSink, pipe)):gsub(".*: ", "")))
local copy = net.folder .. "/copy"
os.execute("cat " .. pipe .. " > " .. copy .. " &")
local there, sink
repeat there, sink = pcall(host.fileSink, pipe) until there
sink:processData(buffer)
sink:close(true)
local text
repeat
    local file = io.open(copy)
    text = file and file:read("*a") or ""
    if file then file:close() end
until text ~= ""
print("read", text)
-- A slow reader holds only its own transfer and gets all data, including data that waits when the sink is closed.
os.execute("(sleep 1; cat) < " .. pipe .. " > " .. copy .. " &")
repeat there, sink = pcall(host.fileSink, pipe) until there
local slow = net.connection("/huge?size=3000000")
local parts = {}
slow:setDataFunc(function(arrived)
    parts[#parts + 1] = arrived.data
    sink:processData(arrived)
end)
slow:start()
print("another", #select(2, net.fetch("/huge?size=3000000")), slow.status)
net.wait(slow)
local rest
connection = net.connection("/huge?size=1000000")
connection:setDataFunc(function(arrived) rest = rest and urThread.mergeBuffers(rest, arrived) or arrived end)
connection:start()
net.wait(connection)
sink:processData(rest)
sink:close(true)
while host.turn() do end
os.execute("sleep 0.2")
local file = io.open(copy)
print("slowly", slow.status, file:read("*a") == table.concat(parts) .. rest.data, file:close())
-- More than the limit of waiting data.
os.execute("sleep 3 < " .. pipe .. " &")
repeat there, sink = pcall(host.fileSink, pipe) until there
local refused
repeat refused = select(2, pcall(sink.processData, sink, rest)) until refused
print("too much", (refused:gsub(".*: ", "")))
sink:close(false)
-- A reader that closes the pipe causes an error and does not end the program.
pipe = net.folder .. "/unread"
os.execute("mkfifo " .. pipe)
os.execute("(true < " .. pipe .. "; touch " .. pipe .. ".gone) &")
repeat there, sink = pcall(host.fileSink, pipe) until there
repeat local gone = io.open(pipe .. ".gone") until gone
print("read no more", (select(2, pcall(sink.processData, sink, buffer)):gsub(".*: ", "")))
sink = host.fileSink("/dev/null")
sink:processData(buffer)
sink:close(true)
os.remove(pipe)
