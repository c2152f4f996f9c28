-- A scene of the meshes that the package assimp-testmodels installs.
local models = "/usr/share/assimp/models/"

local function add(parent, name, file, values)
    local mesh = parent:add("Mesh", name)
    mesh.file = models .. file
    for key, value in pairs(values) do mesh[key] = value end
    return mesh
end
local function scaled(x) return {{x, 0, 0}, {0, x, 0}, {0, 0, x}} end
local function upright(x) return {{x, 0, 0}, {0, 0, x}, {0, -x, 0}} end

local spiders = scene.root():add("Group", "Spiders")
local spider = add(spiders, "Spider", "OBJ/spider.obj",
                   {position = {0, 0, 0.85}, axes = upright(0.02), colour = {0.55, 0.45, 0.4, 1}})
add(spiders, "Young spider", "STL/Spider_binary.stl",
    {position = {2.4, -1.6, 0.33}, axes = scaled(0.2), colour = {0.7, 0.6, 0.35, 1}})
add(scene.root(), "Wuson", "OFF/Wuson.off",
    {position = {-3, 0.5, 0}, axes = upright(1.3), colour = {0.4, 0.6, 0.8, 1}})
add(scene.root(), "Box", "OBJ/box.obj", {position = {1, 3, 0.5}, colour = {0.75, 0.5, 0.3, 1}})
add(scene.root(), "Sphere", "STL/sphereWithHole.stl",
    {position = {-1, -4, 0}, axes = scaled(0.6), colour = {0.5, 0.7, 0.5, 1}})
scene.select{spider}
print("This scene has " .. #scene.root().children .. " objects at its top.")
