-- The viewer's overlays under a user's hands: each is placed with mouse and keys over a real picture, and
-- values, undo entries and the log are compared. The folder in arg[1] takes the files.

local out = arg[1]
local view = viewer()
local W, H = 1280, 720 -- the sample's pixels

local function equal(a, b, what)
    assert(a == b, string.format("%s: %s instead of %s", what, tostring(a), tostring(b)))
end

local function near(a, b, tolerance, what)
    assert(math.abs(a - b) <= tolerance, string.format("%s: %.9g instead of %.9g", what, a, b))
end

local function samepoint(p, x, y, tolerance, what)
    near(p.x, x, tolerance, what .. ", x")
    near(p.y, y, tolerance, what .. ", y")
end

-- A tool over a fresh copy of the sample, alone behind the picture.
local function fresh(class)
    document.open(arg[2])
    for _, tool in ipairs(document.tools()) do
        if tool:class() ~= "ImageSource" then tool:remove() end
    end
    document.select(document.tools()[1])
    local tool = document.add(class)
    waitrender()
    view:focus()
    action("fit")
    action("zoomout") -- edges are within reach
    log.clear()
    return tool
end

-- Widget positions of image positions (0 to 1), moved by pixels, y down.
local function at(x, y, dx, dy)
    local px, py = view:normalised(x, y)
    return math.floor(px + 0.5) + (dx or 0), math.floor(py + 0.5) + (dy or 0)
end

local function width()
    local left, right = view:normalised(0, 0), view:normalised(1, 0)
    return right - left
end

local function height()
    local _, bottom = view:normalised(0, 0)
    local _, top = view:normalised(0, 1)
    return bottom - top
end

