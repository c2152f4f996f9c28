-- With this option the sandbox reaches private addresses, but still no files, and not beyond the time limit.
-- options: --sandbox --private --time 0.3
local function fetch(url, timeLimit)
    local request, connection = host.network:createRequest(), host.network:createConnection()
    request.url = url
    connection:setRequest(request)
    connection:setDataFunc(function(buffer) print(buffer.data) end)
    connection.timeLimit = timeLimit or connection.timeLimit
    connection:start()
    while connection.status == "NotConnected" or connection.status == "Connected" do host.turn() end
    print(connection.status, connection.error)
end
fetch(arg[1] .. "/hello")
for _, timeLimit in ipairs{0, -1, 1e9, 0 / 0, 0.1} do fetch(arg[1] .. "/stall", timeLimit) end
fetch("file:///etc/hostname")
