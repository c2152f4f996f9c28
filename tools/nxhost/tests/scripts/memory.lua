-- options: --sandbox --memory 24M
-- Native memory that scripts cause is counted, collected when they drop it, and refused beyond the limit.
local page = ("x"):rep(100000)
local kept = {}
local function refused(what, f)
    local ok, message = pcall(function() for i = 1, 1e9 do f(i) end end)
    kept = {}
    collectgarbage()
    print(what, ok, tostring(message):find("memory") ~= nil)
end
local function request(i)
    local made = host.network:createRequest()
    made.url = page .. i
    made:addHeader("h", page .. i)
    return made
end
for i = 1, 500 do request(i) end
for i = 1, 1000 do host.registry:setKey("same", {page .. i}) end
for i = 1, 3000 do host.cache:resource("page" .. i % 2, function() return page end).text:len() end
print "dropped"
refused("requests", function(i) kept[i] = request(i) end)
refused("stacks", function(i) kept[i] = nx.createLCStack({page, page, i}) end)
refused("a shared text", function() local t = {} for i = 1, 1000 do t[i] = page end host.registry:setKey("t", t) end)
refused("transfers", function(i)
    kept[i] = host.network:createConnection()
    kept[i]:start()
end)
refused("names of resources", function(i) host.cache:resource(page .. i, print) end)
