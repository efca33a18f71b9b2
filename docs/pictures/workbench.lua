-- Makes the picture of README.md: the overlay sample, with its place in the home folder.
--     HOME=FOLDER marlox-workbench FOLDER/samples/overlays.marlox --script docs/pictures/workbench.lua docs/pictures

local tools = {}
for _, tool in ipairs(document.tools()) do
    tools[tool:name()] = tool
end
local transform = tools.Transform1
document.select(transform)
document.time(26)
waitrender()
transform:input("Size"):set(0.6)
local centre = transform:input("Centre"):get(26)
local view = viewer()
view:focus()
view:drag({{view:normalised(centre.x, centre.y)}, {view:normalised(centre.x + 0.03, centre.y + 0.03)}})
transform:input("Angle"):expression("sin(time / 8) * 12")
waitrender()
view:move(view:normalised(0.58, 0.22))
wait(0.5)
window():screenshot(arg[1] .. "/workbench.png")
