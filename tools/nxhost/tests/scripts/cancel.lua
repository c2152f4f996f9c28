-- A transfer can be cancelled at every stage; the end is reported once and no event follows.
local net = require "fetch"

local function start(title, path, set)
    local connection
    connection = net.connection(path, function(request, made)
        made:setStatusFunc(function() print(title, made.status) end)
        if set then set(request, made) end
    end)
    connection:start()
    return connection
end
local function settle(title)
    while host.turn() do end
    print(title, "over")
end

print "== before the start"
local connection = net.connection("/hello")
connection:setStatusFunc(function() print("never started", connection.status) end)
connection:cancel()

print "== before the first turn"
start("at once", "/hello"):cancel()
settle "at once"

print "== when connected"
start("connected", "/hello", function(_, made)
    made:setStatusFunc(function()
        print("connected", made.status)
        if made.status == "Connected" then made:cancel() end
    end)
end)
settle "connected"

print "== while nothing comes"
connection = start("stalled", "/stall")
while connection.status ~= "Connected" do host.turn() end
host.later(function() connection:cancel() end)
settle "stalled"

print "== in the first data"
start("data", "/huge?size=30000000", function(_, made)
    made:setDataFunc(function(buffer) print("some data", buffer.size > 0) made:cancel() end)
end)
settle "data"

print "== halfway"
connection = start("halfway", "/halfway", function(_, made)
    made:setProgressFunc(function()
        if made.received == 5 then print("received", made.received, made.receiveTotal) made:cancel() end
    end)
end)
settle "halfway"

print "== while sending"
connection = start("sending", "/deaf", function(request, made)
    request.httpMethod = "PUT"
    request.fileForUpload = net.write("deaf", ("x"):rep(50000000))
    made:setProgressFunc(function()
        if made.sent > 0 and made.status == "Connected" then
            print("sent", made.sent < made.sendTotal)
            made:cancel()
            net.connection("/listen"):start()
        end
    end)
end)
settle "sending"

print "== while redirected"
connection = start("redirected", "/redirect?to=/stall")
while connection.responseStatus ~= 302 do host.turn() end
connection:cancel()
settle "redirected"

print "== another one"
local victim = start("victim", "/stall")
while victim.status ~= "Connected" do host.turn() end
start("culprit", "/hello", function(_, made) made:setDataFunc(function() victim:cancel() end) end)
settle "another"

print "== after the end"
connection = net.fetch("/hello")
connection:setStatusFunc(function() print("after", connection.status) end)
connection:cancel()

print "== and once more from inside"
local runs = 0
connection = net.connection("/hello")
local function again()
    runs = runs + 1
    connection:setStatusFunc(function()
        if connection.status == "Connected" then connection:cancel() end
        if connection.status == "Cancelled" and runs < 3 then again() end
    end)
    connection:start()
end
again()
settle "again"
print(runs)

print "== with its last reference"
start("dropped", "/stall"):cancel()
connection, victim = nil
collectgarbage()
settle "dropped"
