-- Values, steps and listeners of the document.
local document = host.document

print(document:get("size"), document:undo(), document:redo(), #document:names())
document:listen("size", function(name, value) print("heard", name, value) end)
document:set("size", 1)
document:set("tip", {shape = "round", points = {1, {x = true}, "three"}})
print(document:get("tip").points[2].x, table.concat(document:names(), " "), document.undoName, document.undoCount)
document:set("size", nil)
print(document:get("size"), table.concat(document:names(), " "))

print "== undo and redo"
while document:undo() do print("undone", document.redoName, document.redoCount) end
while document:redo() do end
print(document:get("size"), document.undoCount, document.historyBytes > 0)

print "== edits"
document:edit("Both", function() document:set("size", 5) document:set("tip", "flat") end)
print(document.undoName, document:get("size"), document:get("tip"))
print(pcall(document.edit, document, "Fails", function() document:set("size", 6) error("enough", 0) end))
print(document:get("size"), document.undoName)
document:edit("Outer", function()
    document:set("size", 7)
    pcall(document.edit, document, "Inner", function() document:set("size", 8) document:set("tip", 8) error() end)
    print("inside", document:get("size"), document:undo())
end)
document:undo()
print(document:get("size"), document:get("tip"))

print "== validators"
document:validate("strength", function(value) return math.max(0, math.min(1, value)) end)
document:set("strength", 3)
print(document:get("strength"))
local undone = document.undoName
for name, validator in pairs{strict = function(value) error(value .. " is not allowed", 0) end, empty = function() end,
                             wrong = function() return print end} do
    document:validate(name, validator)
    print(name, (select(2, pcall(document.set, document, name, 1)):gsub("^document.lua:%d+: ", "")))
    print(document:get(name), document.undoName == undone)
end
document:validate("removes", function() return nil end)
document:set("removes", 1)
print(document:get("removes"))

print "== what is no value"
for _, value in ipairs{print, document, {1, x = 2}, {host.network}} do
    print((select(2, pcall(document.set, document, "bad", value)):gsub(".*: ", "")))
end
local deep = {}
for _ = 1, 200 do deep = {deep} end
print(pcall(document.set, document, "deep", deep))
print(document:get("bad"), document:get("deep"))
for _, method in ipairs{"edit", "listen", "validate"} do print(pcall(document[method], document, "x", nil)) end
