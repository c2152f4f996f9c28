-- options: --sandbox
-- As ends.lua, by the function that sandboxed scripts have.
host.later(function() print "never" end)
coroutine.wrap(function() print("never", pcall(host.exit, 4)) end)()
print "never"
