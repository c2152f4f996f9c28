-- A failed script is reported with place and trace, and leaves nothing running.
host.later(function() print "never" end)
local function inner(value) return value.field end
local function outer() local x = inner(nil) return x end
outer()
