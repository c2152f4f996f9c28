-- Requests arrive as sent, and answers can be read.
local net = require "fetch"

local function show(path, method, set)
    local connection, body = net.fetch(path, function(request, ...)
        request.httpMethod = method
        if set then set(request, ...) end
    end)
    print(connection.responseStatus, (body:gsub("%-%-%-+%x+", "BOUNDARY"):gsub("\r", ""):gsub("%z", "\\0")))
end
print "== methods"
for _, method in ipairs{"GET", "DELETE", "POST", "PUT", "PATCH", "BREW", "HEAD"} do show("/tell", method) end
print "== headers"
show("/tell?header=X-One", "GET", function(request)
    request:addHeader("X-One", "1st")
    request:addHeader("X-One", "value")
    for name, value in request:headers() do print(name, value) end
end)
show("/tell?header=X-Empty", "GET", function(request) request:addHeader("X-Empty", "") end)
show("/tell?header=User-Agent", "GET", function(request) request:addHeader("User-Agent", "tests") end)
show("/tell", "PUT", function(request) request:addHeader("Content-Type", "text/x-own") end)
print "== post data"
show("/tell", "POST", function(request) request:addPostData("a b", "c&d=\0\195\164") request:addPostData("z", "") end)
show("/tell", "PUT", function(request)
    request:addPostData("only", "one")
    for name, value in request:postData() do print(name, value) end
end)
print "== files"
local file = net.write("small.txt", "contents\0\n")
local function upload(request) request.fileForUpload = file end
show("/tell", "PUT", upload)
show("/tell", "POST", upload)
show("/tell", "POST", function(request) upload(request) request:addPostData("name", "value") end)

print "== answers"
local connection, body = net.fetch("/hello")
print(connection, body)
print(connection:responseHeader("X-TWICE"), (connection:responseHeader("set-cookie"):gsub("\n", "|")),
      connection:responseHeader("none") == "")
local names = {}
for name, value in connection:responseHeaders() do
    if name ~= "date" and name ~= "server" then names[#names + 1] = name .. "=" .. value:gsub("\n", "|") end
end
print(table.concat(names, " "))
print(connection.received, connection.receiveTotal, connection.sent, connection.sendTotal, connection.errorText == "")
for _, code in ipairs{204, 404, 500} do
    connection = net.fetch("/status?code=" .. code)
    print(connection.status, connection.responseStatus, connection.error)
end
print(select(2, net.fetch("/chunked")))
print(select(2, net.fetch("/slow")))

print "== redirections"
print(select(2, net.fetch("/redirect?to=/hello")))
show("/redirect?to=/tell", "POST", function(request) request:addPostData("a", "1") end)
show("/redirect?code=307&to=/tell", "POST", function(request) request:addPostData("a", "1") end)
show("/redirect?code=307&to=/tell", "PUT", upload)
local other = net.base:gsub("127.0.0.1", "localhost")
for _, target in ipairs{"", other} do
    show("/redirect?to=" .. target .. "/tell%3Fheader=Authorization", "GET",
         function(request) request:addHeader("Authorization", "secret") end)
end

print "== again"
local data = 0
connection = net.connection("/hello")
for i = 1, 3 do
    connection:setDataFunc(function(buffer) data = data + buffer.size end)
    connection:setStatusFunc(function() print("run", i, connection.status) end)
    connection:start()
    connection:start()
    while host.turn() do end
end
print(data, connection.request.url == net.base .. "/hello")
