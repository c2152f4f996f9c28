-- Describes two classes, and edits objects of them.
local document = host.document
document:describe{name = "Group", properties = {{name = "name", value = ""}}}
document:describe{name = "Circle", properties = {
    {name = "name", value = ""},
    {name = "radius", value = 1, unit = "mm", minimum = 0},
    {name = "after", value = "", reference = true},
}}
document:watch(function(event, object) print(event, object.class) end)
local group = document.root:add("Group", {name = "Shapes"})
document:edit("Two circles", function()
    local first = document.root:add("Circle", {name = "first", radius = 2})
    first.radius = 3
    document.root:add("Circle", {name = "second", after = first})
end)
print(document:find("second").after.radius, #document.root.children, document.undoName)
print(pcall(function() group.nmae = "All" end))
document:undo()
print(document:find("second"), document.redoName)
