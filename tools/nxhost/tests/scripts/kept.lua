-- options: --sandbox --memory 12M
-- environment: NX_UNDO_LIMIT=3
-- Values are charged as long as the host keeps them.
local page = ("x"):rep(100000)
local function refused(what, f)
    local ok, message = pcall(function() for i = 1, 1e9 do f(i) end end)
    print(what, ok, tostring(message):find("memory") ~= nil)
end
-- The history keeps three of them and drops the others.
for i = 1, 2000 do host.document:set("page", page .. i) end
print(host.document.undoCount)
print(pcall(host.document.set, host.document, ("n"):rep(300), 1))
print(pcall(host.document.edit, host.document, ("n"):rep(300), print))
local ran = 0
refused("functions", function() host.later(function() ran = ran + 1 end) end)
while host.turn() do end
collectgarbage()
print(ran > 1000)
refused("listeners", function() host.document:listen("page", print) end)
