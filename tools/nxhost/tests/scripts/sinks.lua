-- Data sinks of the host: files that appear when they are complete.
local net = require "fetch"

local path = net.folder .. "/sunk"
local function there() return io.open(path, "rb") ~= nil end
local connection = net.connection("/huge?size=100000")
local sink = host.fileSink(path)
connection:setDataFunc(function(buffer) sink:processData(buffer) end)
connection:start()
net.wait(connection)
print(sink:closed(), sink:completed(), there())
sink:close(true)
print(sink:closed(), sink:completed(), there())
local file = io.open(path, "rb")
print(#file:read("*a"), file:close())
os.remove(path)

sink = host.fileSink(path)
sink:close(false)
print(sink:closed(), sink:completed(), there())
local _, buffer = nil
connection = net.connection("/hello")
connection:setDataFunc(function(arrived) buffer = urThread.mergeBuffers(arrived, arrived) end)
connection:start()
net.wait(connection)
print(buffer.data, buffer.size, pcall(sink.processData, sink, buffer))
print((select(2, pcall(host.fileSink, "/absent/file")):gsub(".*: ", "")), pcall(host.fileSink, "a\0b"))
