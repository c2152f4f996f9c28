-- A server with a trusted certificate is accepted; a name that its certificate lacks is refused.
-- options: --authorities CERTIFICATE
local net = require "fetch"

local connection, body = net.fetch(net.secure .. "/hello")
print(connection.status, connection.responseStatus, body)
print(select(2, net.fetch("/redirect?to=" .. net.secure .. "/hello")))
connection = net.fetch((net.secure:gsub("127.0.0.1", "localhost")) .. "/hello")
print(connection.status, connection.error)
connection = net.fetch(net.secure .. "/silent", function(request)
    request.httpMethod = "PUT"
    request.fileForUpload = net.write("large", ("x"):rep(20000000))
end)
print(connection.status, connection.error)
