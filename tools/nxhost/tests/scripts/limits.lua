-- The environment sets the limits of the history and the search path of modules.
-- environment: NX_UNDO_LIMIT=2 NX_UNDO_MEMORY_LIMIT=1K
local document = host.document
for i = 1, 5 do document:set("x", i) end
print(document.undoCount)
for i = 1, 2 do document:set("long", ("x"):rep(700) .. i) end
print(document.undoCount, document.historyBytes < 2000)
print(pcall(require, "fetch"))
print(host.network:createConnection().timeLimit)
