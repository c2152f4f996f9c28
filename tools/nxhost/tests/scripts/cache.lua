-- Derived texts, which are kept under a limit, paged out and rebuilt.
-- options: --cache 1K
local cache = host.cache
print(cache.memoryLimit)

local function counts(...)
    local numbers = {}
    for i, name in ipairs{...} do numbers[i] = name .. " " .. cache.statistics[name] end
    print(table.concat(numbers, ", "))
end
local function source(name, size)
    return cache:resource(name, function() print("build", name) return name:rep(size) end)
end
local a = source("a", 400)
local double = cache:derived("double", a, function(text) print("derive", #text) return text .. text end)
print(#double.text, a.inMemory, double.inMemory)
print(#a.text, a.inMemory, double.inMemory)
counts("builds", "evictions", "keys")

print "== locked"
cache.memoryLimit = 2000
a:lock()
print(#double.text, a.inMemory)
cache:clear()
print(a.inMemory, double.inMemory)
a:unlock()
cache:clear()
print(a.inMemory)

print "== on disk"
cache.memoryLimit = 1024
local paged = source("p", 700)
paged:keepOnDisk()
print(#paged.text, #a.text, paged.inMemory, paged.text == ("p"):rep(700))
counts("pagesOut", "pagesIn")

print "== removed"
a:remove()
for _, resource in ipairs{a, double} do print((select(2, pcall(function() return resource.text end)))) end
print(pcall(cache.derived, cache, "late", a, function() end))

print "== the same name is the same resource"
print(cache:resource("p", function() error "never" end).text == paged.text)
print "== what fails"
for name, build in pairs{fails = function() error("no text", 0) end, number = function() return 1 end} do
    print(name, (select(2, pcall(function() return cache:resource(name, build).text end)):gsub("^cache.lua:%d+: ", "")))
end
local big = source("big", 1000)
print(pcall(function() return big.text end))
cache.memoryLimit = 0
print(#big.text)
print(pcall(cache.resource, cache, "nothing", nil))
cache:startInteraction()
cache:endInteraction()
print(host.statistics():match("\ncache +limit 0 bytes, keys %d+,") ~= nil)
