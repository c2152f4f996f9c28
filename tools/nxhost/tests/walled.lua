-- The addresses that the sandbox reaches, in a network where 1.2.3.4 and 127.0.0.1 are this machine.
local function fetch(url)
    local request, connection = host.network:createRequest(), host.network:createConnection()
    request.url = url
    connection:setRequest(request)
    connection:start()
    while connection.status == "NotConnected" or connection.status == "Connected" do host.turn() end
    print(url, connection.status, connection.responseStatus, connection.error)
end
fetch(arg[1] .. "/hello")
if arg[3] then return end
fetch(arg[1] .. "/redirect?to=http://127.0.0.1:" .. arg[2] .. "/hello")
-- A public address without a host.
for _, address in ipairs{"9.9.9.9", "100.128.0.1", "172.32.0.1", "192.169.0.1", "223.255.255.1", "[::ffff:9.9.9.9]",
                         "[64:ff9b::909:909]", "[2002:909:909::]", "[2620:fe::fe]", "[2001:200::1]"} do
    fetch("http://" .. address .. "/")
end
