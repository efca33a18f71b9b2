-- Whatever mouse, keys, history, time and other tools do to colour controls, also in the middle of
-- drags: no group of the history stays open, and the history leads to the first values and back.
-- arg[1]: the seed.

local seed = tonumber(arg[1])
math.randomseed(seed)
local R = math.random

preferences.set("Color.Mode", seed % 3)
answer(function(dialog) dialog:reject() end)
document.new()
local tools = {}
for i, class in ipairs{"Background", "ColorGain", "ColorGradient", "ColorCorrector"} do
    tools[i] = document.add(class)
end
waitrender()
local base = #undo.texts()

-- What the history holds: folding, locking and the time are none of it.
local function state()
    local lines = {}
    for line in document.text():gmatch("[^\n]+") do
        if not (line:find("Suppression = ", 1, true) or line:find("Locked", 1, true) or
                line:find("CurrentTime", 1, true)) then
            lines[#lines + 1] = line
        end
    end
    return table.concat(lines, "\n")
end
local first = state()

local done, held = {}, nil
-- A script's event may be refused, as on what has just gone.
local function try(what, call)
    done[#done + 1] = what
    pcall(call)
end

local function how()
    return {ctrl = R(4) == 1, shift = R(4) == 1, alt = R(8) == 1}
end

local function any()
    for _ = 1, 8 do
        local list = controls()
        local c = list[R(math.max(#list, 1))]
        local names = c and c:layout() or {}
        local name = names[R(math.max(#names, 1))]
        local w = name and c:widget(name)
        if w and w:visible() and w:enabled() then
            return w, name
        end
    end
end

local function release()
    if held then
        local from = held
        held = nil
        try("release", function() from:release(R(-20, 220), R(-20, 220)) end)
    end
end

local keys = {"Left", "Right", "Up", "Down", "PgUp", "PgDown", "Tab", "Escape", "Home", "End",
              "Return", "Space"}
local texts = {"0.5", "1/0", "nan", "1e30", "-3", "=time/10", "0.2+0.1", "", "abc", "255", "2*"}
local values = {0, 1, 0.3, -1, 1e30}

local function edit(input)
    if input:type() ~= "Number" then
        return
    end
    try("input " .. input:id(), ({
        function() input:addkey(R(0, 20)) end,
        function() input:expression(R(2) == 1 and "time/7" or "") end,
        function() input:set(values[R(#values)]) end,
        function() input:reset() end,
    })[R(4)])
end

local function press()
    release()
    local w, name = any()
    if w then
        local width, height = w:size()
        held = w
        try("press " .. name, function() w:press(R(0, width), R(0, height), how()) end)
    end
end

local function move()
    if held then
        try("move", function() held:move(R(-30, 250), R(-30, 250), how()) end)
    end
end

local acts = {
    press, press, press, press, press, move, move, move, move, move, release,
    function()
        local w, name = any()
        if w then
            try("key " .. name, function() w:key(keys[R(#keys)], how()) end)
        end
    end,
    function()
        local w, name = any()
        if w and name:find("^edit") then
            release()
            try("type " .. name, function()
                w:key("A", {ctrl = true})
                w:type(texts[R(#texts)])
                w:key(R(2) == 1 and "Return" or "Tab")
            end)
        end
    end,
    function()
        if #undo.texts() > base or undo.depth() > 0 then
            try("undo", undo.undo)
        end
    end,
    function() try("redo", undo.redo) end,
    function() try("select", function() document.select(tools[R(#tools)]) end) end,
    function() try("time", function() document.time(R(0, 20)) end) end,
    function()
        local list = tools[R(#tools)]:inputs()
        edit(list[R(#list)])
    end,
    function()
        local tool = tools[R(#tools)]
        try("lock", function() tool:locked(R(3) == 1) end)
    end,
    function()
        try("viewer", function() viewer():click(R(5, 200), R(5, 200), how()) end)
    end,
}

for _ = 1, 40 do
    done = {}
    for _ = 1, 30 do
        acts[R(#acts)]()
    end
    release()
    assert(undo.depth() == 0, "a group stays open after " .. table.concat(done, ", "))
    document.select(nil) -- also gives up what is armed
    wait(0.01)
end

local last, count = state(), #undo.texts() - base
assert(count > 0, "nothing was done")
for _ = 1, count do
    assert(undo.undo())
end
assert(state() == first, "the history does not lead back")
for _ = 1, count do
    assert(undo.redo())
end
assert(state() == last, "the history does not lead on")
preferences.set("Color.Mode", nil)
print("done: " .. count .. " entries")
