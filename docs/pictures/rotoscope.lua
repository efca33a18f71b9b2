-- Makes the pictures of docs/rotoscope.md: the balloon of the sample sequence, cut out with a soft edge.
--     marlox-workbench build/release/samples/balloon.0001.exr --script docs/pictures/rotoscope.lua docs/pictures

local out = arg[1]
local view = viewer()

-- Where the balloon is: the same sums by which the sample paints it. Picture heights, y down.
local function balloon(frame)
    local t = (frame - 1) / 47
    return -0.10 + t * (16 / 9 + 0.20), 0.36 - 0.10 * math.sin(t * 3.1) + 0.012 * math.sin(t * 19),
        0.045 * math.sin(t * 15)
end

-- A place given in radii of the envelope from its middle, y down; the basket sways.
local function on(frame, across, down)
    local x, y, sway = balloon(frame)
    x = x + across * 0.125
    if down > 1.6 then x = x + sway * down * 0.125 end
    return x * 9 / 16, 1 - (y + down * 0.125)
end

-- Across and down, in radii; then the ways to the handles' ends, in and out. Without them a corner.
local outline = {
    {0, -0.98, -0.54, 0, 0.54, 0}, {0.98, 0, 0, -0.54, 0, 0.3}, {0.17, 1.46}, {0.19, 1.95}, {-0.19, 1.95},
    {-0.17, 1.46}, {-0.98, 0, 0, 0.3, 0, -0.54},
}

-- The outline at a frame, made larger by a part of its size.
local function shape(frame, by)
    local points = {}
    local high = 0.125 * (1 + by)
    local wide = high * 9 / 16
    for _, place in ipairs(outline) do
        local x, y = on(frame, place[1] * (1 + by), (place[2] - 0.4) * (1 + by) + 0.4)
        local inx, iny, outx, outy = place[3] or 0, place[4] or 0, place[5] or 0, place[6] or 0
        table.insert(points, {0, place[3] and 0 or 1, x, y, inx * wide, -iny * high, outx * wide, -outy * high})
    end
    return {Closed = true, Points = points}
end

waitrender()
local mask = document.add("PolygonMask")
waitrender()
mask:input("Falloff"):set(1)
undo.start("Rotoscope")
for input, by in pairs({Polyline = 0, Polyline2 = 0.16}) do
    mask:input(input):set(shape(9, by))
    for _, frame in ipairs({9, 17, 25, 33, 41}) do
        mask:input(input):addkey(frame)
        mask:input(input):set(shape(frame, by), frame)
    end
end
undo.finish()
document.time(25)
waitrender()
view:focus()
action("fit")
local x, y = view:normalised(on(25, 0, -0.7))
view:wheel(x, y, 4)
waitrender()
view:key("M", {shift = true})
view:click(view:normalised(on(25, 0.98, 0)))
view:move(x, 5)
waitrender()
wait(0.5)
window():screenshot(out .. "/roto.png")

answer(function(dialog)
    dialog:fill("m_EditSkinStep", 4)
    dialog:accept()
end)
view:run_menu("Onion skin/Onion skin settings…")
view:key("O", {ctrl = true, alt = true})
action("fit")
x, y = view:normalised(on(25, 0, -0.7))
view:wheel(x, y, 3)
waitrender()
view:key("A", {shift = true})
view:move(x, 5)
wait(0.5)
window():screenshot(out .. "/onion.png")
