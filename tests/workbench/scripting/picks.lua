-- Colours picked from the viewer with a colour control, by mouse and keys, and the preferences of
-- colours. arg[1]: the sample document.

local picture = arg[1]:match("^.*/") .. "dusk.exr"
local parts = {"Red", "Green", "Blue", "Alpha"}

preferences.set("Color.SampleSize", nil)
document.open(picture)
local tool = document.add("ColorGradient")
tool:input("Behind"):set(1)
document.select(nil)
for i, part in ipairs(parts) do
    local input = tool:input("Start" .. part)
    if i == 1 then
        input:attribute("IAS_Control", "ColorControl")
    else
        input:attribute("IAS_SharedWith", "StartRed")
    end
    input:attribute("IA_Channel", i - 1)
end
document.select(tool)
waitrender()

local c = control("StartRed")
local pick, sample, view = c:widget("buttonpick"), c:widget("buttonsample"), viewer()
view:property("zoom", 4)
local width, height = view:size()
local x, y = math.floor(width / 2), math.floor(height / 4)

local function values()
    local list = {}
    for i, part in ipairs(parts) do
        list[i] = tool:input("Start" .. part):get()
    end
    return list
end

local function same(a, b)
    for i = 1, 4 do
        if math.abs(a[i] - b[i]) > 1e-5 then
            return false
        end
    end
    return true
end

local entries
local function begin()
    entries = #undo.texts()
end
local function wrote(color, count)
    local now = values()
    assert(same(now, color), table.concat(now, " ") .. " instead of " .. table.concat(color, " "))
    assert(#undo.texts() - entries == count and undo.depth() == 0, "undo entries")
end

-- Dragged from the button, each move picks from the picture of the press, whatever proxy of the
-- next one is on show meanwhile.
local ex, ey = view:image(640.96, 360.04) -- corners of pixels: nothing rounds
local there = view:color(640, 360)
begin()
pick:press(8, 8)
view:move(x, y)
assert(same(values(), view:sample(x, y)) and undo.depth() == 1)
view:move(ex, ey)
assert(same(view:sample(ex, ey), there))
view:release(ex, ey)
wrote(there, 1)
assert(undo.undo() and same(values(), {0, 0, 0, 1}))
assert(#log.values() > 0)

-- Given up, by the keyboard focus too, and released beside the viewer.
for _, giveup in ipairs{function() pick:key("Escape") view:release(x, y) end,
                        function() view:focus() view:release(x, y) end,
                        function() widget("toollist"):release(20, 20) end} do
    begin()
    pick:press(8, 8)
    view:move(x, y)
    giveup()
    wrote({0, 0, 0, 1}, 0)
end

-- A click arms it; pixels around the pointer, then a rectangle.
answer(function(menu) menu:run("5 x 5") end)
sample:click(8, 8)
assert(sample:property("sampleSize") == 5 and preferences.get("Color.SampleSize") == 5)
begin()
pick:click(8, 8)
assert(pick:property("armed"))
local mean = view:sample(x, y, 5)
view:click(x, y)
wrote(mean, 1)
begin()
pick:key("Space")
local taken = view:sample(x - 40, y, {40, 20})
view:drag{{x, y}, {x - 20, y + 8}, {x - 40, y + 20}}
wrote(taken, 1)
assert(not pick:property("armed"))

-- With Ctrl from what flows into the tool: without a gain on top of it.
tool:input("Behind"):set(0)
tool:input("Mix"):set(0.5)
document.select(tool)
waitrender()
begin()
local result, input = view:sample(x, y, 5), view:sample(x, y, 5, tool)
assert(not same(result, input))
pick:press(8, 8)
view:move(x, y, {ctrl = true})
assert(same(values(), input))
pick:key("Ctrl", {action = "release"})
assert(same(values(), result), "what is picked changes what is on view, but not what is picked")
view:move(x, y, {ctrl = true})
view:release(x, y, {ctrl = true})
wrote(input, 1)

-- Given up and at once picked again: from the picture of before, not that of the colour given up.
waitrender()
result = view:sample(x, y, 5)
begin()
pick:press(8, 8)
view:move(x + 200, y + 100)
waitrender()
pick:key("Escape")
view:release(x, y)
wrote(input, 0)
pick:press(8, 8)
view:move(x, y)
assert(same(values(), result), "picked from a picture that was given up")
pick:key("Escape")
view:release(x, y)
wrote(input, 0)

-- The colour dialog changes what is changed in it, and nothing else.
begin()
answer(function(dialog)
    assert(dialog:name() == "color" and dialog:title() == "Select Color")
    dialog:fill("green", 51)
    dialog:accept()
end)
c:widget("swatch"):click(8, 8)
wrote({input[1], 0.2, input[3], input[4]}, 1)
undo.undo()

-- The viewer's own settings show in the control, its channels don't.
local swatch = c:widget("swatch")
local function shown()
    local g = swatch:grab()
    return table.concat(g:pixel(math.floor(g:width() / 4), math.floor(g:height() / 2)), " ")
end
local before = shown()
view:property("exposure", -2)
local darker = shown()
assert(darker ~= before)
action("channelred")
assert(shown() == darker)
action("channelcolour")
view:property("exposure", 0)
assert(shown() == before)

-- Preferences
preferences.set("Color.Mode", nil)
local function settings(mode, corrects, gamma)
    answer(function(dialog)
        assert(dialog:find("displaygamma"):enabled() == dialog:find("gammacorrect"):property("checked"))
        dialog:fill("colormode", mode)
        dialog:fill("gammacorrect", corrects)
        dialog:fill("displaygamma", gamma)
        dialog:accept()
    end)
    action("preferences")
    return preferences.get("Color.Mode"), preferences.get("Color.GammaCorrectControls"),
        preferences.get("Color.DisplayGamma")
end
local mode, corrects, gamma = settings("0 to 65535", true, 2.4)
assert(mode == 2 and corrects and math.abs(gamma - 2.4) < 1e-9)
mode, corrects, gamma = settings("0 to 1", false, 2.2)
assert(mode == 0 and not corrects)
preferences.set("Color.SampleSize", nil)

-- A widget has its name wherever the layout has put it.
document.select(document.add("ColorCorrector"))
for _, wide in ipairs{1240, 700} do
    window():size(wide, 760)
    wait(0.2)
    assert(control("MasterHue"):widget("wheel"):visible())
end
print("picks done")
