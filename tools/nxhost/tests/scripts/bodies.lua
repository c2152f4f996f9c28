-- Large bodies arrive unchanged, and are in memory as a whole only if the script keeps them.
local net = require "fetch"

local block = {}
for i = 0, 32767 do block[#block + 1] = string.char(i % 256, math.floor(i / 256)) end
local content = (table.concat(block)):rep(100) .. "end"
local path = net.write("large", content)

for _, method in ipairs{"PUT", "POST"} do
    local last = 0
    local connection, body = net.fetch("/echo", function(request, connection)
        request.httpMethod = method
        request.fileForUpload = path
        connection:setProgressFunc(function()
            assert(connection.sent >= last and connection.sent <= #content)
            last = connection.sent
        end)
    end)
    print(method, #body, body == content, last == #content, connection.sendTotal == #content)
end
print("empty", select(2, net.fetch("/tell", function(request)
    request.httpMethod = "PUT"
    request.fileForUpload = net.write("empty", "")
end)))

local size = 50 * 1024 * 1024
local received, wrong = 0, 0
local connection = net.connection("/huge?size=" .. size)
connection:setDataFunc(function(buffer)
    local data = buffer.data
    for at = 1, #data, 4093 do
        local place = received + at - 1
        local expected = place % 2 == 0 and place / 2 % 256 or math.floor((place - 1) / 2 / 256) % 128
        if data:byte(at) ~= expected then wrong = wrong + 1 end
    end
    received = received + buffer.size
end)
connection:start()
net.wait(connection)
print("huge", received == size, wrong, connection.received == size, collectgarbage("count") < 50 * 1024)
-- A gigabyte is allowed, by default.
for _, announced in ipairs{2 ^ 30, 2 ^ 30 + 1} do
    connection = net.connection(("/announced?size=%d"):format(announced))
    connection:setDataFunc(function() connection:cancel() end)
    connection:start()
    net.wait(connection)
    print("announced", connection.status, connection.errorText)
end
