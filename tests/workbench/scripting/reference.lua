-- Calls everything that docs/script-the-workbench.md describes, in its order. arg[1]: the guide,
-- arg[2]: a folder to write to. The last part compares the guide, this file and the real calls.

local guide, folder = arg[1], arg[2]

local function read(path)
    local file = assert(io.open(path))
    local text = file:read("*a")
    file:close()
    return text
end

local function near(a, b)
    return math.abs(a - b) < 1e-9
end

-- Fails, with a message that holds all of the texts.
local function refused(call, ...)
    local ok, message = pcall(call)
    assert(not ok, "this should be refused")
    for _, part in ipairs({...}) do
        assert(message:find(part, 1, true), part .. " is missing in: " .. message)
    end
end

local function has(list, wanted)
    for _, item in ipairs(list) do
        if item == wanted or type(item) == "table" and item.text == wanted then
            return true
        end
    end
    return false
end

-- Documents and tools
local picture = document.path():match("^.*/") .. "dusk.exr"
document.new()
assert(#document.tools() == 0 and document.path() == "" and not document.modified())
assert(has(toolclasses(), "Blur"))
document.open(picture)
assert(not document.modified(), "a picture that was only looked at asks to be saved")
local source = document.tools()[1]
assert(source:class() == "ImageSource" and document.selected() == source)
local grade = document.add("BrightnessContrast")
local blur = document.add("Blur", 2)
assert(blur:position() == 2 and grade:position() == 3 and document.selected() == blur)
blur:move(3)
assert(document.tools()[3] == blur and document.tool("Blur1") == blur)
assert(document.tool("nothing") == nil)
assert(blur:name("Softer") == "Softer" and blur:name() == "Softer")
assert(not blur:enabled(false) and not blur:enabled() and blur:enabled(true))
assert(blur:locked(true) and blur:locked())
refused(function() blur:remove() end, "locked")
assert(not blur:locked(false))
blur:remove()
assert(#document.tools() == 2)
refused(function() blur:name() end, "Softer", "removed")
refused(function() document.add("Nothing") end, "Nothing")
document.select(nil)
assert(document.selected() == nil and #controls() == 0)
document.select(grade)

local first, last = document.range(10, 30)
assert(first == 10 and last == 30)
refused(function() document.range(5, 4) end)
assert(document.time(12) == 12 and document.time() == 12)
assert(document.rate(25) == 25 and document.rate() == 25)
local path = folder .. "/reference.marlox"
document.save(path)
assert(document.path() == path and not document.modified() and read(path) == document.text())

-- Inputs
local gain, lift = grade:input("Gain"), grade:input("Lift")
assert(gain:id() == "Gain" and gain:name() == "Gain" and gain:type() == "Number")
assert(has(grade:inputs(), gain) and grade:input("Nothing") == nil)
gain:set(2)
assert(gain:get() == 2 and document.modified())
refused(function() gain:set({}) end, "Gain", "Number")
assert(gain:reset() and gain:get() == 1)
assert(gain:addkey(10, "linear") and not pcall(gain.addkey, gain, 10, "soft"))
gain:set(3, 20)
assert(gain:get(15) == 2 and gain:get() == 1.4)
assert(gain:movekey(20, 30) and not gain:movekey(20, 25) and gain:removekey(10))
local key = gain:keys()[1]
assert(#gain:keys() == 1 and key.time == 30 and key.value == 3 and key.interpolation == "smooth")
assert(lift:expression("time / 100 + Gain") == "time / 100 + Gain" and lift:problem() == "")
assert(near(lift:get(), 3.12))
lift:expression("nonsense(")
assert(lift:problem() ~= "")
assert(lift:expression("") == "" and lift:expression() == "")
local image = grade:input("Input")
assert(image:type() == "Image" and image:get() == nil and image:source() == nil)
assert(image:source(source) == source and image:source() == source and image:source(false) == nil)
refused(function() image:source(grade) end, "Input")
assert(gain:attribute("IAD_HighScale", 4) == 4 and gain:attribute("IAD_HighScale") == 4)
refused(function() gain:attribute("IAD_Nothing") end, "IAD_Nothing")

-- Undo and preferences
document.open(path)
grade, gain = document.tool("BrightnessContrast1"), nil
document.select(grade)
gain = grade:input("Gain")
assert(#undo.texts() == 0 and undo.text() == "" and undo.redotext() == "" and not undo.undo())
undo.start("Two at once")
gain:set(2)
grade:input("Lift"):set(0.5)
assert(undo.depth() == 1)
undo.finish()
assert(undo.depth() == 0 and #undo.texts() == 1 and undo.text() == "Two at once")
assert(undo.undo() and gain:get() == 1 and undo.redotext() == "Two at once")
assert(undo.redo() and gain:get() == 2 and not undo.redo())
undo.start("Nothing")
gain:set(3)
undo.finish(false)
assert(gain:get() == 2 and undo.texts()[1] == "Two at once" and #undo.texts() == 1)
undo.undo()
preferences.set("Test.Name", "text")
assert(preferences.get("Test.Name") == "text")
preferences.set("Test.Name", {"one", "two"})
assert(table.concat(preferences.get("Test.Name"), "+") == "one+two")
preferences.set("Test.Name", "one")
assert(preferences.get("Test.Name", {})[1] == "one")
preferences.set("Test.Name", nil)
assert(preferences.get("Test.Name", 7) == 7)

-- Window, widgets, controls
waitrender()
assert(window():name() == "mainwindow" and window():class() == "MainWindow")
assert(viewer():class() == "ViewerWidget" and inspector():name() == "inspector")
assert(widget("toollist"):visible() and window():find("toollist") == widget("toollist"))
refused(function() widget("nothing") end, "nothing")
assert(window():find("nothing") == nil)
assert(has(actions(), "undo") and action("redo") and gain:get() == 2)
assert(action("undo") and gain:get() == 1 and not action("undo"))
refused(function() action("nothing") end, "nothing")
local c = control("Gain")
assert(c == control(gain) and control("Nothing") == nil and has(controls(), c))
grade:input("Range"):set(0)
assert(control("Posterise") and not control("Posterise"):visible(), "folded, yet there")
assert(grade:input("Range"):attribute("LBL_Rows") == 3)
grade:input("Range"):set(1)
assert(c:class() == "SliderControl" and c:inputs()[1] == gain and c:fault() == "")
assert(has(c:layout(), "slider"))
refused(function() c:widget("nothing") end, "nothing")
gain:set(2)
assert(has(c:menu(), "Reset to Default"))
c:run("Reset to Default")
assert(gain:get() == 1)
c:run("Animate")
c:run("Interpolation/Step")
assert(gain:keys()[1].interpolation == "step")
refused(function() c:run("Nothing") end, "Nothing")
gain:removekey(document.time())
local slider, edit = c:widget("slider"), c:widget("edit")
local place, row = slider:geometry(), c:geometry()
local width, height = slider:size()
assert(place.width == width and place.height == height and width > 50 and place.x > row.x)
assert(slider:enabled() and slider:visible() and not control("Gain"):widget("minlabel"):visible())
assert(control("Contrast"):widget("minlabel"):text() ~= "" and c:widget("label"):text() == "Gain")
assert(slider:property("value") == 1 and has(slider:properties(), "pixelLow"))
refused(function() slider:property("pixelLow", 3) end, "pixelLow")
refused(function() slider:property("nothing") end, "nothing")
slider:property("toolTip", "other")
assert(slider:property("toolTip") == "other")
local spoken = slider:accessible()
assert(spoken.role == "Slider" and spoken.value == 1 and spoken.maximum > spoken.minimum)
window():size(1300, 800)
assert(window():size() == 1300)

-- Mouse, wheel, keys
local y = height / 2
local knob = slider:property("knobPixel")
log.clear()
slider:press(knob, y)
assert(slider:property("dragging"))
slider:move(knob + 10, y, {ctrl = true})
slider:move(knob + 12.5, y, {ctrl = false})
slider:release(knob + 12.5, y)
assert(not slider:property("dragging") and gain:get() > 1 and undo.depth() == 0)
assert(log.values()[1].input == "Gain" and log.values()[1].tool == "BrightnessContrast1")
local final = log.values()[#log.values()]
assert(final.value == gain:get() and final.time == document.time())
assert(#log.undo() == 1 and log.undo()[1] == undo.text())
log.clear()
assert(#log.values() == 0 and #log.undo() == 0)
slider:drag({{slider:property("knobPixel"), y}, {width / 2, y}, {0, y}})
assert(gain:get() == slider:property("minValue"))
slider:doubleclick(width / 2, y, {alt = true})
assert(gain:get() == 1, gain:get())
slider:click(width / 2, y, {button = "left"})
slider:focus()
assert(slider:focused())
local value = gain:get()
slider:wheel(width / 2, y, 1)
assert(gain:get() > value)
value = gain:get()
slider:key("Left", {shift = true})
assert(gain:get() < value)
refused(function() slider:key("NoKey") end, "NoKey")
edit:key("A", {ctrl = true})
edit:type("3/4")
assert(edit:text() == "3/4" and edit:focused())
edit:key("Return", {action = "press"})
edit:key("Return", {action = "release"})
assert(gain:get() == 0.75)
refused(function() c:widget("minlabel"):click(1, 1) end, "not visible")
local x, up = viewer():normalised(0.5, 0.5)
local x2, y2 = viewer():image(0, 0)
assert(x2 < x and y2 > up)
gain:set(1)
waitrender()
local direct = readimage(picture)
local shown, stored = viewer():color(100, 200), direct:pixel(100, 200)
assert(#shown == 4 and math.abs(shown[1] - stored[1]) < 1e-3, shown[1] .. " " .. stored[1])
viewer():property("zoom", 4)
local px, py = viewer():image(100.5, 200.5)
assert(near(viewer():sample(px, py)[1], shown[1]) and #viewer():sample(px, py, 5) == 4)
assert(math.abs(viewer():sample(px, py, {1, 1}, grade)[2] - stored[2]) < 1e-3)
assert(viewer():sample(px, -1e6) == nil and viewer():sample(px, py, 3, document.tools()[1]) == nil)
refused(function() viewer():sample(px, py, 2) end, "odd")
local zoom = viewer():property("zoom")
viewer():wheel(x, up, 1)
assert(viewer():property("zoom") > zoom and viewer():message() == "")
action("fit")

-- Overlays
local mover = document.add("Transform")
waitrender()
local mark = viewer():overlay("Centre")
assert(#viewer():overlays() == 3 and viewer():overlays()[1] == mark)
assert(mark:class() == "CrosshairControl" and mark:inputs()[1] == mover:input("Centre"))
assert(mark:active() and mark:editable() and mark:condition() == "plain" and mark:drag() == "idle")
assert(mark:GetAttrs({"CHCD_CurrentX"}).CHCD_CurrentX == 0.5)
viewer():move(viewer():normalised(0.5, 0.5))
assert(viewer():current() == mark and viewer():tip():find("Centre") and viewer():focusedoverlay() == nil)
assert(math.abs(viewer():cursor().x - 0.5) < 1e-2 and viewer():cursor().shape == "move")
assert(viewer():drawn():find("normal", 1, true))
assert(#viewer():toolbar() == 0 and #viewer():menu() == 0 and viewer():menu_text() == "")
refused(function() viewer():press_button("Done") end, "no button", "Done")
refused(function() viewer():popdown("Publish") end, "no button", "Publish")
refused(function() viewer():run_menu("Create/Ellipse") end, "Create/Ellipse")
refused(function() viewer():overlay("Gain") end, "Gain")
refused(function() viewer(2) end, "viewer 2")
mover:remove()

-- Dialogs
gain:set(3)
document.range(10, 29)
answer(function(dialog)
    assert(dialog == dialogs.current() and dialog:name() == "asktosave")
    assert(dialog:text():find("Save the changes") and dialog:title() ~= nil)
    dialog:press("Cancel")
end)
action("new")
assert(#document.tools() > 0 and dialogs.current() == nil)
answer(function(dialog)
    assert(has(dialog:fields(), "framerate") and has(dialog:fields(), "proxy"))
    dialog:fill("framerate", 30)
    refused(function() dialog:fill("nothing", 1) end, "nothing")
    dialog:accept()
end)
action("preferences")
assert(document.rate() == 30)
answer(function(dialog)
    dialog:fill("framerate", 50)
    dialog:cancel()
end)
action("preferences")
assert(document.rate() == 30)
answer(function(dialog)
    dialog:fill("file", picture)
    answer(function(second) second:press("Discard") end)
    dialog:accept()
end)
action("open")
assert(#document.tools() == 1 and #undo.texts() == 0)
refused(function() action("preferences") end, "Preferences", "nobody")
dialogs.queue(function() error("wrong") end)
refused(function() action("preferences") end, "wrong")
document.select(document.add("Transform"))
local size = control("Size"):widget("slider")
answer(function(menu)
    assert(has(menu:entries(), "Animate"))
    menu:cancel()
end)
size:click(5, 5, {button = "right"})
answer(function(menu) menu:run("Animate") end)
size:click(5, 5, {button = "right"})
assert(#document.selected():input("Size"):keys() == 1)

-- Pictures and waiting
local grabbed = size:grab()
assert(grabbed:width() >= size:size() and grabbed:height() > 0)
assert(#grabbed:pixel(0, 0) == 3)
refused(function() grabbed:pixel(-1, 0) end, "outside")
for name, shot in pairs({window = window(), viewer = viewer(), slider = size}) do
    local png = folder .. "/reference-" .. name .. ".png"
    shot:screenshot(png)
    local saved, inside = readimage(png), shot:size()
    assert(saved:width() >= inside and saved:height() > 0)
end
refused(function() size:screenshot("/proc/nothing/x.png") end, "/proc/nothing")
waitrender(20)
local clock = os.time()
wait(1)
assert(os.time() > clock)
render(folder .. "/reference.exr", 12)
assert(readimage(folder .. "/reference.exr"):width() == direct:width())
refused(function() render(folder .. "/reference.nothing") end, "reference.nothing")
refused(function() readimage(folder .. "/nothing.exr") end, "nothing.exr")

-- Classes
local slidable
for _, row in ipairs(classes()) do
    slidable = row.id == "SliderControl" and row or slidable
end
assert(slidable.class == "SliderControl" and slidable.type == "SliderControl")
assert(slidable.parent == "InputControl" and slidable.kind == "InputControl" and slidable.specified)
local made = create("SliderControl", {IC_TickFreq = 7})
assert(made:GetAttrs({"IC_TickFreq"}).IC_TickFreq == 7)
made:SetAttrs({IC_TickFreq = 5})
assert(made:GetAttrs().IC_TickFreq == 5)
refused(function() create("SliderControl", {Nothing = 1}) end, "Nothing")
local filter = document.selected():input("Filter")
assert(table.concat(filter:attribute("CMBS_Entry"), " ") == "Nearest Bilinear Bicubic")
assert(#filter:attribute("CMBS_Entry", {"one", "two"}) == 2)
assert(control("Filter"):widget("combo"):text() == "two")
refused(function() filter:attribute("CMBS_Entry", {1}) end, "CMBS_Entry")
assert(create("ComboControl", {CMBS_Entry = {"a", "b"}}):GetAttrs().CMBS_Entry[2] == "b")
assert(uncast(cast(made, "SliderControl")) == made and cast(made, "ScrewControl") == nil)
assert(usercontrol({Control = "SliderControl", Name = "Mine"}):class() == "SliderControl")
assert(create("ScrewControl"):Do("IsGeneric"))
refused(function() made:Do("IsGeneric") end, "IsGeneric")
assert(isvalid(made))
local standard = plugins.list()[1]
refused(function() plugins.load(standard) end, standard, "loaded already")
plugins.unload(standard)
assert(#plugins.list() == 0 and not isvalid(made) and control("Size") == nil)
refused(function() create("SliderControl") end, "SliderControl")
plugins.load(standard)
assert(#plugins.list() == 1 and control("Size"):class() == "SliderControl")

-- The guide, this file and the calls that there are.
local documented, own = read(guide), read(arg.file)
assert(script_folder == arg.file:match("^(.*)/"))
local calls = help()
assert(#calls > 100 and #help("undo.") == 8 and #help("answer") == 1)
local missing = {}
for _, name in ipairs(calls) do
    local call = name:gsub("^[^.:]*:", ":") -- "Tool:name" is called as "tool:name"
    for where, text in pairs({guide = documented, test = own}) do
        if not text:find(call .. "(", 1, true) and not text:find(call .. "{", 1, true) then
            table.insert(missing, name .. " in the " .. where)
        end
    end
end
assert(#missing == 0, "not there: " .. table.concat(missing, ", "))
local known = {}
for _, name in ipairs(calls) do
    known[name:match("[^.:]*$")] = true
end
for span in documented:gmatch("`[^`\n]+`") do
    for name in span:gmatch("([%a_]+)[({]") do
        local there = known[name] or _G[name] or os[name] or name == "function"
        assert(there, "the guide tells of " .. name .. ", which is not there")
    end
end
print("reference done")
