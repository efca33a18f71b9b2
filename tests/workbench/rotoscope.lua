-- Rotoscoping with mouse and keys: the balloon of the sample sequence is cut out with a polygon mask that is
-- drawn point by point, keyed at five frames and given a soft edge; its shape and its motion go out to
-- files and come back into a second mask. arg[1] is the folder for the files. With arg[2], a folder, pictures
-- of the window are left there.

local out, pictures = arg[1], arg[2]
local view, ruler = viewer(), widget("timeruler")
local W, H = 640, 360 -- pixels of the pictures

local function equal(a, b, what)
    assert(a == b, string.format("%s: %s instead of %s", what, tostring(a), tostring(b)))
end

local function near(a, b, tolerance, what)
    assert(math.abs(a - b) <= tolerance, string.format("%s: %.9g instead of %.9g", what, a, b))
end

local function picture(name)
    if not pictures then return end
    waitrender()
    wait(0.1)
    window():screenshot(pictures .. "/" .. name .. ".png")
end

-- Where the balloon is: the same sums by which the sample paints it. Picture heights, y down.
local function balloon(frame)
    local t = (frame - 1) / 47
    local place = {size = 0.125, x = -0.10 + t * (W / H + 0.20)}
    place.y = 0.36 - 0.10 * math.sin(t * 3.1) + 0.012 * math.sin(t * 19)
    place.sway = 0.045 * math.sin(t * 15)
    return place
end

-- A place on it, given in radii of the envelope from its middle, y down, as fractions of the picture, y up. The
-- basket sways.
local function on(frame, across, down)
    local place = balloon(frame)
    local x = place.x + across * place.size
    if down > 1.6 then x = x + place.sway * down * place.size end
    return x * H / W, 1 - (place.y + down * place.size)
end

local function pixel(frame, across, down) -- of the widget
    local x, y = view:normalised(on(frame, across, down))
    return math.floor(x + 0.5), math.floor(y + 0.5)
end

local function go(frame)
    ruler:click(8 + (frame - 0.5) * (ruler:geometry().width - 16) / 48, 8)
    equal(document.time(), frame, "a click on the ruler")
    waitrender()
end

local function drag(x, y, tox, toy, how)
    view:move(x, y, how)
    view:press(x, y, how)
    view:move((x + tox) / 2, (y + toy) / 2, how)
    view:move(tox, toy, how)
    view:release(tox, toy, how)
    waitrender()
end

local function points(input, frame)
    return input:get(frame).Points
end

-- The place of a point, in pixels of the widget.
local function at(input, index)
    local point = points(input, document.time())[index]
    local x, y = view:normalised(point[3], point[4])
    return math.floor(x + 0.5), math.floor(y + 0.5)
end

local function alpha(frame, across, down)
    local x, y = on(frame, across, down)
    local color = view:color(math.floor(x * W), math.floor(y * H))
    return color and color[4] or 0
end

