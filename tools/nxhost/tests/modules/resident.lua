-- The resident memory of this process in KiB.
return function()
    for line in io.lines("/proc/self/status") do
        local kibibytes = line:match("VmRSS:%s*(%d+)")
        if kibibytes then return tonumber(kibibytes) end
    end
end
