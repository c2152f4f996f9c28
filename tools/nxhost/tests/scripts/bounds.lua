-- Bodies and times have limits. Options change them and scripts may shorten them.
-- options: --body 100K --time 20
local net = require "fetch"

for _, size in ipairs{102400, 102401, 5000000} do
    local connection, body = net.fetch("/huge?size=" .. size)
    print(size, connection.status, connection.error, connection.errorText, #body <= 102400)
end
local connection = net.fetch("/slow", function(_, made)
    print(made.timeLimit)
    made.timeLimit = 0.05
end)
print(connection.status, connection.error)