-- Drags from a widget position by pixels, looks in the middle, and checks that one entry came of it.
local function drag(x, y, dx, dy, text, how, middle)
    local before = #undo.texts()
    view:move(x, y, how)
    view:press(x, y, how)
    view:move(x + dx / 2, y + dy / 2, how)
    view:move(x + dx, y + dy, how)
    equal(undo.depth() > 0, text ~= nil, "a group is open in the drag")
    if middle then middle() end
    view:release(x + dx, y + dy, how)
    equal(undo.depth(), 0, "groups after the drag")
    equal(#undo.texts(), before + (text and 1 or 0), "entries of the drag")
    if text then equal(undo.text(), text, "the entry's text") end
    waitrender()
end

-- Crosshair: free in the middle, along one axis by an arm, nudged by keys.
local tool = fresh("Transform")
local centre = tool:input("Centre")
view:move(at(0.5, 0.5))
equal(view:overlay("Centre"):class(), "CrosshairControl", "the overlay's class")
assert(view:tip():find("Centre", 1, true), "the tip names the input: " .. view:tip())
local x, y = at(0.5, 0.5)
drag(x, y, 60, -40, "Adjust Centre")
samepoint(centre:get(), 0.5 + 60 / width(), 0.5 + 40 / height(), 1e-5, "dragged centre")
local written = log.values()
assert(#written >= 2 and written[1].input == "Centre", "the log tells what was written")
samepoint(written[#written].value, 0.5 + 60 / width(), 0.5 + 40 / height(), 1e-5, "a point in the log")
undo.undo()
samepoint(centre:get(), 0.5, 0.5, 0, "undo takes the whole drag back")
waitrender()
drag(x + 20, y, 50, 37, "Adjust Centre", nil, function()
    local cursor = view:cursor()
    near(cursor.y, 0.5, 2 / height(), "the logical cursor stays on the line")
    equal(view:overlay("Centre"):drag(), "dragged", "drag state")
end)
samepoint(centre:get(), 0.5 + 50 / width(), 0.5, 1e-5, "an arm moves along its axis")
undo.undo()
local pixels = 1 / W
view:click(at(0.5, 0.5))
equal(view:focusedoverlay(), view:overlay("Centre"), "a click gives the focus")
local entries = #undo.texts()
view:key("Right")
view:key("Up", {shift = true})
view:key("Left", {ctrl = true})
samepoint(centre:get(), 0.5 + 0.9 * pixels, 0.5 + 10 * pixels, 1e-9, "nudged")
equal(#undo.texts(), entries + 3, "each key is an entry")
undo.undo() undo.undo() undo.undo()

-- The picture follows: what was in its middle is where the centre comes to.
waitrender()
local middle = view:color(W / 2, H / 2)
drag(x, y, 100, 0, "Adjust Centre")
local shown = view:color(W / 2 + math.floor(100 / width() * W + 0.5), H / 2)
for i = 1, 3 do near(shown[i], middle[i], 0.05, "the picture follows the centre") end

-- Escape gives a drag up.
local before = centre:get()
entries = #undo.texts()
local cx, cy = at(before.x, before.y)
view:press(cx, cy)
view:move(cx - 40, cy)
view:key("Escape")
samepoint(centre:get(), before.x, before.y, 0, "Escape")
view:release(cx - 40, cy)
equal(#undo.texts(), entries, "entries after Escape")
equal(undo.depth(), 0, "groups after Escape")

-- An animated input gets a key, an expression or a lock keeps the overlay where it is.
tool = fresh("Transform")
centre = tool:input("Centre")
centre:addkey(0)
document.time(12)
waitrender()
equal(view:overlay("Centre"):condition(), "animated", "condition")
drag(x, y, 30, 0, "Adjust Centre")
equal(#centre:keys(), 2, "keys after a drag")
equal(view:overlay("Centre"):condition(), "keyed", "condition at the key")
assert(view:drawn():find("path strip", 1, true), "an animated centre has its path")
tool = fresh("Transform")
tool:input("Centre"):expression("{0.25, 0.5}")
waitrender()
entries = #undo.texts()
equal(view:overlay("Centre"):condition(), "expression", "condition")
view:move(at(0.25, 0.5))
equal(view:cursor().shape, "forbidden", "cursor over an expression")
assert(view:tip():find("expression", 1, true), "the tip tells why: " .. view:tip())
drag(at(0.25, 0.5), select(2, at(0.25, 0.5)), 50, 0, nil)
tool = fresh("Transform")
tool:locked(true)
drag(x, y, 50, 0, nil)
samepoint(tool:input("Centre"):get(), 0.5, 0.5, 0, "a locked tool")

-- Angle: twice round the centre is 720 degrees more.
tool = fresh("Transform")
local angle = tool:input("Angle")
local radius = 0.15 * width()
local function round(degrees)
    local a = math.rad(degrees)
    return math.floor(x + radius * math.cos(a) + 0.5), math.floor(y - radius * math.sin(a) + 0.5)
end
view:move(round(0))
equal(view:current(), view:overlay("Angle"), "the angle's handle is where its radius says")
view:press(round(0))
for degrees = 15, 720 + 30, 15 do view:move(round(degrees)) end
equal(undo.depth(), 1, "one group")
view:release(round(750))
near(angle:get(), 750, 1.0, "the angle is not wrapped")
equal(undo.text(), "Adjust Angle", "the angle's entry")
undo.undo()
equal(angle:get(), 0, "undo of the angle")

-- The pivot goes with the centre.
tool:input("Centre"):set({0.75, 0.5})
waitrender()
local px, py = at(0.75, 0.5)
view:move(px + 9, py + 9)
drag(px + 9 - 9, py + 9 - 9, 0, 30, "Adjust Centre") -- the centre lies over it
undo.undo()

-- Points of a gradient, joined by a line.
tool = fresh("ColorGradient")
local from, to = tool:input("Start"):get(), tool:input("End"):get()
waitrender()
local before = view:color(W / 2, H / 2)
local sx, sy = at(from.x, from.y)
drag(sx, sy, 80, 50, "Adjust Start")
samepoint(tool:input("Start"):get(), from.x + 80 / width(), from.y - 50 / height(), 1e-5, "gradient's start")
samepoint(tool:input("End"):get(), to.x, to.y, 0, "its end stays")
assert(view:drawn():find("normal lines: (", 1, true), "the points are joined")
local after = view:color(W / 2, H / 2)
assert(before[1] ~= after[1] or before[2] ~= after[2] or before[3] ~= after[3], "the gradient follows")

-- Offset of a shadow: two numbers, one entry.
tool = fresh("DropShadow")
local origin = tool:input("Origin"):get()
local ox, oy = tool:input("OffsetX"):get(), tool:input("OffsetY"):get()
local hx, hy = at(origin.x + ox, origin.y + oy)
drag(hx, hy, 40, -20, "Control Change")
near(tool:input("OffsetX"):get(), ox + 40 / width(), 2e-3, "offset x")
near(tool:input("OffsetY"):get(), oy + 20 / height(), 2e-3, "offset y")
undo.undo()
equal(tool:input("OffsetX"):get(), ox, "undo of x")
equal(tool:input("OffsetY"):get(), oy, "undo of y")

-- Crop: edges, a corner, and the form with a size.
tool = fresh("Crop")
local left = tool:input("Left"):get()
local lx, ly = at(0, 0.3)
drag(lx, ly, 48, 0, "Adjust Crop")
near(tool:input("Left"):get(), left + 48 / width() * W, W / width(), "left edge")
equal(view:color(5, 300), nil, "what is cut off is gone")
local tx, ty = at(1, 1)
drag(tx, ty, -50, 30, "Adjust Crop")
near(tool:input("Right"):get(), W * (1 - 50 / width()), W / width(), "the corner moves the right edge")
near(tool:input("Top"):get(), H * (1 - 30 / height()), H / height(), "and the top edge")
tool = fresh("CropRegion")
local inputs = {}
for _, input in ipairs(view:overlays()[1]:inputs()) do inputs[#inputs + 1] = input end
local wide = inputs[3]:get()
local rx, ry = at(1, 0.4)
drag(rx, ry, -60, 0, "Adjust Crop")
near(inputs[3]:get(), wide * (1 - 60 / width()), W / width(), "the right edge changes the width")
local bx, by = at(0, 0.4)
drag(bx, by, 30, 0, "Adjust Crop")
near(inputs[1]:get() + inputs[3]:get(), wide * (1 - 60 / width()), 2 * W / width(), "the right edge stays")

-- A picture that goes away ends the drag where it was: nothing is measured without it.
local gx, gy = at(inputs[1]:get() / W, 0.4)
view:press(gx, gy)
view:move(gx + 30, gy)
local reached = inputs[1]:get()
local source = document.tools()[1]
source:enabled(false)
tool:enabled(false)
waitrender()
equal(undo.depth(), 0, "groups after the picture went")
view:release(gx + 30, gy)
equal(inputs[1]:get(), reached, "the value after the picture went")
equal(view:cursor().shape, "arrow", "the pointer over nothing")
source:enabled(true)

-- Tab goes through the overlays and on; H hides them.
tool = fresh("Transform")
for _, id in ipairs({"Centre", "Pivot", "Angle"}) do
    view:key("Tab")
    equal(view:focusedoverlay(), view:overlay(id), "Tab")
end
view:key("Escape")
equal(view:focusedoverlay(), nil, "Escape leaves the overlays")
view:key("H")
equal(view:drawn(), "", "hidden overlays")
drag(x, y, 30, 0, nil)
view:key("H")
assert(view:drawn() ~= "", "shown again")

-- So it does through the fields of points.
control("Centre"):widget("edity"):focus()
for _ = 1, 2 do window():key("Tab") end
assert(control("Pivot"):widget("edit"):focused(), "Tab leaves the fields of a point")

-- Two viewers of one tool, and a tool that goes in mid-drag.
action("newviewer")
wait(0.2)
local second = viewer(2)
waitrender()
assert(second:color(W / 2, H / 2), "a further viewer shows the picture at once")
equal(#second:overlays(), #view:overlays(), "each viewer has the overlays")
drag(x, y, 40, 0, "Adjust Centre")
local moved = tool:input("Centre"):get()
local wx, wy = second:normalised(moved.x, moved.y)
second:move(math.floor(wx + 0.5), math.floor(wy + 0.5))
equal(second:current(), second:overlay("Centre"), "the second viewer knows where it is")
second:drag({{math.floor(wx + 0.5), math.floor(wy + 0.5)}, {math.floor(wx + 0.5) - 30, math.floor(wy + 0.5)}})
assert(tool:input("Centre"):get().x < moved.x, "dragged in the second viewer")
view:focus()
local here = tool:input("Centre"):get()
local dx, dy = at(here.x, here.y)
view:press(dx, dy)
view:move(dx + 20, dy)
tool:remove()
view:move(dx + 40, dy)
view:release(dx + 40, dy)
equal(undo.depth(), 0, "groups after the tool went")
equal(#view:overlays(), 0, "its overlays went, too")
undo.undo()
waitrender()
window():screenshot(out .. "/overlays.png")
