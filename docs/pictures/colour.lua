-- Makes the pictures of docs/colour.md from the grade sample.
--     HOME=FOLDER marlox-workbench FOLDER/samples/grade.marlox --script docs/pictures/colour.lua docs/pictures

local tools = {}
for _, tool in ipairs(document.tools()) do
    tools[tool:class()] = tool
end
document.select(tools.ColorCorrector)
waitrender()
wait(0.5)
window():screenshot(arg[1] .. "/corrector.png")

local background = document.add("Background")
background:input("Red"):set(1.35)
background:input("Green"):set(0.42)
background:input("Blue"):set(0.11)
waitrender()
local colour = control("Red")
colour:widget("buttonexpand"):click(8, 8)
wait(0.5)
colour:screenshot(arg[1] .. "/colour.png")
