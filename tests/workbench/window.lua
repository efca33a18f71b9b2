-- The window under a user's hands: what panels, keys and dialogs do, by synthesised events on the
-- bundled samples. The folder in arg[1] takes the files; arg[2] is the folder of the samples.

local out, samples = arg[1], arg[2]
local view, list, ruler = viewer(), widget("toollist"), widget("timeruler")

local function near(a, b, tolerance, what)
    assert(math.abs(a - b) <= tolerance, string.format("%s: %g instead of %g", what, a, b))
end

local function equal(a, b, what)
    assert(a == b, string.format("%s: %s instead of %s", what, tostring(a), tostring(b)))
end

local function focuskey(w, name, how)
    w:focus()
    if not w:focused() then -- after a dialog the window is the active one again a moment later
        wait(0.05)
        w:focus()
    end
    w:key(name, how)
end

local function names()
    local all = {}
    for _, tool in ipairs(document.tools()) do
        all[#all + 1] = tool:name()
    end
    return table.concat(all, " ")
end

local function copyof(path, bytes, target)
    local from = assert(io.open(path, "rb"))
    local to = assert(io.open(target, "wb"))
    to:write(from:read(bytes))
    from:close()
    to:close()
end

local function openfresh()
    document.open(samples .. "/dusk.marlox")
    document.select(document.tools()[2])
    waitrender()
    view:focus()
    action("fit")
end

-- Keys of the viewer: single letters act there and type elsewhere.
openfresh()
view:key("R")
equal(widget("channels"):text(), "Red", "R shows red")
view:key("R")
equal(widget("channels"):text(), "Colour", "R again goes back")
view:key("1")
equal(view:property("zoom"), 1, "1 shows actual pixels")
view:key("F")
assert(view:property("zoom") < 1, "F fits")
local fitted = view:property("zoom")
local exposure = widget("exposure")
focuskey(exposure, "A", {ctrl = true})
exposure:type("1")
exposure:key("Return")
equal(view:property("exposure"), 1, "1 typed into a field")
equal(view:property("zoom"), fitted, "zoom after typing 1")
widget("normalexposure"):click(8, 8)
equal(view:property("exposure"), 0, "its icon brings the exposure back")

-- The wheel keeps what is under the pointer.
local x, y = view:image(900, 500)
view:wheel(x, y, -3)
local afterx, aftery = view:image(900, 500)
near(afterx, x, 1, "wheel zoom, x")
near(aftery, y, 1, "wheel zoom, y")
view:key("F")

-- The read-out tells the image's floats where scripts say the pixel is, beyond 1 too.
local sunx, suny = 840, 340
local brightest = 0
for px = 800, 880, 4 do
    for py = 310, 370, 4 do
        local color = view:color(px, py)
        if color[1] > brightest then
            brightest, sunx, suny = color[1], px, py
        end
    end
end
assert(brightest > 1, "the sun is brighter than white")
view:key("1")
x, y = view:image(sunx, suny + 1) -- its top left corner: pointers stand on whole pixels
view:move(x, y)
wait(0.02)
local text = widget("readout"):property("text")
assert(text:find(string.format("x %d  y %d  R %.4f", sunx, suny, brightest), 1, true), text)
view:key("F")

-- Time: arrows and Space wherever nothing else needs them; going somewhere ends playback.
document.time(5)
view:key("Right")
equal(document.time(), 6, "Right")
view:key("Space")
wait(0.4)
assert(document.time() > 6, "Space plays")
view:key("Home")
equal(document.time(), 1, "Home")
wait(0.3)
equal(document.time(), 1, "Home ends playback")
local grade = document.selected()
focuskey(control("ClipBlack"):widget("checkbox"), "Space")
equal(grade:input("ClipBlack"):get(), 1, "Space works a check box")

-- A typed value, then undo from within the field.
local edit = control("Gain"):widget("edit")
focuskey(edit, "A", {ctrl = true})
edit:type("2")
edit:key("Return")
equal(grade:input("Gain"):get(), 2, "typed")
edit:key("Z", {ctrl = true})
equal(grade:input("Gain"):get(), 1, "Ctrl+Z in the field is the document's")
equal(edit:text(), "1", "the field follows undo")

-- Keys on the time line: one entry for a drag, Escape brings them back, Delete removes them.
local gain = grade:input("Gain")
gain:addkey(10)
gain:addkey(20)
local function pixelof(frame)
    return 8 + (frame - 0.5) * (ruler:geometry().width - 16) / 48
end
local function keyat(frame)
    for _, key in ipairs(gain:keys()) do
        if key.time == frame then
            return true
        end
    end
    return false
end
local before = #undo.texts()
ruler:drag({{pixelof(20), 30}, {pixelof(25), 30}, {pixelof(30), 30}})
assert(keyat(30) and not keyat(20), "the key was dragged")
equal(#undo.texts(), before + 1, "entries of a key drag")
ruler:press(pixelof(30), 30)
ruler:move(pixelof(40), 30)
ruler:key("Escape")
ruler:release(pixelof(40), 30)
assert(keyat(30) and not keyat(40), "Escape brings the key back")
equal(#undo.texts(), before + 1, "entries after Escape")
ruler:click(pixelof(10), 8)
equal(document.time(), 10, "a click on the ruler")
focuskey(ruler, "Delete")
assert(not keyat(10) and keyat(30), "Delete removes the keys here")

-- Tools: icons, keys, order; a locked one stays.
local wide = list:geometry().width
equal(names(), "ImageSource1 BrightnessContrast1", "tools")
list:click(wide - 38, 36)
assert(not grade:enabled(), "the eye disables")
list:click(wide - 38, 36)
list:click(wide - 14, 36)
assert(grade:locked() and not edit:enabled(), "the lock locks the tool and its controls")
local told
answer(function(dialog)
    told = dialog:text()
    dialog:accept()
end)
focuskey(list, "Delete")
assert(told and told:find("BrightnessContrast1", 1, true), "a locked tool is not removed")
list:click(wide - 14, 36)
widget("movetoolup"):click(8, 8)
equal(names(), "BrightnessContrast1 ImageSource1", "moved up")
assert(not widget("movetoolup"):enabled(), "no further up")
focuskey(list, "Delete")
equal(names(), "ImageSource1", "Delete")
undo.undo()
equal(names(), "BrightnessContrast1 ImageSource1", "undone")
undo.undo()

-- A choice: its list opens by pointer and keys; what is lit is not chosen before it is taken.
openfresh()
local filter = document.add("Transform"):input("Filter")
local combo = control("Filter"):widget("combo")
before = #undo.texts()
answer(function(choices)
    choices:move(40, 12)
    equal(choices:property("lit"), 0, "the row below the pointer")
    equal(filter:get(), 1, "the filter while another is lit")
    combo:click(20, 12) -- closes the list, and does not open it again
end)
combo:click(20, 12)
assert(not combo:property("open"), "a press on the field closes its list")
answer(function(choices)
    choices:type("bi")
    choices:key("Escape")
end)
focuskey(combo, "Space")
equal(filter:get(), 1, "the filter after Escape")
equal(#undo.texts(), before, "entries of no choice")
answer(function(choices)
    choices:type("bic")
    choices:key("Return")
end)
combo:key("Down", {alt = true})
equal(filter:get(), 2, "the filter that was typed")
combo:key("Home")
equal(filter:get(), 0, "Home is the choice's")
equal(#undo.texts(), before + 2, "entries of two choices")
document.time(5)
combo:key("Right")
equal(document.time(), 6, "Right is the time's")

-- A damaged frame is named, the picture and the document stay; good frames clear the message.
openfresh()
copyof(samples .. "/chart.exr", 4000, out .. "/damaged.exr")
local opened = document.text()
local ok, why = pcall(document.open, out .. "/damaged.exr")
assert(not ok and why:find("damaged.exr", 1, true), "a damaged file is named: " .. tostring(why))
equal(document.text(), opened, "the document after a failed open")
local source = document.tools()[1]:input("File")
source:set(out .. "/damaged.exr")
waitrender()
assert(view:message():find("damaged.exr", 1, true), view:message())
assert(widget("message"):visible() and view:color(100, 100), "the last good picture stays")
undo.undo()
waitrender()
equal(view:message(), "", "message after a good frame")

-- Long renders show their progress and can be cancelled.
local function slow()
    for _ = 1, 12 do
        local blur = document.add("Blur")
        blur:input("XSize"):set(300)
        blur:input("YSize"):set(300)
        blur:input("Passes"):set(6)
    end
end
slow()
local plate = widget("progress")
local waited = 0
while not plate:visible() and waited < 20 do
    wait(0.05)
    waited = waited + 0.05
end
assert(plate:visible(), "progress shows")
plate:find("cancel"):click(8, 8)
waitrender()
assert(not plate:visible() and view:message():find("cancelled", 1, true), view:message())

-- Nothing of the last document stays on show in an empty one, and unsaved changes are asked about.
answer(function(dialog)
    dialog:press("Cancel")
end)
focuskey(view, "N", {ctrl = true})
assert(#document.tools() > 2, "Cancel keeps the document")
answer(function(dialog)
    dialog:press("Discard")
end)
focuskey(view, "N", {ctrl = true})
waitrender()
equal(names(), "", "Discard")
local shot = view:grab()
local corner = shot:pixel(2, 2)
local middle = shot:pixel(math.floor(shot:width() / 2), math.floor(shot:height() / 3))
equal(middle[1], corner[1], "the viewer of an empty document")
equal(widget("imageformat"):text(), "", "format of no image")

-- Rendering to files: refused without a place for the frame number, else what the viewer shows.
document.open(samples .. "/balloon.0001.exr")
waitrender()
local said, done
answer(function(dialog)
    dialog:fill("pattern", out .. "/all.exr")
    dialog:press("Render")
    said = dialog:find("state"):text()
    dialog:fill("pattern", out .. "/frame.####.exr")
    dialog:fill("last", 2)
    dialog:press("Render")
    done = dialog:find("state"):text()
    dialog:press("Close")
end)
action("render")
assert(said:find("####", 1, true) and not io.open(out .. "/all.exr"), said)
equal(done, "2 frames written.", "export")
document.time(2)
waitrender()
local written, shown = readimage(out .. "/frame.0002.exr"), nil
for _, at in ipairs({{10, 20}, {200, 100}}) do
    shown = view:color(at[1], at[2])
    local pixel = written:pixel(at[1], at[2])
    for i = 1, 4 do
        equal(pixel[i], shown[i], "a rendered pixel")
    end
end

-- A new crop is the whole of the picture on show, as part of its one entry of the history.
for class, inputs in pairs({Crop = {"Right", "Top"}, CropRegion = {"Width", "Height"}}) do
    local entries = #undo.texts()
    local crop = document.add(class)
    equal(#undo.texts(), entries + 1, "entries for a new crop")
    undo.undo()
    undo.redo()
    crop = document.tool(class .. "1")
    equal(crop:input(inputs[1]):get(), 640, "width of a new crop")
    equal(crop:input(inputs[2]):get(), 360, "height of a new crop")
end
waitrender()
equal(view:message(), "", "message of crops")

-- The sample with overlays renders, and its picture moves with the time.
document.open(samples .. "/overlays.marlox")
waitrender()
local placed = view:color(280, 180)
document.time(48)
waitrender()
equal(view:message(), "", "message of the overlays")
assert(view:color(280, 180)[3] ~= placed[3], "the picture has moved")

-- Saved by keys and opened again; saved to another folder, the pictures are still found.
openfresh()
document.save(out .. "/saved.marlox")
waitrender()
equal(view:message(), "", "message after saving elsewhere")
document.add("Blur")
focuskey(view, "S", {ctrl = true})
assert(not document.modified(), "Ctrl+S saves")
local saved = document.text()
document.new()
document.open(out .. "/saved.marlox")
equal(document.text(), saved, "the document after a round trip")
equal(undo.depth(), 0, "open gestures")

-- With the tool goes the field that had the keyboard: its keys are the time's then.
openfresh()
control("Gain"):widget("slider"):focus()
action("removetool")
assert(not widget("channels"):focused(), "the keyboard passes to the choice of channels")
local now = document.time()
window():key("Right")
equal(document.time(), now + 1, "the time after a key without a field")
print("window done")
