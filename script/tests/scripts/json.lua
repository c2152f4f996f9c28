local function show(value)
    if type(value) == "string" then return string.format("%q", value) end
    if type(value) == "number" then return string.format("%.17g", value) end
    if type(value) ~= "table" then return tostring(value) end
    local keys, parts = {}, {}
    for key in pairs(value) do keys[#keys + 1] = key end
    table.sort(keys, function(a, b) return tostring(a) < tostring(b) end)
    for i, key in ipairs(keys) do parts[i] = tostring(key) .. "=" .. show(value[key]) end
    return "{" .. table.concat(parts, " ") .. "}"
end

for _, text in ipairs{
    '[1, null, 3]', '[null]', '{"a": null}', '{"a": 1, "a": 2}', '{"a": 1, "a": null}', '[1, /* two */ 2] // three',
    '{"list": [[], {}, [[true]]], "text": "\\u00e9\\n\\u0000z", "plain": "words"}', '"alone"', 'false', '-0.5e1',
    '9007199254740993', '[1e400]', '9223372036854775808', '[1', '{"a" 1}', '', '[1] 2', '["\255"]', '[1]\0garbage',
} do
    print(text:gsub("%z.*", ""), select("#", nx.decodeJSON2(text)), show((nx.decodeJSON2(text))))
end
print(nx.decodeJSON2(42), select("#", nx.decodeJSON2()), select("#", nx.decodeJSON2({})),
      select("#", nx.decodeJSON2("1", 2)), select("#", nx.encodeJSON2({})))
local deep = nx.decodeJSON2(("["):rep(500) .. ("]"):rep(500))
local levels = 0
while deep do deep, levels = deep[1], levels + 1 end
print(levels, select("#", nx.decodeJSON2(("["):rep(100000) .. ("]"):rep(100000))))
local many = {}
for i = 1, 20000 do many[i] = '{"n":' .. i .. ',"t":"text ' .. i .. '"}' end
many = nx.decodeJSON2("[" .. table.concat(many, ",") .. "]")
print(#many, many[20000].n, many[20000].t)

print(nx.decodeJSON('{"a": [1, 2.5, "x\\u0000y"]}').a[3] == "x\0y", select("#", nx.decodeJSON("null")))
for _, text in ipairs{'[1,\n 2 3]', '', '[1]\0garbage', ("["):rep(100000) .. ("]"):rep(100000)} do print(nx.decodeJSON(text)) end
print(pcall(nx.decodeJSON, {}))
print(nx.encodeJSON({1, -0.0, 0.1, 2^64, {b = "\n", a = true}}), nx.encodeJSON({}), nx.encodeJSON("text"))
print(nx.encodeJSON({k = {1, 2}}, 2))
for _, value in ipairs{print, 1/0, {1, x = 2}} do print(nx.encodeJSON(value)) end
print(nx.encodeJSON(nil))
print(pcall(nx.encodeJSON))
print(pcall(nx.encodeJSON, 1, {}))
for _, indent in ipairs{-1, 1.5, 101, 0/0, 1e300, "2"} do print(nx.encodeJSON({1}, indent)) end
local text = nx.encodeJSON(nx.decodeJSON('[0.1,1e300,-5e-324,1.5e20]'))
print(text, nx.encodeJSON(nx.decodeJSON(text)) == text)
