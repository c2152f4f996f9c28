-- Edits a document and undoes the edit.
local document = host.document
document:edit("Greet", function() document:set("greeting", {text = "hello", to = arg[1]}) end)
print(document:get("greeting").text, document:get("greeting").to)
print(document:undo(), document:get("greeting"), document.redoName)
