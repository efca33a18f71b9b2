-- A walk through the workbench, played with synthesised mouse and keys: what ./run shows on a machine
-- without a display. Each step checks what it claims. The pictures go to the folder in arg[1].

local out = arg[1] or "out"
local count = 0

local function shot(widget, name, what)
    count = count + 1
    local path = string.format("%s/%02d-%s.png", out, count, name)
    widget:screenshot(path)
    print(string.format("%-34s %s", path, what))
end

-- Drags the knob of a drawn slider to a value: the track's ends tell where that is.
local function dragto(slider, value)
    local y = slider:geometry().height / 2
    local low, high = slider:property("pixelLow"), slider:property("pixelHigh")
    local from = slider:property("knobPixel")
    local to = from
    -- A centred track has its own scale on each side of the centre.
    if slider:property("centred") then
        local centre, middle = slider:property("centre"), slider:property("pixelCentre")
        if value >= centre then
            to = middle + (value - centre) / (slider:property("maxValue") - centre) * (high - middle)
        else
            to = middle - (centre - value) / (centre - slider:property("minValue")) * (middle - low)
        end
    else
        local lowest = slider:property("minValue")
        to = low + (value - lowest) / (slider:property("maxValue") - lowest) * (high - low)
    end
    local points = {}
    for i = 0, 10 do
        points[#points + 1] = {from + (to - from) * i / 10, y}
    end
    slider:drag(points)
end

local grade
for _, tool in ipairs(document.tools()) do
    if tool:class() == "BrightnessContrast" then
        grade = tool
    end
end
grade = grade or document.add("BrightnessContrast")
document.select(grade)
waitrender()
action("fit")
waitrender()
shot(window(), "opened", "The workbench with its picture: tools, viewer, inspector, time line")

-- One drag is one undo entry, and the picture follows.
local gain = grade:input("Gain")
local slider = control("Gain"):widget("slider")
local entries = #undo.texts()
log.clear()
dragto(slider, 2)
waitrender()
assert(math.abs(gain:get() - 2) < 0.05, "the drag set the gain to " .. gain:get())
assert(#undo.texts() == entries + 1, "one drag, one undo entry")
assert(#log.values() > 1, "values were written while dragging")
shot(window(), "gain", "Gain dragged to 2: '" .. undo.text() .. "' is one entry of the history")

dragto(control("Contrast"):widget("slider"), 0.4)
dragto(control("Saturation"):widget("slider"), 1.4)
waitrender()
shot(window(), "graded", "Contrast and saturation raised")
shot(inspector(), "inspector", "The inspector's sliders, with centred ranges and range labels")

-- Typing: arithmetic in the value field.
local edit = control("Gain"):widget("edit")
edit:focus()
edit:key("A", {ctrl = true})
edit:type("3/2")
edit:key("Return")
assert(gain:get() == 1.5, "3/2 typed gives " .. gain:get())

-- Undo and redo restore values exactly.
undo.undo()
assert(math.abs(gain:get() - 2) < 0.05)
undo.redo()
assert(gain:get() == 1.5)

-- Keys: the gain rises over the frame range.
local first, last = document.range()
document.time(first)
gain:addkey(first, "smooth")
document.time(last)
gain:set(4)
document.time((first + last) / 2)
waitrender()
local between = gain:get()
assert(between > 1.5 and between < 4, "between the keys the gain is " .. between)
shot(window(), "keys", "Two keys on the gain; the time line shows them, the slider follows")

-- An expression drives another input.
local lift = grade:input("Lift")
lift:expression("sin(time / 8) * 0.05")
document.time(first + 12)
waitrender()
assert(math.abs(lift:get() - math.sin(document.time() / 8) * 0.05) < 1e-9, lift:problem())
shot(inspector(), "expression", "An expression on the lift, in a line below its slider")
lift:expression("")

-- A blur behind it, then the channels of the view.
local blur = document.add("Blur")
waitrender()
dragto(control(blur:inputs()[2]):widget("slider"), 12)
waitrender()
shot(window(), "blur", "A second tool: the picture blurred")
action("channelluminance")
waitrender()
shot(viewer(), "luminance", "The viewer's luminance")
action("channelcolour")
blur:enabled(false)
waitrender()

render(out .. "/processed.exr")
render(out .. "/processed.png")
print(string.format("%-34s %s", out .. "/processed.exr", "The processed picture, floats"))
print(string.format("%-34s %s", out .. "/processed.png", "The processed picture for the screen"))

document.save(out .. "/walkthrough.marlox")
print(string.format("%-34s %s", out .. "/walkthrough.marlox", "The document"))
assert(undo.depth() == 0, "every gesture is closed")
print("walkthrough done")
