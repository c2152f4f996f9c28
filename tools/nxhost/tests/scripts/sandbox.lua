-- options: --sandbox --instructions 1000 --memory 20M
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
print(pcall(string.rep, "x", 30000000))
host.later(function() print "before it goes on for ever" while true do end end)
while host.turn() do end
print "stopped"
while true do pcall(function() while true do end end) end
