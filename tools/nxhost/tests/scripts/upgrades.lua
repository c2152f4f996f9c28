-- Contents of earlier versions, and what a crash leaves.
local document, folder = host.document, select(3, ...) .. "/recovery"
local root = document.root
local place = folder:gsub("%p", "%%%0")
local function shortened(text) return (text:gsub(place, "FOLDER"):gsub("%x+%-[%x-]+", "ID")) end
local function refused(f, ...) print("refused:", shortened((select(2, pcall(f, ...)):gsub("^[^ ]*lua:%d+: ", "")))) end
os.execute("mkdir " .. folder)

print "== autosave and recovery"
-- A program that ends as a crash would, without discarding.
local function crashed(code) os.execute("/proc/$PPID/exe -e '" .. code .. "' " .. folder) end
crashed([[local d, folder = host.document, ...
    d:describe{name = "Circle", properties = {{name = "size", value = 1}}}
    d.root:add("Circle", {size = 4})
    d:autosave(folder, "plan.json")
    d.root:add("Circle", {size = 6})
    d:autosave(folder, "plan.json")]])
local found = document:recoverable(folder)
print(#found, found[1].name, math.abs(found[1].time - os.time()) < 100, shortened(found[1].path))
document:describe{name = "Circle", version = 2, properties = {{name = "radius", value = 1}, {name = "count", value = 0}}, upgrade =
    function(values, version)
        if values.size == 13 then error("too unlucky") end
        if values.size == 14 then return end
        if values.size == 15 then return print end
        if values.size == 16 then return {1, 2} end
        if values.size == 17 then return {} end
        if values.size == 18 then return {radius = "wide"} end
        if values.size == 19 then document.root.name = "changed" end
        if values.size == 20 then document:open(folder .. "/none.json") end
        return {radius = values.size / 2, count = version}
    end}
refused(document.describe, document, {name = "Square", upgrade = 1})
document:recover(found[1].path)
root = document.root
print(document.isModified, document.undoCount, #root.children, root:find("[1]").radius, root:find("[1]").count)
document:autosave(folder)
print(#document:recoverable(folder))  -- its own is in use
document:discardAutosave()
document:discardAutosave()
os.remove(found[1].path)
print(#document:recoverable(folder), #document:recoverable(folder .. "/none"))
refused(document.recover, document, found[1].path)
refused(document.recover, document, arg[0])
refused(document.autosave, document, folder .. "/none")
refused(document.autosave, document, "a\0b")
document:edit("Open", function() refused(document.recover, document, arg[0]) end)

print "== upgrades"
local function write(size)
    local file = io.open(folder .. "/old.json", "w")
    file:write(([[{"format": "nxDocument", "version": 1, "classes": {"Circle": 1}, "objects": [
        {"class": "Document", "id": "00000000-0000-4000-8000-000000000001", "children": [
            {"class": "Circle", "id": "00000000-0000-4000-8000-000000000002", "values": {"size": %d}}]}]}]]):format(size))
    file:close()
end
local function open(size)
    write(size)
    document:open(folder .. "/old.json")
end
for size = 13, 20 do
    if size == 17 then
        open(size)
        root = document.root
        print(root:find("[0]").radius, #root:find("[0]"):names())
        root:add("Circle", {radius = 5})
    else
        refused(open, size)
        print(document.root == root, #root.children)
    end
end
local text = document:copy{root:find("[1]")}:gsub('"Circle":2', '"Circle":1'):gsub('"radius":5', '"size":13')
refused(root.paste, root, text)
print(root:paste((text:gsub("13", "30")))[1].radius)
document:save(folder .. "/new.json")
document:open(folder .. "/new.json")
print(document:find("[2]").radius, document:find("[2]").count)
