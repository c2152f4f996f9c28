-- Chains of any length: texts derived from texts, and stacks that hold stacks.
local resource = host.cache:resource("0", function() return "x" end)
for i = 1, 20000 do
    local source = resource
    resource = host.cache:derived(tostring(i), source, function(text) return text == "fail" and error("no") or "y" .. #text end)
end
print(resource.text, host.cache.statistics.builds)
host.cache:clear()
print(resource.text, host.cache.statistics.builds)
host.cache.memoryLimit = 10
host.cache:clear()
print(resource.text)
host.cache.memoryLimit = 1
host.cache:clear()
print(pcall(function() return resource.text end))
local chain
for _ = 1, 200000 do chain = nx.createLCStack(chain) end
chain = nil
collectgarbage()
print "released"
