-- Some work on the sample scene, so that the picture of the first page shows a history.
local spider = scene.find("Spiders/Spider")
spider.position = {-0.4, 0.2, 0.85}
scene.find("Box").detail = "full"
print(spider.path .. " is at " .. table.concat(spider.position, ", "))