-- The subject fills the view.
local fresh = document.text()
waitrender()
view:focus()
action("fit")
equal(#document.tools(), 1, "tools of the sequence")
local keyed = {9, 17, 25, 33, 41}
go(keyed[1])

-- Drawn point by point; a click on the first point closes it.
local mask = document.add("PolygonMask")
waitrender()
view:focus()
local shape, outer = mask:input("Polyline"), mask:input("Polyline2")
local outline = {
    {0, -1.03}, {0.73, -0.73}, {1.03, 0}, {0.78, 0.78}, {0.24, 1.5}, {0.17, 1.97}, {-0.17, 1.97}, {-0.24, 1.5},
    {-0.78, 0.78}, {-1.03, 0}, {-0.73, -0.73},
}
local basket = {6, 7} -- its lower corners
for i, place in ipairs(outline) do
    view:click(pixel(keyed[1], place[1], place[2]))
    equal(#points(shape, keyed[1]), i, "points drawn")
end
assert(not shape:get().Closed, "open while it is drawn")
view:click(pixel(keyed[1], outline[1][1], outline[1][2]))
assert(shape:get().Closed, "the first point closes the shape")
equal(undo.text(), "Close polygon", "entry")
equal(#points(shape, keyed[1]), #outline, "no point came of closing")

-- Smooth, but for the basket.
view:key("A", {shift = true})
view:key("S", {shift = true})
equal(undo.text(), "Smooth Polyline", "entry")
view:click(at(shape, basket[1]))
local bx, by = at(shape, basket[2])
view:click(bx, by, {shift = true})
view:key("L", {shift = true})
for i, point in ipairs(points(shape, keyed[1])) do
    local corner = i == basket[1] or i == basket[2]
    equal(point[2] % 2 == 1, corner, "point " .. i .. " is a corner")
end
waitrender()
picture("drawn")

-- Keyed: all points dragged by one of them, or the inside of the shape box; the basket's corners by themselves.
local function follow(from, frame, by)
    go(frame)
    local fx, fy = pixel(from, 0, 0)
    local tx, ty = pixel(frame, 0, 0)
    if by == "box" then
        view:click(5, 5) -- nothing is selected: the box is that of all
        view:key("B", {shift = true})
        drag(fx, fy, tx, ty)
        equal(undo.text(), "Dragging Shaping Box", "entry")
        picture("box-" .. frame)
        view:key("B", {shift = true})
    else
        view:key("A", {shift = true})
        local px, py = at(shape, 3)
        drag(px, py, px + tx - fx, py + ty - fy)
        equal(undo.text(), "Move Points", "entry")
    end
    local sx = view:normalised(on(frame, outline[basket[1]][1], outline[basket[1]][2]))
    local px, py = at(shape, basket[1])
    if math.abs(sx - px) >= 1 then
        view:click(5, 5)
        local qx, qy = at(shape, basket[2])
        drag(qx - 8, py + 8, px + 8, py - 8) -- a frame round both
        drag(px, py, math.floor(sx + 0.5), py)
        equal(undo.text(), "Move Points", "entry")
    end
end
for i = 2, #keyed do
    follow(keyed[i - 1], keyed[i], i % 2 == 0 and "box" or "points")
end
equal(#shape:keys(), #keyed, "keys")
for i, key in ipairs(shape:keys()) do equal(key.time, keyed[i], "key") end
for _, frame in ipairs(keyed) do
    for i, place in ipairs(outline) do
        local x, y = on(frame, place[1], place[2])
        local point = points(shape, frame)[i]
        near(point[3] * W, x * W, 2, "x of point " .. i .. " at " .. frame)
        near(point[4] * H, y * H, 2, "y of point " .. i .. " at " .. frame)
    end
end

-- A soft edge: the outer polygon has the same keys; one of its points is pulled further out.
answer(function(menu) menu:run("Make Outer Polyline") end)
view:click(5, 5, {button = "right"})
waitrender()
equal(undo.text(), "Add double polygon", "entry")
equal(#points(outer, keyed[1]), #outline, "points of the outer polygon")
equal(#outer:keys(), #keyed, "keys of the outer polygon")
local ox, oy = at(outer, 1)
drag(ox, oy, ox, oy - 6)
equal(undo.text(), "Move Point", "entry")
equal(select(2, at(outer, 1)), oy - 6, "the crown is softer")

-- The mask cuts the balloon out, also between the keys.
for _, frame in ipairs({9, 13, 21, 25, 29, 37, 41}) do
    go(frame)
    for _, inside in ipairs({{0, 0}, {-0.6, 0}, {0.6, 0}, {0, -0.6}, {0, 1.2}}) do
        near(alpha(frame, inside[1], inside[2]), 1, 0.02, "inside at " .. frame)
    end
    for _, outside in ipairs({{-1.7, 0}, {1.7, 0}, {0, -1.7}, {1.3, 1.5}, {0, 2.8}}) do
        near(alpha(frame, outside[1], outside[2]), 0, 0.001, "outside at " .. frame)
    end
    local soft, last = 0, 1
    for step = 0, 60 do -- to the right from within
        local is = alpha(frame, 0.8 + step * 0.012, 0)
        assert(is <= last + 0.002, "the edge falls off, at " .. frame)
        if is > 0.1 and is < 0.9 then soft = soft + 1 end
        last = is
    end
    assert(soft >= 10, string.format("%d soft places at the edge, at %d", soft, frame))
end

-- Onion skins.
view:key("O", {ctrl = true, alt = true})
for _, frame in ipairs(keyed) do
    go(frame)
    picture("skins-" .. frame)
end
go(21)
picture("skins-21")
if pictures then
    action("channelalpha")
    picture("alpha-21")
    action("channelcolour")
end
view:key("O", {ctrl = true, alt = true})

-- The centre moves too, as a path for the motion files to tell: typed into the inspector at two frames.
local function typed(frame, text)
    go(frame)
    if frame == keyed[1] then control("Center"):run("Animate") end
    local edit = control("Center"):widget("edit")
    edit:focus()
    edit:key("A", {ctrl = true})
    edit:type(text)
    edit:key("Return")
    view:focus()
end
typed(keyed[1], "0.45")
typed(keyed[5], "0.55")
near(mask:input("Center"):get(25).x, 0.5, 1e-9, "the centre between")

-- Out to files, back into a second mask.
local function export(name)
    answer(function(dialog)
        dialog:fill("file", out .. "/" .. name)
        dialog:accept()
    end)
    view:run_menu("Export…")
    local file = assert(io.open(out .. "/" .. name, "rb"), name .. " was written")
    local text = file:read("*a")
    file:close()
    return text
end
local function import(entry, name, said)
    answer(function(dialog)
        if said then
            answer(function(message)
                assert(message:text():find(said, 1, true), message:text())
                message:accept()
            end)
        end
        dialog:fill("fileTypeCombo", "Polyline Files (*" .. name:match("%..*") .. ")")
        dialog:fill("file", out .. "/" .. name)
        dialog:accept()
    end)
    view:run_menu("Import/" .. entry)
    waitrender()
end
for _, name in ipairs({"rotoscope.dfsh", "rotoscope.dfmo", "rotoscope.mot"}) do os.remove(out .. "/" .. name) end
go(keyed[3])
equal(export("rotoscope.dfsh"):match("^%u+"), "DFSH", "shape file")
equal(export("rotoscope.dfmo"):match("^%u+"), "DFMO", "motion file")
equal(export("rotoscope.mot"):match("^LWMO\n1\n9\n(%d+)\n"), "33", "frames of the motion file")

local function places(point) -- with the handles' ends
    local x, y = point[3], point[4]
    return {x, y, x + (point[5] or 0), y + (point[6] or 0), x + (point[7] or 0), y + (point[8] or 0)}
end
local function same(a, b, frame, what)
    local from, to = points(a, frame), points(b, frame)
    equal(#to, #from, what .. ": points")
    equal(b:get(frame).Closed, a:get(frame).Closed, what .. ": closed")
    for i = 1, #from do
        local p, q = places(from[i]), places(to[i])
        for k = 1, 6 do near(q[k], p[k], 0.5000001e-6, what .. ": point " .. i .. " at " .. frame) end
    end
end
local second = document.add("PolygonMask")
waitrender()
view:focus()
import("Import Shape…", "rotoscope.dfsh")
equal(undo.text(), "Import shape", "entry")
local again = second:input("Polyline")
same(shape, again, keyed[3], "shape")
same(outer, second:input("Polyline2"), keyed[3], "outer polygon")
for i, point in ipairs(points(again, keyed[3])) do
    equal(point[2] % 2 == 1, i == basket[1] or i == basket[2], "imported point " .. i .. " is a corner")
end
import("Import Shape…", "rotoscope.dfmo", "taken as closed") -- the file does not tell
equal(#again:keys(), #keyed, "keys that came back")
for _, frame in ipairs(keyed) do same(shape, again, frame, "motion of the shape") end
import("Import LightWave MOT…", "rotoscope.mot", "y is taken downwards")
equal(undo.text(), "Import motion path", "entry")
for frame = keyed[1], keyed[5] do -- such files count from 0, which becomes the first frame
    local a, b = mask:input("Center"):get(frame), second:input("Center"):get(frame - keyed[1] + document.range())
    near(b.x, a.x, 1e-6, "x of the centre at " .. frame)
    near(b.y, a.y, 1e-6, "y of the centre at " .. frame)
end
go(21)
picture("imported-21")

-- Undo takes all of it back, redo makes it again.
local done = document.text()
local entries = #undo.texts()
while undo.undo() do end
document.time(1)
equal(document.text(), fresh, "undone all")
for _ = 1, entries do assert(undo.redo()) end
document.time(21)
equal(document.text(), done, "redone all")
