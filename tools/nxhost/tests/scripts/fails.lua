-- A script that fails is told with place and trace, and leaves nothing running.
host.later(function() print "never" end)
local function inner(value) return value.field end
local function outer() local x = inner(nil) return x end
outer()
