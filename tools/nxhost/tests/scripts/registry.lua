-- The host's registry keeps values of any kind.
local registry = host.registry
registry:setKey("document", host.document)
registry:setKey("table", {1, 2, {3}})
registry:setKey("nothing", nil)
print(registry:getKey("document") == host.document, registry:getKey("table")[3][1])
print(registry:hasKey("nothing"), registry:getKey("nothing"), registry:hasKey("absent"), registry:getKey("absent"))
