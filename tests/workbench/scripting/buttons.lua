-- The toolbar, the context menu and the keys of an overlay in the viewer, and a pen. arg[1] is the sample,
-- arg[2] a library with an overlay that has buttons, arg[3] the folder that takes pictures.

local view = viewer()

local function equal(a, b, what)
    assert(a == b, string.format("%s: %s instead of %s", what, tostring(a), tostring(b)))
end

plugins.load(arg[2])
document.open(arg[1])
local tool = document.add("Transform")
waitrender()
view:focus()
local toolbar = widget("overlaytoolbar")
assert(not toolbar:visible() and #view:toolbar() == 0, "crosshairs have no buttons")
tool:input("Pivot"):attribute("IAS_Overlay", "ButtonsOverlay")
wait(0.1)
assert(toolbar:visible(), "the overlay's buttons show")

-- Buttons.
local function button(text)
    for _, each in ipairs(view:toolbar()) do
        if each.text == text then return each end
    end
end
equal(#view:toolbar(), 6, "buttons")
equal(button("Click").tip, "Click Append (Shift+C)", "a tip")
assert(button("Done").checked and not button("Click").checked and not button("Lock").enabled)
widget("timeruler"):focus()
widget("overlaytoolbar.Click"):click(8, 8)
assert(button("Click").checked and not button("Done").checked, "a click on the button")
assert(view:focused(), "drawing takes the keyboard")
equal(view:focusedoverlay(), view:overlay("Pivot"), "and the focus")
widget("overlaytoolbar.Click"):click(8, 8)
wait(0.1)
assert(widget("overlaytoolbar.Click"):property("checked"), "one of a group stays")
view:press_button("Done")
assert(not pcall(view.press_button, view, "Lock"), "a disabled button")
assert(not pcall(view.press_button, view, "Publish"), "a menu alone")

-- Pop-downs and the context menu.
equal(#view:popdown("Publish"), 2, "entries of a pop-down")
view:run_menu("Publish to Path", "Publish")
view:move(view:normalised(0.5, 0.5))
equal(view:tip():match("[^\n]*"), "menu 6 of 20022", "a pop-down's entry")
answer(function(menu)
    equal(menu:entries()[2].enabled, false, "not while nothing is drawn")
    menu:run("Publish to Path")
end)
widget("overlaytoolbar.Publish"):click(8, 8)
equal(view:menu_text(), "Click Append\nDone\nClosed\nCreate\n  Ellipse…\nTrack Points\n", "the menu")
equal(view:menu()[3].shortcut, "Shift+O", "a shortcut")
equal(view:menu()[5].tip, "There is no tracker yet.", "why not")
view:run_menu("Closed")
assert(view:menu()[3].checked, "closed")
answer(function(menu)
    assert(menu:entries()[3].checked, "closed in the menu")
    menu:run("Create/Ellipse…")
end)
local x, y = view:normalised(0.5, 0.5)
view:click(x, y, {button = "right"})
equal(view:tip():match("[^\n]*"), "menu 4 of 0", "the menu's entry")

-- Keys: shortcuts of the window are the overlay's where it uses them, and only those.
view:key("R")
equal(widget("channels"):text(), "Colour", "R is the overlay's")
view:key("G")
equal(widget("channels"):text(), "Green", "G is the window's")
view:key("G")
view:key("C", {shift = true})
assert(button("Click").checked, "Shift+C draws")
view:move(x + 60, y + 30)
equal(view:cursor().shape, "cross", "the pointer while drawing")

-- A pen, anywhere while drawing.
local tilted = {pressure = 0.25, tilty = -45}
view:press(x + 60, y + 30, tilted)
view:release(x + 60, y + 30, tilted)
equal(view:tip():match("[^\n]*"), "down 0.25 90 single", "pressure and lean of the pen")
equal(undo.text(), "Add Point", "drawn")
view:doubleclick(x + 90, y)
equal(view:tip():match("[^\n]*"), "down 1 0 double", "a double click of the mouse")
view:key("Escape")
assert(button("Done").checked and view:focusedoverlay(), "Escape was the overlay's")
view:key("Escape")
assert(not view:focusedoverlay(), "and then the viewer's")

-- Narrow: the buttons that do not fit go behind an arrow.
window():screenshot(arg[3] .. "/buttons.png")
local extension = toolbar:find("qt_toolbar_ext_button")
assert(not extension:visible(), "all fit")
toolbar:property("maximumWidth", 120)
wait(0.1)
assert(extension:visible() and not widget("overlaytoolbar.Onion Skin"):visible(), "not all fit")
document.select(nil)
wait(0.1)
assert(not toolbar:visible(), "no tool, no buttons")
document.open(arg[1])
plugins.unload(arg[2])
