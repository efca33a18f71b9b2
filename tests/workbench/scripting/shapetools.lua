-- The toolbar of shapes at several widths of the window, and where their tools are added. arg[1] is the sample,
-- arg[2] the folder that takes pictures.

local view = viewer()
local scale = os.getenv("QT_SCALE_FACTOR") or "1"

local function equal(a, b, what)
    assert(a == b, string.format("%s: %s instead of %s", what, tostring(a), tostring(b)))
end
local function button(text)
    for _, each in ipairs(view:toolbar()) do
        if each.text == text then return each end
    end
    error("no button " .. text)
end

-- Tools that are edited with shapes are added under a label of their own.
document.open(arg[1])
waitrender()
answer(function(menu)
    local last = menu:entries()[#menu:entries()]
    equal(last.text, "Add Poly Tool", "the label")
    local names = {}
    for _, entry in ipairs(last.children) do names[#names + 1] = entry.text end
    equal(table.concat(names, ", "), "Polygon Mask, B-Spline Mask, Path", "its tools")
    menu:run("Add Poly Tool/Polygon Mask")
end)
widget("addtool"):click(8, 8)
waitrender()
equal(document.selected():class(), "PolygonMask", "added")

-- What can't be used says why.
view:focus()
equal(button("Smooth").reason, "The shape has no points.", "without points")
for _, place in ipairs({{0.2, 0.3}, {0.8, 0.3}, {0.8, 0.7}, {0.2, 0.7}}) do
    view:click(view:normalised(place[1], place[2]))
end
view:key("N", {shift = true})
view:click(5, 5)
wait(0.1)
local toolbar = widget("overlaytoolbar")
equal(widget("overlaytoolbar.Follow Inner"):property("toolTip"),
    "Follow Inner Poly\nThe shape has no outer polygon.", "the tip")
assert(not widget("overlaytoolbar.Follow Inner"):property("checked"), "unlit without an outer polygon")
equal(widget("overlaytoolbar.Smooth"):property("toolTip"), "Smooth (Shift+S)", "a tip alone")

-- A line stands between groups.
window():size(2560, 700)
wait(0.2)
local function gap(left, right)
    local from, to = widget("overlaytoolbar." .. left):geometry(), widget("overlaytoolbar." .. right):geometry()
    return to.x - from.x - from.width
end
local side = gap("Smooth", "Linear")
for _, pair in ipairs({{"Follow Inner", "Multiframe"}, {"Multiframe", "Onion Skin"}, {"Onion Skin", "Roto Assist"}}) do
    assert(gap(pair[1], pair[2]) > side + 4, "a line in front of " .. pair[2])
end

-- All is in reach, however narrow: what does not fit goes behind an arrow.
local more = toolbar:find("qt_toolbar_ext_button")
for _, width in ipairs({900, 1440, 2560}) do
    window():size(width, 700)
    wait(0.2)
    waitrender()
    window():screenshot(string.format("%s/shapetools-%d-%sx.png", arg[2], width, scale))
    equal(more:visible(), not widget("overlaytoolbar.Roto Assist"):visible(), "the arrow at " .. width)
end
window():size(900, 700)
wait(0.2)
assert(more:visible(), "not all fit")
local function ofMore(run)
    answer(run)
    more:click(4, 10)
    wait(0.1)
end
ofMore(function(menu)
    menu:screenshot(string.format("%s/shapetools-more-%sx.png", arg[2], scale))
    for _, entry in ipairs(menu:entries()) do
        if entry.text == "Follow Inner" then
            equal(entry.tip, "Follow Inner Poly\nThe shape has no outer polygon.", "a tip behind the arrow")
        end
    end
    menu:run("Onion Skin/Onion Skin") -- the button itself, which has a menu, too
end)
assert(button("Onion Skin").checked, "clicked behind the arrow")
ofMore(function(menu) menu:run("Multiframe/All") end)
assert(button("Multiframe").checked, "chosen behind the arrow")
document.new()
