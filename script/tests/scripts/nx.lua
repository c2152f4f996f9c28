print(nx.random(), nx.random(1, 2, 3), nx.random(0))
for _ = 1, 100 do
    local a, b = nx.random(5), nx.random("2", 3)
    assert(a >= 0 and a < 5 and b >= 2 and b < 3)
end

local before = nx.getObjectTableSize()
local stack = nx.createLCStack(1, "two", {3, {four = true}}, host.domain, print)
print(tostring(stack):match("^nxRFL::Stack"), nx.getObjectTableSize() - before)
stack = nil
collectgarbage()
print(nx.getObjectTableSize() - before)
print(pcall(nx.createLCStack, {1, x = 2}))
print(select("#", nx.setLCPropertyAssignmentHook(function() error("no", 0) end)))
nx.setLCPropertyAssignmentHook()
nx.setLCPropertyAssignmentHook(5)

local request, seen = host.network:createRequest(), ""
nx.setLCPropertyAssignmentHook(function(_, name, value)
    seen = seen .. name .. "=" .. value
    nx.setLCPropertyAssignmentHook(nil)
end)
request.url = "once"
request.url = "again"
print(seen, request.url)

-- Stacks that hold each other are freed one after the other, however many there are.
local chain
for _ = 1, 200000 do chain = nx.createLCStack(chain, 1) end
local objects = nx.getObjectTableSize()
chain = nil
collectgarbage()
collectgarbage()
print(nx.getObjectTableSize() < objects)
