-- A script chooses its end, from wherever it is, whatever it catches.
host.later(function()
    local succeeded = pcall(os.exit, 5)
    for _ = 1, 1e9 do end
    print("never", succeeded)
end)
host.later(function() print "never" end)
while true do pcall(host.turn) end
