local function told(call, ...)
    print(select(2, pcall(call, ...)))
end

local request = host.network:createRequest()
print("new", request.url == "", request.httpMethod, request.fileForUpload == "")
request.url, request.httpMethod, request.fileForUpload = "http://host/", "PUT", "/tmp/file"
print(request.url, request.httpMethod, request.fileForUpload)
request:addHeader("b", "2")
request:addHeader("a", "1")
request:addHeader("b", "3")
for name, value in request:headers() do print("header", name, value) end
request:addPostData("n\0n", "v\0v")
for name, value in request:postData() do print("field", #name, #value) end
told(request.addHeader, request, "name")
told(function() request.url = {} end)

local connection = host.network:createConnection()
print(connection.status, connection.error, connection.request)
connection:setRequest(request)
print(connection.request == request)
told(connection.setRequest, connection, host.network)
told(connection.setStatusFunc, connection, "text")
told(function() connection.status = "Complete" end)

local whole
connection:setDataFunc(function(block)
    whole = urThread.mergeBuffers(whole, block)
    print("data", block.size, whole.size, #whole.data, whole.data:find("\0", 1, true))
end)
connection:setStatusFunc(function(...) print("status", connection.status, connection.error, select("#", ...)) end)
connection:start()
host.report("connected", "")
host.report("connected", "")
host.report("data", "abc")
host.report("data", "d\0e")
host.report("data", "")
host.report("failed", "-28")
host.report("complete", "")
host.report("data", "late")
print("last", connection.status, connection.error)

-- Functions that fail, remove themselves and end their own connections.
local second = host.network:createConnection()
second:setDataFunc(function() second:setDataFunc(nil) error("cannot take it") end)
second:setStatusFunc(function()
    print("second", second.status)
    second:cancel()
end)
host.report("data", "block")
host.report("data", "block")
host.report("connected", "")
print("second", second.status)
