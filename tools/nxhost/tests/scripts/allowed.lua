-- An option allows further schemes, but no answer may redirect to them.
-- options: --allow file
local net = require "fetch"

local path = net.write("local.txt", "from a file")
local connection, body = net.fetch("file://" .. path)
print(connection.status, connection.responseStatus, body)
connection, body = net.fetch("/redirect?to=file://" .. path)
print(connection.status, connection.error, body)
