-- options: --sandbox --memory 8M
-- environment: NX_UNDO_LIMIT=3
-- Objects are charged as long as the host keeps them, and files are not for the sandbox.
local document = host.document
local root = document.root
print(pcall(document.open, document, "file"))
print(pcall(document.save, document, "file"))
local function refused(what, f)
    local ok, message = pcall(function() for i = 1, 1e9 do f(i) end end)
    print(what, ok, tostring(message):find("memory") ~= nil)
end
local page, ballast = ("x"):rep(100000), {}
local function fill() for i = 1, 10 do ballast[i] = i .. page end end
fill()
local function clear()
    for i = 1, 10 do ballast[i] = nil end  -- for some room
    collectgarbage()
    while root:find("[0]") do
        for i = 1, 1000 do if root:find("[0]") then root:find("[0]"):remove() end end
        collectgarbage()
    end
    for i = 1, 4 do root.small = i end  -- the history keeps three steps
    fill()
end
document:describe{name = "Node", children = {"Node"}}
nxSupport.Context.exec(host.domain, "NoTxn", function() for i = 1, 20000 do root:add("Node"):remove() end end)
refused("values", function(i) root:add("Node", {page = page .. i}) end)
local count = #root.children
print(count > 30, pcall(root.add, root, "Node", {page = page}), #root.children == count)
clear()
refused("objects", function(i) root:add("Node") end)
clear()
refused("free objects", function(i) root["free" .. i % 100] = i root.last = root:add("Node") end)
clear()
local deep = root
refused("deep objects", function(i) deep = deep:add("Node") end)
deep = nil
clear()
print(#root:add("Node", {page = page}).page)
refused("watchers", function() root:watch(print) end)
for i = 1, 10 do ballast[i] = nil end
collectgarbage()
refused("classes", function(i) document:describe{name = "Class" .. i, properties = {{name = "p", description = page .. i}}} end)
