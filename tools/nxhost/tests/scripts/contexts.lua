-- The mode of a context decides what happens to the changes made in it.
local document, Context = host.document, nxSupport.Context
local function exec(mode, function_) Context.exec(host.domain, mode, function_) end
local function state() return tostring(document:get("x")), document.undoCount end

exec("Momentary", function() document:set("x", 1) document:set("x", 2) end)
print("one step", document.undoName, state())
for value, mode in ipairs{"InteractionStart", "InteractionPerform", "InteractionPerform", "InteractionEnd"} do
    exec(mode, function() document:set("x", value * 10) end)
end
print("a drag is one step", document.undoName, state())
exec("InteractionStart", function() document:set("x", 50) end)
exec("InteractionEnd", function() document:set("x", 60) end)
print("the next drag is another", state())
document:undo()
document:undo()
print("undone", state())
exec("NoTxn", function() document:set("y", 1) end)
exec("Transient", function() document:set("y", 2) end)
print("not recorded", document:get("y"), state())
exec("Const", function() print(pcall(document.set, document, "x", 9)) end)
exec("Momentary", function() document:set("x", 9) error "taken back" end)
print("failed", state())
exec("Undecided", function()
    exec("Momentary", function() document:set("x", 3) end)
    print("inside an undecided one", document:undo(), state())
end)
print(nxSupport.ci(nxNet.Manager) == host.network, nxSupport.ci(urKRCache.Manager) == host.cache,
      nxSupport.ci(nxSupport.Domain) == host.domain, nxSupport.ci(nxTXN.Manager) ~= nil)

-- A span is a call shown on the time line.
host.span("layout", function() print("in the span") end)
print(pcall(host.span, "fails", function() error("inside", 0) end))
print(pcall(host.span, "nothing"))
print(host.describe("nxNet::Manager"):match("[^\n]*"), host.describe("nothing") == "")
