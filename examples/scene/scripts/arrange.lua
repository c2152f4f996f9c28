-- Puts the objects at the top in a row, two metres apart.
for i, object in ipairs(scene.root().children) do object.position = {2 * (i - 1), 0, object.position[3]} end
