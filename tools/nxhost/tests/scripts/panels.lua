-- What a user selects, copies and edits together.
local document = host.document
local root = document.root
local function refused(f, ...) print("refused:", (select(2, pcall(f, ...)):gsub("^[^ ]*lua:%d+: ", ""))) end
local function names(objects)
    local found = {}
    for i, object in ipairs(objects) do found[i] = object.name end
    return table.concat(found, " ")
end

document:describe{name = "Node", properties = {{name = "name", value = ""}}}
document:describe{name = "Circle", base = "Node", properties = {
    {name = "radius", value = 1, label = "Radius", unit = "mm", control = "dial", minimum = 0, maximum = 100, step = 0.5},
    {name = "fill", value = "solid", choices = {"none", "solid"}, group = "Look", description = "What is inside"},
    {name = "after", value = "", reference = true}, {name = "area", value = 3, readOnly = true}, {name = "secret", hidden = true}}}
document:describe{name = "Dot", base = "Node", children = {"Node"}, properties = {{name = "radius", value = 1, maximum = 5}}}
local a = root:add("Circle", {name = "a"})
local b = root:add("Circle", {name = "b", radius = 2, after = a})
local dot = root:add("Dot", {name = "dot"})
local inner = dot:add("Dot", {name = "inner"})

print "== selection"
local isHeard = true
document:watch(function(event)
    if event == "selected" then print(event, names(document.selection)) end
    return isHeard
end)
document:select{b, a}
b:remove()
print(names(document.selection))
document:undo()
print(names(document.selection), document.selection[1] == b, document.undoName)
for _, objects in ipairs{{1}, {document}, 1} do refused(document.select, document, objects) end
nxSupport.Context.exec(host.domain, "Const", function() document:select{} end)
isHeard = false
document:select{inner}

print "== panels"
local panel = document:panel{b, a, a}
for _, row in ipairs(panel.rows) do
    print(row.name, row.label, row.description, row.group, row.unit, row.control, row.minimum, row.maximum, row.step, #row.choices,
          row.readOnly, row.isMixed, row.value)
end
local radius, after, fill = panel:find("radius"), panel:find("after"), panel:find("fill")
print(panel:find("secret"), panel:find("none"), fill.choices[1], fill.choices[2])
local count = document.undoCount
radius.value = 7
print(radius.value, radius.isMixed, a.radius, b.radius, document.undoName, document.undoCount - count)
radius.value = 8
print(document.undoCount - count, document:undo(), radius.value)
document:undo()
print(radius.value, radius.isMixed)
after.value = dot
print(after.value == dot, a.after == dot, b.after == dot)
after.value = nil
print(after.value, after.isMixed, b.after)
for _, change in ipairs{
    function() radius.value = "wide" end, function() radius.value = 101 end, function() fill.value = "half" end,
    function() panel:find("area").value = 4 end, function() after.value = "nobody" end, function() radius.step = 1 end,
    function() radius.value = print end} do refused(change) end
local mixed = document:panel{a, dot}
print(#mixed.rows, mixed.rows[2].name)
refused(function() mixed.rows[2].value = 6 end)  -- of which the circle has heard by then
print(a.radius, dot.radius, document.undoCount - count)
nxSupport.Context.exec(host.domain, "Const", function() refused(function() radius.value = 1 end) end)
print(#document:panel{}.rows)
local lost = root:add("Circle")
local ofLost = document:panel{a, lost}
document:undo()
refused(function() ofLost:find("radius").value = 1 end)
document:watch(function() panel, radius, fill, after = nil collectgarbage() return false end)
radius.value = 9
print(a.radius, b.radius, panel)

print "== copies"
local text = document:copy{b, a, inner, dot}
print(select(2, text:gsub('"class"', "")), #nx.decodeJSON(text).objects)
local pasted = root:paste(text, 1)
print(names(pasted), root.children[1] == pasted[1], document.undoName, pasted[3].children[1].name)
pasted[1].after = pasted[2]
document:undo() document:undo()
print(#root.children, pasted[1].isInTree)
b.after = a
local copies = document:duplicate{a, b, dot, inner}
print(names(copies), names(root.children), copies[2].after == copies[1], copies[1].radius, document.undoName)
document:undo()
print(names(dot:paste(text)), #dot.children)
for _, paste in ipairs{
    function() a:paste(text) end, function() root:paste(text, 5) end, function() root:paste("[1,") end, function() root:paste("{}") end,
    function() root:paste((text:gsub('"radius":9', '"radius":-9'))) end, function() lost:paste(text) end, function() root:paste() end,
    function() root:paste(("["):rep(100000)) end} do refused(paste) end
local before = #root.children
nxSupport.Context.exec(host.domain, "Const", function() refused(root.paste, root, text) refused(document.duplicate, document, {a}) end)
for _, objects in ipairs{{root}, {lost}, {inner, root}, {1}} do refused(document.duplicate, document, objects) end
refused(document.copy, document, {})
root:add("Circle", {endless = 1 / 0})
refused(document.copy, document, {root})
print(#document:duplicate{}, #root.children - before)

print "== deep values"
local deep = ("["):rep(100000) .. ("]"):rep(100000)
local odd = root:paste((document:copy{root:add("Node")}:gsub('"class":"Node"', '"class":"Node","values":{"deep":' .. deep .. "}", 1)))[1]
refused(function() return odd.deep end)
print(#document:copy{odd} > 200000)
document:watch(function(event) if event == "inserted" then error("is heard") end end)
print(#root:paste(document:copy{lost}))
