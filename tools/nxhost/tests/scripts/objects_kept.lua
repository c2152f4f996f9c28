-- options: --sandbox --memory 8M
-- environment: NX_UNDO_LIMIT=3
-- Objects are charged as long as the host keeps them, and files are not for the sandbox.
local document = host.document
local root = document.root
for _, method in ipairs{"open", "save", "autosave", "recoverable", "recover", "discardAutosave"} do
    print(method, pcall(document[method], document, unpack(method == "discardAutosave" and {} or {"file"})))
end
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
clear()
local node = root:add("Node", {tags = {1, 2, 3}})
local several = {}
for i = 1, 100 do several[i] = node end
refused("copies", function(i) document:duplicate{node} end)
clear()
node = root:add("Node", {tags = {1, 2, 3}})
local text = document:copy{node}
refused("pasted objects", function(i) root:paste(text) end)
clear()
-- Dense texts become much larger as items.
text = text:gsub('"tags":', '"tags":[' .. ("1,"):rep(200000) .. '1],"others":')
refused("pasted values", function(i) root:paste(text) end)
print(#root.children)
-- A class that only a copy has keeps all the versions that the copy names.
local versions, unknown = {}, {}
for i = 1, 500 do versions[i] = ('"c%d":1'):format(i) end
for i = 1, 50 do unknown[i] = ('{"class":"c%d","id":"00000000-0000-4000-8000-%012d"}'):format(i, i) end
versions = '{"format":"nxDocument","version":1,"classes":{' .. table.concat(versions, ",") .. '},"objects":['
text = versions .. unknown[1] .. "]}"
refused("classes of copies", function(i) root:paste(text) end)
print(#root.children < 400)
clear()
refused("more classes", function(i) root:paste(versions .. table.concat(unknown, ",") .. "]}") end)
clear()
node = root:add("Node", {page = page})
for i = 1, 100 do document:duplicate{node} end  -- which share the page
print(#root.children, document:find("[99]").page == page)
refused("text", function() text = document:copy(root.children) end)
clear()
node = root:add("Node")
local panels = {}
refused("panels", function(i) panels[i] = document:panel{node} end)
print(#panels < 10000)
panels = nil
collectgarbage()
refused("selection", function(i) several[i] = node if i % 10000 == 0 then document:select(several) end end)
several = nil
document:select{}
collectgarbage()
-- What was made and undone again is free.
clear()
node = root:add("Node", {tags = {1, 2, 3}})
text = document:copy{node}
for i = 1, 6000 do
    document:duplicate{node}
    document:undo()
    root:paste(text)
    document:undo()
end
refused("watchers", function() root:watch(print) end)
for i = 1, 10 do ballast[i] = nil end
collectgarbage()
refused("classes", function(i) document:describe{name = "Class" .. i, properties = {{name = "p", description = page .. i}}} end)
