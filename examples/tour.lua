-- Shows a script's use of a host: reads, edits with undo and redo, fetches, and derives data that the cache keeps.
-- usage: nxhost --cache 64K tour.lua URL FOLDER   (both hold the lists of the package iso-codes; see tour.sh)
local url, folder = ...
local document, cache, Context = host.document, host.cache, nxSupport.Context

local function heading(text) print("\n== " .. text) end
local function contents(path)
    local file = assert(io.open(path, "rb"))
    local text = file:read("*a")
    file:close()
    return text
end

heading "A real file: the countries of ISO 3166-1"
local text = contents(folder .. "/iso_3166-1.json")
local countries = nx.decodeJSON(text)["3166-1"]
print(#text .. " bytes, " .. #countries .. " countries, from " .. countries[1].name .. " to " .. countries[#countries].name)

heading "A document, edited with undo and redo"
document:listen("selected", function(_, value) print("  selected is now " .. (value and value.name or "nothing")) end)
document:set("selected", countries[1])
document:edit("Select the last", function()
    document:set("selected", countries[#countries])
    document:set("zoom", 1)
end)
for step, mode in ipairs{"InteractionStart", "InteractionPerform", "InteractionPerform", "InteractionEnd"} do
    Context.exec(host.domain, mode, function() document:set("zoom", 1 + step / 2) end)
end
print("zoomed in to " .. document:get("zoom") .. " in one drag; " .. document.undoCount .. " steps can be undone")
local _, failure = pcall(document.edit, document, "Fail", function()
    document:set("selected", nil)
    error("halfway through", 0)
end)
print("an edit that failed " .. failure .. " was taken back")
while document.undoCount > 0 do
    print("undo " .. document.undoName)
    document:undo()
end
print("redo " .. document.redoName)
document:redo()

heading "A page from a server"
local function fetch(path)
    local request = host.network:createRequest()
    request.url = url .. path
    request:addHeader("Accept", "*/*")
    local connection = host.network:createConnection()
    local parts = {}
    connection:setRequest(request)
    connection:setDataFunc(function(buffer) parts[#parts + 1] = buffer.data end)
    connection:setStatusFunc(function() print("  " .. path .. ": " .. connection.status) end)
    connection:start()
    while connection.status == "NotConnected" or connection.status == "Connected" do host.turn() end
    return table.concat(parts), connection
end
local body, connection = fetch("/iso_3166-1.json")
print(connection.responseStatus .. ", " .. connection:responseHeader("Content-Type") .. ", " .. connection.received ..
      " bytes, " .. (body == text and "the same as the file" or "not the file"))
print(select(2, fetch("/absent")).responseStatus .. " for what is not there")

heading("Derived resources, in " .. cache.memoryLimit .. " bytes")
-- The text of each list is a resource; the count of its entries is another one, derived from the first.
local counts = {}
for _, name in ipairs{"iso_3166-1", "iso_3166-3", "iso_15924", "iso_4217", "iso_639-2"} do
    local source = cache:resource(name, function() return contents(folder .. "/" .. name .. ".json") end)
    local count = cache:derived(name .. " counted", source, function(list)
        print("  counting " .. name .. ", " .. #list .. " bytes")
        local entries = 0
        for _ in list:gmatch('"name":') do entries = entries + 1 end
        return tostring(entries)
    end)
    if #counts == 0 then source:keepOnDisk() end  -- paged to a file when memory is short, and not built again
    counts[#counts + 1] = {name = name, source = source, count = count}
end
for round = 1, 2 do
    local line = {}
    for _, each in ipairs(counts) do
        line[#line + 1] = each.name .. " " .. each.count.text .. " in " .. #each.source.text
        if round == 1 then each.count:lock() end  -- small, and used again
    end
    print("round " .. round .. ": " .. table.concat(line, ", "))
end
local kept = {}
for _, each in ipairs(counts) do if each.source.inMemory then kept[#kept + 1] = each.name end end
local statistics = cache.statistics
print("texts still in memory: " .. table.concat(kept, ", "))
print(statistics.builds .. " builds, " .. statistics.hits .. " hits, " .. statistics.evictions .. " dropped for room, " ..
      statistics.pagesOut .. " to disk, " .. statistics.pagesIn .. " back, " .. statistics.memoryUsed .. " bytes in use")
print("memory is needed elsewhere: the first text goes, and with it what was built from it")
counts[1].source:remove()
local _, why = pcall(function() return counts[1].count.text end)
print(counts[1].name .. " counted: " .. why:gsub("^.*: ", ""))

heading "Left for later"
host.later(function() print("the run queue has run this, and the host shuts down") end)
