-- options: --memory 100M
-- not under: thread
-- Merging block after block into one body uses about as much memory as the body.
local net = require "fetch"
local resident = require "resident"

local size = 20 * 1024 * 1024
local body
local connection = net.connection("/huge?size=" .. size)
connection:setDataFunc(function(block) body = urThread.mergeBuffers(body, block) end)
local before = resident()
connection:start()
net.wait(connection)
print(body.size == size, #body.data == size, resident() - before < 6 * size / 1024)
