local registry = host.registry
print(registry:hasKey("key"), registry:getKey("key"))
registry:setKey("key", nil)
print(registry:hasKey("key"), registry:getKey("key"))
local shared = { 1, { text = "a\0b" }, true }
registry:setKey("table", shared)
shared[1] = 2
print(registry:getKey("table")[1], #registry:getKey("table")[2].text, registry:getKey("table") ~= shared)
registry:setKey("function", function(x) return x + 1 end)
print(registry:getKey("function")(1))
registry:setKey("self", registry)
print(registry:getKey("self") == registry)
registry:setKey("", 0.5)
print(registry:getKey(""))
for _, call in ipairs({
    function() registry:setKey("key") end,
    function() registry:setKey({}, 1) end,
    function() registry:getKey() end,
    function() registry:setKey("key", { 1, x = 2 }) end,
}) do print(select(2, pcall(call))) end
