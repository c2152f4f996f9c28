-- The run queue, nested runs of the main loop in callbacks, and errors in them.
local net = require "fetch"

print(host.turn())
host.later(function()
    print "first"
    host.later(function() print "third" end)
end)
host.later(function() print "second" end)
while host.turn() do end

print "== a turn inside a callback"
local outer = net.connection("/hello")
outer:setDataFunc(function(buffer)
    print("outer", buffer.data)
    print("inner", select(2, net.fetch("/chunked")))
    net.wait(outer)
    print("the outer one has ended", outer.status)
end)
outer:start()
while host.turn() do end

print "== many at once"
local open, bytes = 0, 0
for i = 1, 400 do
    local connection = net.connection("/huge?size=" .. i * 1000)
    connection:setDataFunc(function(buffer) bytes = bytes + buffer.size end)
    connection:setStatusFunc(function() if connection.status == "Complete" then open = open - 1 end end)
    open = open + 1
    connection:start()
end
while host.turn() do end
print(open, bytes == 1000 * 400 * 401 / 2)

print "== errors in callbacks are told, and the rest goes on"
local failing = net.connection("/hello")
failing:setDataFunc(function() error "in the data function" end)
failing:setStatusFunc(function() print(failing.status) end)
failing:start()
host.later(function() local nothing nothing.field = 1 end)
while host.turn() do end
print(pcall(host.later, nil))
print "still to come: what is left runs when the script has ended"
host.later(function() print "left" end)
