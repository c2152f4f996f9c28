-- Objects of the document: their classes, values, places, steps, listeners and files.
local document, folder = host.document, select(3, ...)
local root = document.root
local place = folder:gsub("%p", "%%%0")
local function refused(f, ...) print("refused:", (select(2, pcall(f, ...)):gsub("^[^ ]*lua:%d+: ", ""):gsub(place, "FOLDER"))) end
local function show(object, indent)
    print((indent or "") .. object.class, object.name, object.radius)
    for _, child in ipairs(object.children) do show(child, (indent or "") .. "  ") end
end

print "== descriptions"
document:describe{name = "Node", properties = {{name = "name", value = ""}}}
document:describe{name = "Group", base = "Node", children = {"Node"}}
document:describe{name = "Circle", base = "Node", properties = {
    {name = "radius", value = 1, label = "Radius", unit = "mm", minimum = 0, maximum = 100, step = 0.5},
    {name = "fill", value = "solid", choices = {"none", "solid"}, group = "Look", description = "What is inside"},
    {name = "place", value = {0, 0}}, {name = "tags", value = {}}, {name = "after", value = "", reference = true},
    {name = "area", value = 3, readOnly = true, hidden = true}}}
for _, mistake in ipairs{
    {}, {name = "Circle"}, {name = "A", base = "Noed"}, {name = "A", children = {"Gruop"}}, {name = "A", version = 0.5},
    {name = "A", childen = {}}, {name = "A", properties = {{name = "p", minimun = 1}}}, {name = "A", children = {1}},
    {name = "A", properties = {{name = "p", value = 5, maximum = 1}}}, {name = "A", properties = {{name = "p", minimum = "1"}}},
    {name = "A", properties = {x = 1}}, {name = "A", properties = {{name = ("p"):rep(300)}}}, {1}} do
    refused(document.describe, document, mistake)
end
for i = 1, 33 do document:describe{name = "Base" .. i, base = i > 1 and "Base" .. i - 1 or ""} end
refused(document.describe, document, {name = "Base34", base = "Base33"})

print "== values"
local group = root:add("Group", {name = "Shapes"})
local small = group:add("Circle", {name = "small", radius = 2, color = "red"})
local large = group:add("Circle", {name = "large", after = small}, 1)
print(document.undoName, document.undoCount, small.radius, large.radius, small.color, small.nothing, large.after == small)
print(large:get("after") == small.id, large:target("after") == small, document:findId(small.id) == small, document:findId("?"))
small.radius, small.fill, small.after, small.free, small.tags = 3, "none", large, {1, {x = true}}, {}
print(small.radius, small.fill, small.after == large, small.free[2].x, table.concat(small:names(), " "))
small.fill, small.after = nil, nil
print(small.fill, small.after)
refused(small.set, small, "radius", -1)
for _, change in ipairs{
    function() small.radius = "wide" end, function() small.radios = 1 end, function() small.fill = "half" end,
    function() small.area = 4 end, function() small.place = {1, 2, 3} end, function() small.after = "nobody" end,
    function() small.parent = root end, function() small.add = 1 end, function() small.free = print end,
    function() small.after = document end, function() small[""] = 1 end, function() small[("n"):rep(300)] = 1 end,
    function() root:add("Circel") end, function() root:add("Circle", {radios = 2}) end, function() small:add("Circle") end,
    function() root:add("Circle", {radius = 101}) end, function() root:add("Circle", {}, 3) end,
    function() small.get("radius") end} do refused(change) end
small:set("radios", 1)  -- as it stands
print(small:get("radios"), small.radius, #root.children, document.undoName)

print "== places"
print(large.index, small.index, small.path, group.parent == root, root.parent, root.index, root.path)
print(document:find("Shapes/small") == small, group:find("large") == large, root:find("none"))
small:moveTo(group, 1)
large:moveTo(root)
print(small.index, large.path, #group.children)
for _, move in ipairs{function() root:moveTo(group) end, function() group:moveTo(group) end, function() root:remove() end,
                      function() group:moveTo(small) end, function() small:moveTo(group, 2) end} do refused(move) end
small:remove()
print(small.isInTree, large.after, small.radius)
refused(small.remove, small)
small:moveTo(root, 1)
print(small.isInTree, large.after == small)
show(root)

print "== steps"
while document:undo() do end
print(#root.children, small.isInTree, document.redoCount, document.isModified)
refused(function() small.radius = 1 end)
refused(group.add, group, "Circle")
print(document:undoTo(3), #root.children, document:find("Shapes/large") == large, document.steps[4], document:undoTo(99))
while document:redo() do end
print(pcall(document.edit, document, "Fails", function()
    root:add("Circle").radius = 7
    large:remove()
    small.radius = 50
    error("enough", 0)
end))
print(#root.children, large.index, small.radius, document.isModified)
nxSupport.Context.exec(host.domain, "Const", function()
    refused(small.set, small, "radius", 1)
    for _, change in ipairs{function() small.radius = 1 end, function() root:add("Circle") end, function() small:remove() end,
                            function() small:moveTo(group) end} do refused(change) end
end)

print "== listeners"
local function tell(who) return function(event, ...)
    local words = {}
    for i = 1, select("#", ...) do
        local word = select(i, ...)
        words[i] = type(word) == "userdata" and word.path or tostring(word)
    end
    print(who, event, unpack(words))
    return event ~= "removed"
end end
document:watch(tell "document")
group:watch(tell "group")
document:listen("size", function(...) print("listen", ...) end)
small.radius = 4
document:edit("Group", function() small:moveTo(group) group:add("Circle", {}, 1) small:moveTo(group, 1) root.size = 5 end)
document:undo()  -- removals end both
document:redo()
print(document:get("size"))
local isFollowed = true
document:watch(function()
    if isFollowed then refused(function() root:add("Circle") end) end
    return isFollowed
end)
document:undo()
isFollowed = false
document:redo()

print "== files"
root:watch(function() error("is heard") end)
for _, name in ipairs{"drawing.json", "drawing"} do
    local path = folder .. "/" .. name
    small.radius = #name
    document:save(path)
    print(document.isModified)
    small.radius = 1
    local id = small.id
    document:open(path)
    print(document.isModified, document.undoCount, document:get("size"), document.root == root)
    refused(function() return small.radius end)
    refused(function() small.radius = 1 end)
    refused(function() large:moveTo(root) end)
    root, small = document.root, document:findId(id)
    large = document:find("large")
    print(small.radius, large.after == small)
end
refused(document.open, document, folder .. "/none")
refused(document.open, document, arg[0])
refused(document.save, document, folder .. "/none/none")
refused(document.save, document, folder .. "/a\0b")
document:edit("Open", function() refused(document.open, document, folder .. "/drawing") end)
show(root)
for _, method in ipairs{"watch", "edit"} do refused(document[method], document, nil) end
