-- Many connections in turn, with every kind of end: none may leave anything behind. The last two arguments are their
-- number and the KiB by which the process may grow.
local net = require "fetch"
local resident = require "resident"
local fates = {"Complete", "ConnectionFailed", "Cancelled"}

local function run(count)
    for i = 1, count do
        local fate = fates[i % 3 + 1]
        local connection = net.connection(fate == "ConnectionFailed" and "/early" or "/tell?header=x", function(request, made)
            if i % 2 == 0 then request.httpMethod = "POST" end
            request:addPostData("number", tostring(i))
            made:setProgressFunc(function() end)
            made:setStatusFunc(function()
                if fate == "Cancelled" and made.status == "Connected" then made:cancel() end
            end)
        end)
        connection:start()
        net.wait(connection)
        assert(connection.status == fate, connection.status)
    end
    collectgarbage()
    collectgarbage()
    return nx.getObjectTableSize(), collectgarbage("count"), resident()
end

local count = tonumber(arg[4])
local objects, script, all = run(300)
local objectsAfter, scriptAfter, allAfter = run(count)
print(count .. " connections: objects", objectsAfter - objects, "script KiB", math.floor(scriptAfter - script),
      "resident KiB", allAfter - all)
assert(objectsAfter == objects and scriptAfter - script < 16, "the script state has grown")
assert(allAfter - all < tonumber(arg[5]), "the process has grown")
