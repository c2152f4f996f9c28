-- A script ends itself from any place, even where errors are caught.
host.later(function()
    coroutine.resume(coroutine.create(function() print("never", pcall(os.exit, 5)) end))
    print "never"
end)
host.later(function() print "never" end)
while true do pcall(host.turn) end
