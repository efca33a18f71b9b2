-- Two masks combined, and an effect limited by a mask, as an artist connects them: by the tool list's menu, the
-- window's and the inspector. arg[1] is the sample.

local view, list = viewer(), widget("toollist")

local function equal(a, b, what)
    assert(a == b, string.format("%s: %s instead of %s", what, tostring(a), tostring(b)))
end
local function add(class)
    local tool = document.add(class)
    waitrender()
    return tool
end
local function draw(places)
    view:focus()
    for _, place in ipairs(places) do
        view:click(view:normalised(place[1], place[2]))
    end
    view:key("O", {shift = true})
end
local function alpha(x, y)
    waitrender()
    local color = view:color(math.floor(1280 * x), math.floor(720 * (1 - y)))
    return color and color[4] or 0 -- none: there is no picture
end
local function entry(entries, text)
    for _, each in ipairs(entries) do
        if each.text == text then return each end
    end
    error("no entry " .. text)
end
local function rightclick(tool, run)
    for i, each in ipairs(document.tools()) do
        if each:name() == tool:name() then
            answer(run)
            list:click(20, 24 * i - 12, {button = "right"})
        end
    end
    equal(document.selected():name(), tool:name(), "selected by the right button")
end

-- A mask before the picture, and a second one behind it that lies on it.
document.open(arg[1])
waitrender()
local below = add("PolygonMask")
draw({{0.1, 0.1}, {0.6, 0.1}, {0.6, 0.9}, {0.1, 0.9}})
while document.tools()[1]:name() ~= below:name() do
    action("toolup")
end
document.select(document.tools()[#document.tools()])
local above = add("PolygonMask")
draw({{0.4, 0.3}, {0.9, 0.3}, {0.9, 0.7}, {0.4, 0.7}})
equal(alpha(0.2, 0.5), 0, "outside the second mask")
equal(alpha(0.5, 0.5), 1, "inside it")

local base, combo = above:input("Base"), control("Base"):widget("combo")
equal(combo:text(), "None", "what is connected at first")
local before = #undo.texts()
rightclick(above, function(menu)
    local inputs = entry(menu:entries(), "Connect").children
    local choices = entry(inputs, "Base").children
    assert(entry(choices, "None").checked and not entry(choices, below:name()).checked, "the check")
    entry(inputs, "Input")
    menu:run("Connect/Base/" .. below:name())
end)
equal(#undo.texts(), before + 1, "entries of a connection")
equal(undo.texts()[#undo.texts()], "Connect Base", "its text")
equal(combo:text(), below:name(), "the inspector shows it")
equal(alpha(0.2, 0.5), 1, "both masks added")
above:input("Combine"):set(1)
equal(alpha(0.5, 0.5), 0, "the second mask taken away")
equal(alpha(0.2, 0.5), 1, "from the first one")
undo.undo()
undo.undo()
equal(combo:text(), "None", "undone")
equal(alpha(0.2, 0.5), 0, "without the first mask again")

-- The inspector chooses, too, and follows the tools.
combo:focus()
answer(function(choices)
    choices:type(below:name())
    choices:key("Return")
end)
combo:key("Space")
equal(base:source():name(), below:name(), "chosen in the inspector")
equal(undo.texts()[#undo.texts()], "Connect Base", "as one entry")
below:name("Under")
equal(combo:text(), "Under", "with its new name")
above:locked(true)
assert(not combo:enabled(), "not of a locked tool")
rightclick(above, function(menu)
    local none = entry(entry(entry(menu:entries(), "Connect").children, "Base").children, "None")
    assert(not none.enabled, "nor by the menu")
    equal(none.tip, "The tool is locked.", "why not")
    menu:cancel()
end)
above:locked(false)
combo:key("Home")
equal(base:source(), nil, "None")

-- An effect within the first mask. What would feed itself can't be chosen.
local blur = add("Blur")
rightclick(blur, function(menu)
    menu:run("Connect/Effect Mask/Under")
end)
equal(blur:input("EffectMask"):source():name(), "Under", "the effect's mask")
equal(control("EffectMask"):widget("combo"):text(), "Under", "in the inspector")
rightclick(above, function(menu)
    local loop = entry(entry(entry(menu:entries(), "Connect").children, "Base").children, blur:name())
    assert(not loop.enabled and loop.tip:find("would feed itself", 1, true), loop.tip)
    menu:cancel()
end)
for _, text in ipairs(control("Base"):widget("combo"):property("entries")) do
    assert(text ~= blur:name(), "a loop in the inspector")
end

-- The frame of a mask lies on that of the picture, which has another size.
above:enabled(false)
blur:enabled(false)
local grade = add("BrightnessContrast")
grade:input("Gain"):set(0)
grade:input("EffectMask"):source(below)
for _, place in ipairs({{0.15, 0.5, true}, {0.55, 0.85, true}, {0.65, 0.5, false}, {0.3, 0.05, false}}) do
    waitrender()
    local color = view:color(math.floor(1280 * place[1]), math.floor(720 * (1 - place[2])))
    equal(color[1] + color[2] + color[3] == 0, place[3], "black at " .. place[1] .. ", " .. place[2])
end
print("connected")
