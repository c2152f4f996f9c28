-- Every failure has a code and a reason. A failing transfer is reported once and leaves nothing behind.
-- options: --time 60
local net = require "fetch"

local function fail(title, path, set)
    local told = {}
    local connection
    connection = net.fetch(path, function(request, made)
        made:setStatusFunc(function() told[#told + 1] = made.status end)
        if set then set(request, made) end
    end)
    print(title, connection.error, connection.errorText ~= "", table.concat(told, " "))
end

print "== refused before anything is sent"
fail("no URL", "")
fail("line break", "http://127.0.0.1/\r\nX: y")
fail("NUL", "http://127.0.0.1/\0")
fail("no scheme of ours", "ftp://127.0.0.1/")
fail("file", "file:///etc/hostname")
fail("no URL at all", "http://[")
fail("method", "/hello", function(request) request.httpMethod = "GET / HTTP/1.1\r\nX: y" end)
fail("no method", "/hello", function(request) request.httpMethod = "" end)
fail("header value", "/hello", function(request) request:addHeader("X", "a\r\nY: b") end)
for _, name in ipairs{"Content-Length", "TRANSFER-ENCODING", "trailer", "Upgrade"} do
    fail(name, "/hello", function(request) request:addHeader(name, "1") end)
end
for _, control in ipairs{"\1", "\t", "\127"} do
    fail("header control", "/hello", function(request) request:addHeader("X", "a" .. control .. "b") end)
end
fail("header NUL", "/hello", function(request) request:addHeader("X", "a\0b") end)
fail("header name", "/hello", function(request) request:addHeader("X: y\nZ", "b") end)
fail("no file", "/hello", function(request) request.fileForUpload = net.folder .. "/absent" end)
fail("file NUL", "/hello", function(request) request.fileForUpload = "/etc/hostname\0" end)
fail("field NUL", "/hello", function(request)
    request.fileForUpload = net.write("field", "x")
    request:addPostData("a\0", "b")
end)
local connection = host.network:createConnection()
connection:setStatusFunc(function() print("no request", connection.status, connection.error) end)
connection:start()
print(connection.status, connection.timeLimit)
net.wait(connection)

print "== on the way"
fail("no such name", "http://host.invalid/")
fail("nobody there", "http://127.0.0.1:1/")
fail("not trusted", net.secure .. "/hello")
fail("time limit", "/stall", function(_, made) made.timeLimit = 0.2 print(made.timeLimit) end)
fail("time limit halfway", "/halfway", function(_, made) made.timeLimit = 0.2 end)
fail("no answer", "/silent")
local large = net.write("large", ("x"):rep(20000000))
fail("no answer, nobody listens", "/silent", function(request) request.httpMethod = "PUT" request.fileForUpload = large end)
fail("gibberish", "/gibberish")
fail("too early", "/early")
fail("endless headers", "/headers")
fail("endless redirections", "/loop")
fail("redirected to a file", "/redirect?to=file:///etc/hostname")
fail("redirected to another scheme", "/redirect?to=ftp://127.0.0.1/")
fail("a folder", "/hello", function(request) request.httpMethod = "PUT" request.fileForUpload = net.folder end)
print(host.turn())
