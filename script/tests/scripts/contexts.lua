local Context, domain = nxSupport.Context, host.domain
local kept
Context.exec(domain, "Bare", function(context)
    print("in bare", context == domain.currentContext, context == domain.rootContext)
    context:addPostFunction(function(of) print("post", of == domain) end)
    kept = context
end)
print(pcall(kept.addPostFunction, kept, print))
Context.exec(domain, "Undecided", function(outer)
    Context.exec(domain, "Const", function(inner)
        print(domain.currentContext == inner, domain.rootContext ~= inner)
        inner:addPostFunction(function() print("inner has ended") error("after all") end)
    end)
    outer:addPostFunction(function() print("outer has ended") end)
    print("still in outer")
    error({})
end)
for _, call in ipairs{
    function() Context.exec(domain, "Sideways", print) end,
    function() Context.exec(domain, "Const") end,
    function() Context.exec(domain, "Const", nil) end,
    function() Context.exec(nil, "Const", print) end,
    function() domain.currentContext = nil end,
} do
    print(select(2, pcall(call)))
end
