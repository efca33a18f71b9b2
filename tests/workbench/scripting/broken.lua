-- Broken looks, documents, pictures and plug-ins: each is told by name, with place and reason, and the
-- workbench carries on. arg[1]: a folder to write to; arg[2], arg[3]: libraries that are no plug-ins.
-- The look in use is broken in several places: see scripts.cmake.

local folder = arg[1]
local standard = plugins.list()[1]
local picture = document.path():match("^.*/") .. "dusk.exr"

local function read(path, size)
    local file = assert(io.open(path, "rb"))
    local text = file:read(size or "*a")
    file:close()
    return text
end

local function written(name, text)
    local path = folder .. "/" .. name
    local file = assert(io.open(path, "wb"))
    file:write(text)
    file:close()
    return path
end

local function holds(text, ...)
    for _, part in ipairs({...}) do
        assert(text:find(part, 1, true), part .. " is missing in: " .. text)
    end
end

local function refused(call, path, ...)
    local before, libraries = document.text(), #plugins.list()
    local ok, message = pcall(call, path)
    assert(not ok, path .. " was taken")
    holds(message, path, ...)
    assert(document.text() == before and #plugins.list() == libraries, path .. " changed something")
end

-- The look: sliders without a layout say so in their place, everything else works.
local grade = document.tool("BrightnessContrast1")
document.select(grade)
waitrender()
wait(1)
local told = widget("consoleoutput"):text()
holds(control("Gain"):fault(), "Controls.Slider.Layout")
holds(told, "layouts/Controls.Slider.Layout.lua: line 2", "bitmaps/Icons.Workbench.Play.svg",
    "colours.lua: \"System.TextColour\"", control("Gain"):fault())
local _, times = told:gsub("layouts/Controls.Slider.Layout.lua: ", "")
assert(times == 1, "a fault of the look is told " .. times .. " times")
_, times = told:gsub("layout can't be built", "")
local _, missing = told:gsub("missing or broken", "")
assert(times + missing == 1, "the layout of all sliders is told " .. times + missing .. " times")
grade:input("Gain"):set(2)
assert(undo.undo() and grade:input("Gain"):get() == 1)

-- Documents
local good = document.text()
local function with(from, to)
    local text, times = good:gsub(from, to)
    assert(times > 0, from)
    return text
end
local documents = {
    empty = {"", "empty"},
    cut = {good:sub(1, #good / 2), "line"},
    text = {"Dear all,\nplease find attached", "line 1"},
    picture = {read(picture, 4000), "line 1"},
    number = {"42", "document"},
    other = {with("marlox document", "other document"), "no document"},
    newer = {with("Version = 1", "Version = 99"), "99"},
    range = {with("FrameRange = %b{}", "FrameRange = \"all\""), "FrameRange"},
    tools = {with("Tools = .*", "Tools = 7}"), "Tools"},
    class = {with("BrightnessContrast\"", "NoSuchTool\""), "NoSuchTool"},
    value = {with("Gain = %b{}", "Gain = {Value = {\"much\"}}"), "Gain"},
}
for name, case in pairs(documents) do
    refused(document.open, written(name .. ".marlox", case[1]), case[2])
end
refused(document.open, folder .. "/missing.marlox")
refused(document.open, folder)

-- Pictures, by a script and from the menu
refused(document.open, written("empty.exr", ""))
refused(document.open, written("text.png", "no picture"))
refused(document.open, written("cut.exr", read(picture, 200)))
refused(document.open, folder .. "/missing.exr")
answer(function(dialog)
    answer(function(message)
        holds(message:text(), folder .. "/text.png")
        message:accept()
    end)
    dialog:fill("file", folder .. "/text.png")
    dialog:accept()
end)
action("open")

-- A picture that breaks off is opened by its first lines and fails while it is read.
local late = written("late.exr", read(picture, 100000))
local source = document.tool("ImageSource1"):input("File")
source:set(late)
waitrender()
holds(viewer():message(), late)
undo.undo()
waitrender()
assert(viewer():message() == "", viewer():message())

-- Plug-ins
refused(plugins.load, folder .. "/missing.so", "no such file")
refused(plugins.load, folder)
refused(plugins.load, written("empty.so", ""), "not a library")
refused(plugins.load, written("text.so", "not a library at all"), "not a library")
refused(plugins.load, written("cut.so", read(standard, 20000)), "breaks off")
refused(plugins.load, standard, "loaded already")
refused(plugins.load, arg[2], "registers no classes")
refused(plugins.load, arg[3], "unresolved symbol")
refused(plugins.unload, folder .. "/missing.so", "not loaded")

-- Scripts
refused(dofile, folder .. "/missing.lua")
refused(dofile, written("broken.lua", "local x = \nprint(("), ":2:")

document.select(document.add("Blur"))
document.tool("Blur1"):input("XSize"):set(5)
waitrender()
assert(#classes() > 50 and viewer():message() == "" and undo.depth() == 0)
print("broken things told")
