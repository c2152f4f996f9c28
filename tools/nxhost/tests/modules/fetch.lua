-- Functions shared by the tests of transfers.
local module = {base = arg[1], secure = arg[2], folder = arg[3]}

--- Returns a connection for `path`; `body()` returns the data so far. `set(request, connection)` may prepare both.
function module.connection(path, set)
    local request = host.network:createRequest()
    request.url = path:find("^/") and module.base .. path or path
    local connection = host.network:createConnection()
    connection:setRequest(request)
    local parts = {}
    connection:setDataFunc(function(buffer) parts[#parts + 1] = buffer.data end)
    if set then set(request, connection) end
    return connection, function() return table.concat(parts) end
end

--- Runs the main loop until the connection has ended.
function module.wait(connection)
    while connection.status == "NotConnected" or connection.status == "Connected" do
        if not host.turn() then error("nothing is to come, but the connection is " .. connection.status) end
    end
end

--- Fetches `path` and returns the connection and the data.
function module.fetch(path, set)
    local connection, body = module.connection(path, set)
    connection:start()
    module.wait(connection)
    return connection, body()
end

function module.write(name, text)
    local path = module.folder .. "/" .. name
    local file = assert(io.open(path, "wb"))
    file:write(text)
    file:close()
    return path
end

return module
