-- Edits, undo, scripts, transfers and cache misses together: memory and handles must stay constant after a warm-up.
-- The last two arguments are the seconds to run and the KiB by which the process may grow.
local net = require "fetch"
local resident = require "resident"
local document, cache = host.document, host.cache
local seconds, growth = tonumber(arg[4]), tonumber(arg[5])

local process = io.open("/proc/self/stat"):read("*n")
local function handles()
    local pipe = io.popen("ls /proc/" .. process .. "/fd | wc -l")
    local count = pipe:read("*n")
    pipe:close()
    return count
end

local function value(i) return {number = i, text = ("x"):rep(i % 500), list = {i, i + 1, {deep = i % 7 == 0}}} end

local function edit(i)
    document:edit("step " .. i, function()
        for name = 1, 3 do document:set("value" .. name, value(i + name)) end
    end)
    pcall(document.edit, document, "fails", function()
        document:set("value1", i)
        error("taken back")
    end)
    if i % 3 == 0 then document:undo() end
    if i % 9 == 0 then document:redo() end
    if i % 200 == 0 then
        while document.undoCount > 0 do document:undo() end  -- the next step discards all of these
    end
end

local function transfer(i)
    local path = i % 5 == 0 and "/early" or i % 7 == 0 and "/status?code=404" or "/huge?size=" .. i % 100 * 1000
    local connection, body = net.fetch(path)
    assert(connection.status == "Complete" or path == "/early", connection.status)
    if path:find("huge") then assert(#body == i % 100 * 1000, "the body is not what was served") end
end

local function churn(i)
    local source = cache:resource("source " .. i % 200, function() return ("y"):rep(i % 50 * 200) end)
    local derived = cache:derived("derived " .. i % 200, source, function(text) return #text .. " bytes" end)
    if i % 4 == 0 then source:keepOnDisk() end
    assert(#derived.text > 0 and #source.text % 200 == 0)
    if i % 6 == 0 then source:remove() end
end

local function script(i)
    local made = assert(loadstring("local t = nx.decodeJSON2(...) return t.number, #t.list"))
    local number, count = made('{"number": ' .. i .. ', "list": [1, [2], {"a": "b"}]}')
    assert(number == i and count == 3)
    assert(not pcall(host.network.createRequest, i))
end

local rounds = 0
local function run(untilThen)
    while os.time() < untilThen do
        for _ = 1, 20 do
            rounds = rounds + 1
            edit(rounds)
            churn(rounds)
            script(rounds)
        end
        transfer(rounds / 20)
    end
    collectgarbage()
    collectgarbage()
    return {objects = nx.getObjectTableSize(), script = collectgarbage("count"), resident = resident(),
            handles = handles()}
end

local start = os.time()
local before = run(start + math.max(1, seconds / 4))
local warm = rounds
local after = run(start + seconds)
print(rounds .. " rounds in " .. os.time() - start .. " s; after the first " .. warm .. " of them:")
for name, most in pairs{objects = 50, script = 64, resident = growth, handles = 4} do
    print(("%10s %8d %+6d, at most +%d"):format(name, before[name], after[name] - before[name], most))
    assert(after[name] - before[name] <= most, name .. " have grown")
end
