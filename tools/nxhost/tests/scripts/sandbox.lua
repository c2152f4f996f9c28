-- options: --sandbox --instructions 5000000 --memory 20M
-- A sandboxed script reaches no files, not even by uploads, and is stopped when it uses too much.
print(io, os and os.execute, require, dofile, loadstring, debug)
local request = host.network:createRequest()
request.url = "http://127.0.0.1/"
request.fileForUpload = "/etc/hostname"
local connection = host.network:createConnection()
connection:setRequest(request)
connection:start()
host.turn()
print(connection.status, connection.error, connection.errorText)
print(pcall(host.fileSink, "file"))
for address in ([[127.0.0.1 localhost 2130706433 0x7f.1 0177.0.0.1 127.1 0.0.0.0 10.0.0.1 172.16.0.1 172.31.255.255
        192.168.0.1 169.254.169.254 100.64.0.1 198.18.0.1 192.0.0.8 224.0.0.1 240.0.0.1 255.255.255.255 [::] [::1]
        [::127.0.0.1] [::ffff:127.0.0.1] [::ffff:a00:1] [fe80::1] [fc00::1] [fdff::1] [fec0::1] [ff02::1]
        [64:ff9b::7f00:1] [64:ff9b:1::1] [2002:7f00:1::] [2002:c0a8:1::1] [2001::1] [2001:db8::1] ]]):gmatch("%S+") do
    request = host.network:createRequest()
    request.url = "http://" .. address .. ":1/"
    connection = host.network:createConnection()
    connection:setRequest(request)
    connection:start()
    while connection.status == "NotConnected" do host.turn() end
    if connection.error ~= 1 then print(address, connection.error) end
end
print(connection.status, connection.errorText)
for _, limit in ipairs{0, 1e12, 1000} do
    host.cache.memoryLimit = limit
    print(host.cache.memoryLimit)
end
print(pcall(string.rep, "x", 30000000))
host.later(function() print "before it goes on for ever" while true do end end)
while host.turn() do end
print "stopped"
while true do pcall(function() while true do end end) end
