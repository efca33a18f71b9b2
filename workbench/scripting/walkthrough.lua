-- A walk through the workbench, played with synthesised mouse and keys: what ./run shows on a machine
-- without a display. Each step checks what it claims. The pictures go to the folder in arg[1].

local out = arg[1] or "out"
local count = 0

local function tell(path, what)
    print(string.format("%-34s %s", path, what))
end

local function shot(widget, name, what)
    count = count + 1
    local path = string.format("%s/%02d-%s.png", out, count, name)
    widget:screenshot(path)
    tell(path, what)
end

local function near(a, b, by)
    return math.abs(a - b) <= (by or 1e-9)
end

-- Drags the knob of a drawn slider until it shows a value, as a hand does: further while it is too
-- low, back when it is too high.
local function dragto(slider, value)
    local y = slider:geometry().height / 2
    local low, high = slider:property("pixelLow"), slider:property("pixelHigh")
    slider:press(slider:property("knobPixel"), y)
    for _ = 1, 12 do
        local x = (low + high) / 2
        slider:move(x, y)
        if slider:property("value") < value then
            low = x
        else
            high = x
        end
    end
    slider:release(high, y)
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
local px, py = viewer():normalised(0.5, 0.8)
local before = viewer():grab():pixel(px, py)[1]
log.clear()
dragto(slider, 1.6)
waitrender()
assert(near(gain:get(), 1.6, 0.05), "the drag set the gain to " .. gain:get())
assert(viewer():grab():pixel(px, py)[1] > before, "the picture follows")
assert(#undo.texts() == entries + 1, "one drag, one undo entry")
assert(#log.values() > 1, "values were written while dragging")
shot(window(), "gain", "Gain dragged to 1.6: '" .. undo.text() .. "' is one entry of the history")

dragto(control("Contrast"):widget("slider"), 0.2)
dragto(control("Saturation"):widget("slider"), 1.25)
waitrender()
shot(window(), "graded", "Contrast and saturation raised")

-- A nest folds the controls below its heading. That is no edit.
local range = control("Range")
entries = #undo.texts()
range:click(40, 10)
assert(not control("Posterise"):visible(), "the nest is folded")
assert(#undo.texts() == entries and grade:input("Range"):get() == 0, "remembered without an edit")
shot(inspector(), "folded", "The controls below 'Range' are folded; the document remembers it")
range:key("Right")
assert(control("Posterise"):visible(), "the nest is open")

-- Typing: arithmetic in the value field. Ctrl on the slider is fine.
local edit = control("Gain"):widget("edit")
edit:key("A", {ctrl = true})
edit:type("5/4")
edit:key("Return")
assert(gain:get() == 1.25, "5/4 typed gives " .. gain:get())
slider:key("Right", {ctrl = true})
assert(gain:get() > 1.25 and gain:get() < 1.3, "a fine step gives " .. gain:get())
undo.undo()
assert(gain:get() == 1.25, "undo restores exactly")

-- The context menu of a control, opened with the right button.
answer(function(menu)
    shot(menu, "menu", "The context menu of the gain; 'Animate' is chosen")
    menu:run("Animate")
end)
slider:click(slider:property("knobPixel"), 8, {button = "right"})
assert(#gain:keys() == 1, "the menu entry animates the gain")

-- Keys: the gain rises over the frame range.
local first, last = document.range()
document.time(first)
gain:addkey(first, "smooth")
document.time(last)
gain:set(2.5)
local middle = math.floor((first + last) / 2)
document.time(middle)
waitrender()
if last > first then
    assert(gain:get() > 1.25 and gain:get() < 2.5, "between the keys the gain is " .. gain:get())
end
shot(window(), "keys", "Two keys on the gain; the time line shows them, the slider follows")

-- An expression drives another input.
local lift = grade:input("Lift")
lift:expression("sin(time / 8) * 0.05")
document.time(first + 12)
waitrender()
assert(near(lift:get(), math.sin(document.time() / 8) * 0.05), lift:problem())
shot(inspector(), "inspector",
    "The inspector: centred sliders, range labels, keys on the gain, an expression on the lift")
lift:expression("")

-- Further tools: a blur whose height follows its width, and a turn.
local blur = document.add("Blur")
blur:input("YSize"):expression("XSize / 4")
waitrender()
dragto(control("XSize"):widget("slider"), 24)
waitrender()
assert(near(blur:input("XSize"):get(), 24, 1), "the blur is " .. blur:input("XSize"):get())
assert(near(blur:input("YSize"):get(), blur:input("XSize"):get() / 4))
shot(window(), "blur", "A second tool: a blur, its height tied to its width by an expression")
blur:enabled(false)
waitrender()

-- Overlays: marks over the picture, dragged there. A tool is added for each and goes again.
action("fit")
action("zoomout")
local view = viewer()

-- A drag in the viewer from an image position (0 to 1, y up) by pixels, with a picture of its middle.
local function place(x, y, dx, dy, name, what)
    local px, py = view:normalised(x, y)
    local entries = #undo.texts()
    view:move(px, py)
    view:press(px, py)
    view:move(px + dx / 2, py + dy / 2)
    view:move(px + dx, py + dy)
    waitrender()
    shot(view, name, what)
    view:release(px + dx, py + dy)
    waitrender()
    assert(#undo.texts() == entries + 1, "one drag, one undo entry")
end

local move = document.add("Transform")
local centre = move:input("Centre")
move:input("Size"):set(0.5)
waitrender()
place(0.5, 0.5, 120, -60, "crosshair", "A crosshair places the picture; it follows while it is dragged")
assert(centre:get().x > 0.5 and centre:get().y > 0.5)
centre:addkey(document.time())
document.time(document.time() + 20)
local at = centre:get()
place(at.x, at.y, -200, 90, "path", "Another key by another drag: the centre has a path")
assert(#centre:keys() == 2)
at = centre:get()
local reach = select(1, view:normalised(0.15 * 0.5, 0)) - select(1, view:normalised(0, 0))
place(at.x + 0.15 * 0.5, at.y, 0.3 * reach - reach, -0.95 * reach, "angle", "The angle turns by its handle")
assert(near(move:input("Angle"):get(), 72.5, 3), "the angle is " .. move:input("Angle"):get())
local shadow = document.add("DropShadow")
local origin = shadow:input("Origin"):get()
place(origin.x + shadow:input("OffsetX"):get(), origin.y + shadow:input("OffsetY"):get(), 60, 40, "offset",
    "The shadow's offset from its origin")
local gradient = document.add("ColorGradient")
gradient:input("Behind"):set(1)
local start = gradient:input("Start"):get()
place(start.x, start.y, 90, 60, "points", "A gradient between two joined points, behind the picture")
document.add("Crop")
place(0, 1, 80, 50, "crop", "A crop by two of its edges at once")
for _, name in ipairs({"Crop", "ColorGradient", "DropShadow", "Transform"}) do
    document.tool(name .. "1"):remove()
end
document.time(first + 12)
document.select(blur)
waitrender()

-- The viewer: actual pixels, the read-out under the cursor, one channel.
action("actualpixels")
viewer():move(viewer():normalised(0.5, 0.5))
waitrender()
assert(viewer():property("zoom") == 1)
shot(window(), "pixels", "Actual pixels; below the picture the values under the cursor")
action("fit")
action("channelluminance")
waitrender()
shot(viewer(), "luminance", "The viewer's luminance")
action("channelcolour")

-- A file that is no picture is refused with a message, and the document stays.
local folder = out:sub(1, 1) == "/" and out or os.getenv("PWD") .. "/" .. out
local broken = folder .. "/broken.exr"
local file = assert(io.open(broken, "wb"))
file:write("no picture at all")
file:close()
local text = document.text()
assert(not pcall(document.open, broken), "a broken picture was opened")
assert(document.text() == text, "a broken picture changed the document")
local source
for _, tool in ipairs(document.tools()) do
    source = tool:class() == "ImageSource" and tool or source
end
if source then
    source:input("File"):set(broken)
    waitrender()
    shot(viewer(), "broken", "A damaged file: the message names it, the last good picture stays")
    assert(viewer():message():find("broken.exr", 1, true), viewer():message())
    assert(not viewer():message():find("no such file", 1, true), viewer():message())
    undo.undo()
    waitrender()
    assert(viewer():message() == "", viewer():message())
end
os.remove(broken)

-- Back to the beginning: everything undone is the first picture again.
document.time(middle)
document.save(out .. "/walkthrough.marlox")
local steps, complete = #undo.texts(), document.text()
render(out .. "/processed.exr")
render(out .. "/processed.png")
tell(out .. "/processed.exr", "The processed picture, floats")
tell(out .. "/processed.png", "The processed picture for the screen")
tell(out .. "/walkthrough.marlox", "The document")
while undo.undo() do
end
assert(gain:get() == 1 and #gain:keys() == 0, "everything is undone")
for _ = 1, steps do
    assert(undo.redo())
end
assert(document.text() == complete, "everything is done again")
assert(undo.depth() == 0, "every gesture is closed")
print("walkthrough done")
