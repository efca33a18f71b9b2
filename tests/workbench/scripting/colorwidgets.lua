-- The drawn colour widgets by mouse: values, entries of the history, and what goes on where numbers
-- have a seam.

document.new()
local tool = document.add("Background")
local parts = {"Red", "Green", "Blue", "Alpha"}
waitrender()

local function near(a, b, what)
    assert(math.abs(a - b) < 1e-6, (what or "value") .. ": " .. a .. " instead of " .. b)
end
local function set(...)
    for i, value in ipairs{...} do
        tool:input(parts[i]):set(value)
    end
end
local function color()
    local rgb = {}
    for i = 1, 4 do
        rgb[i] = tool:input(parts[i]):get()
    end
    return rgb
end
local function is(r, g, b)
    local now = color()
    near(now[1], r, "red") near(now[2], g, "green") near(now[3], b, "blue")
end
local entries
local function begin()
    entries = #undo.texts()
end
local function wrote(text)
    assert(#undo.texts() == entries + 1 and undo.text() == text and undo.depth() == 0,
           #undo.texts() - entries .. " entries, " .. undo.text() .. " instead of " .. text)
end

-- The field. Its zones lie from the left: square, hues, alpha.
control("Red"):widget("buttonexpand"):click(5, 5)
local field = control("Red"):widget("field")
local function number(name)
    return tonumber(control("Red"):widget("edit" .. name):text())
end
local W, H = field:size()
local left, right, top, bottom, hues, alpha = 3, W - 38, 3, H - 4, W - 25, W - 7
set(0.2, 0.1, 0.1)
begin()
field:drag({{40, 40}, {right, top}})
wrote("Adjust Saturation/Value")
is(1, 0, 0)
-- Down through grey and black, and back, the hue stays.
set(0.25, 0.5, 0.25)
begin()
field:press(40, 40)
for _, at in ipairs{{left, 40}, {left, bottom + 1}, {right, bottom + 1}, {right, top}} do
    field:move(at[1], at[2])
end
field:release(right, top)
wrote("Adjust Saturation/Value")
is(0, 1, 0)
-- The last of the hues is a whole turn and stays one, the first is none.
begin()
field:drag({{hues, top + 5}, {hues, H}})
wrote("Adjust Hue")
is(1, 0, 0)
near(number("hue"), 1)
field:drag({{60, 60}, {left, 60}, {right, top}})
near(number("hue"), 1)
begin()
field:drag({{hues, 30}, {hues, 0}})
near(number("hue"), 0)
assert(#undo.texts() == entries, "red is what it was")
begin()
field:drag({{alpha, 30}, {alpha, 0}})
wrote("Adjust Alpha")
near(color()[4], 0)
-- Given up: exact, also of passive inputs, which no history brings back.
set(0.123456789012345, 0.3333333333333, 7.77)
for _, passive in ipairs{0, 1} do
    for _, part in ipairs(parts) do
        tool:input(part):attribute("IA_Passive", passive)
    end
    local before = color()
    begin()
    field:press(60, 60)
    field:move(20, 20)
    assert(color()[3] ~= before[3])
    field:key("Escape")
    field:release(20, 20)
    for i, value in ipairs(color()) do
        assert(value == before[i], "Escape brings back the number itself")
    end
    assert(#undo.texts() == entries)
end
-- Axes without a hue keep that of the last colour that had one.
set(0, 0, 1)
control("Red"):run("Colour Space/YUV")
set(1, 1, 0)
set(0.4, 0.4, 0.4)
control("Red"):run("Colour Space/HSV")
near(number("hue"), 1 / 6)

-- The wheel: a turn around is a turn, and goes on beyond it.
tool = document.add("ColorCorrector")
parts = {"MasterHue", "MasterSaturation", "MasterTintAngle", "MasterTintLength"}
waitrender()
local wheel = control("MasterHue"):widget("wheel")
W, H = wheel:size()
local function ring(degrees, radius)
    local a = math.rad(degrees)
    return math.floor(W / 2 + radius * math.cos(a) + 0.5), math.floor(H / 2 - radius * math.sin(a) + 0.5)
end
begin()
wheel:press(ring(0, 85))
local last = 0
for degrees = 10, 720, 10 do
    wheel:move(ring(degrees, 85))
    local hue = color()[1]
    assert(hue < last and last - hue < 0.05, "the hue jumps")
    last = hue
end
wheel:release(ring(720, 85))
wrote("Adjust Hue/Saturation")
near(color()[1], -2)
near(color()[2], 1)
begin()
wheel:drag({{ring(0, 5)}, {ring(90, 200)}})
wrote("Adjust Tint")
near(color()[4], 1)

-- A suppression: along its spoke only.
tool:input("Suppression"):set(1)
wait(0.05)
local knobs = control("MasterKeepRed"):widget("wheel")
W, H = knobs:size()
begin()
knobs:drag({{W / 2 + 200 / 18 * 7, H / 2}, {W / 2 + 39, 5}, {W / 2, 5}})
wrote("Adjust Master Red Amount")
assert(tool:input("MasterKeepRed"):get() < 0.02)

-- The ranges: entry by the press, a click leaves none.
local ranges
for _, c in ipairs(controls()) do
    if c:class() == "ColorRangesControl" then
        ranges = c:widget("ranges")
    end
end
local x, y = unpack(ranges:property("plot"))
begin()
ranges:press(x, y)
assert(undo.depth() == 1)
ranges:release(x, y)
assert(#undo.texts() == entries and undo.depth() == 0)
ranges:drag({{x, y}, {x + 30, y + 30}})
wrote("Adjust Ranges")
print("done")
