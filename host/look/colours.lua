-- Colours by resource name: {red, green, blue} or {red, green, blue, alpha} from 0 to 255, or two of
-- these in a table where a resource has a second colour. A name that is left out takes the colour its
-- declaration gives. See docs/write-a-look.md.
{
    -- Grounds, from the deepest to the highest. Neutral greys only.
    ["System.ViewerColour"] = {27, 27, 27},     -- around the image
    ["System.BorderColour"] = {20, 20, 20},     -- one-pixel edges of panels and fields
    ["System.FieldColour"] = {29, 29, 29},      -- what is typed into, lists
    ["System.FieldAlternateColour"] = {33, 33, 33}, -- every second row of a list
    ["System.WindowColour"] = {41, 41, 41},
    ["System.FlatColour"] = {41, 41, 41},
    ["System.HeaderColour"] = {48, 48, 48},     -- titles of panels and columns, the menu bar
    ["System.ShineColour"] = {53, 53, 53},
    ["System.ButtonColour"] = {62, 62, 62},
    ["System.ButtonHoverColour"] = {74, 74, 74},
    ["System.ButtonPressedColour"] = {34, 34, 34},
    ["System.PopupColour"] = {34, 34, 34},      -- menus, drop-down lists
    ["System.TooltipColour"] = {62, 62, 62},

    -- Lines and marks on the grounds.
    ["System.LineColour"] = {72, 72, 72},       -- rulers, grids, separators on a dark ground
    ["System.ScrollColour"] = {88, 88, 88},
    ["System.ScrollHoverColour"] = {116, 116, 116},

    -- Text.
    ["System.TextColour"] = {190, 190, 190},
    ["System.BrightTextColour"] = {228, 228, 228}, -- values, titles, what the pointer is on
    ["System.FieldTextColour"] = {216, 216, 216},
    ["System.PlaceholderTextColour"] = {138, 138, 138},
    ["System.DisabledTextColour"] = {110, 110, 110},
    ["System.ErrorTextColour"] = {255, 140, 140},
    ["System.WarningTextColour"] = {223, 213, 122},
    ["System.LinkTextColour"] = {132, 184, 236},

    -- The one accent: focus, checks, progress, what is selected.
    ["System.AccentColour"] = {92, 158, 220},
    ["System.AccentTextColour"] = {12, 16, 20},
    ["System.SelectionColour"] = {44, 84, 122},
    ["System.SelectionTextColour"] = {255, 255, 255},
    ["System.SelectedItemColour"] = {{255, 255, 255}, {44, 84, 122}}, -- text, ground

    -- Marks of time: keys and whatever moves with them is green, as expressions are yellow.
    ["System.KeyColour"] = {124, 192, 148},
    ["System.CurrentTimeColour"] = {92, 158, 220},

    -- Marks over the picture: the tool's own, what the pointer is on, where a drag began, the way of an
    -- animated point, what moves with keys, what can't be changed.
    ["Viewer.OverlayColour"] = {224, 224, 224},
    ["Viewer.OverlayHighlightColour"] = {255, 196, 92},
    ["Viewer.OverlayOriginColour"] = {196, 144, 96},
    ["Viewer.OverlayPathColour"] = {124, 192, 148, 200},
    ["Viewer.OverlayAnimatedColour"] = {186, 220, 198},
    ["Viewer.OverlayLockedColour"] = {132, 132, 132},

    -- Controls.
    ["Controls.ColorRanges.BaseColour"] = {80, 80, 80},
    ["Controls.ColorRanges.HandleColour"] = {51, 153, 179},
    ["Controls.ColorWheel.TextColour"] = {208, 208, 208},
    ["Controls.ExpressionColour"] = {{230, 215, 135}, {9, 9, 9}},
    ["Controls.Gamma.BackgroundColour"] = {20, 20, 20},
    ["Controls.Gamma.CurveColour"] = {224, 224, 224},
    ["Controls.Gamma.DashedColour"] = {148, 148, 148},
    ["Controls.Gamma.MajorGridColour"] = {93, 93, 93},
    ["Controls.Gamma.MinorGridColour"] = {54, 54, 54},
    ["Controls.Histogram.BackgroundColour"] = {29, 29, 29},
    ["Controls.Histogram.GridColour"] = {255, 255, 255, 26},
    ["Controls.Histogram.GuidesColour"] = {71, 71, 71, 178},
    ["Controls.Histogram.InputBlueColour"] = {0, 121, 255, 102},
    ["Controls.Histogram.InputColour"] = {146, 146, 146, 102},
    ["Controls.Histogram.InputGreenColour"] = {0, 255, 0, 102},
    ["Controls.Histogram.InputRedColour"] = {255, 0, 0, 102},
    ["Controls.Histogram.OutputColour"] = {0, 0, 0, 127},
    ["Controls.InRangeColour"] = {{146, 146, 146}, {41, 41, 41}},
    ["Controls.Log.BackgroundColour"] = {20, 20, 20},
    ["Controls.Log.CurveColour"] = {224, 224, 224},
    ["Controls.Log.DashedColour"] = {148, 148, 148},
    ["Controls.Log.MajorGridColour"] = {93, 93, 93},
    ["Controls.Log.MinorGridColour"] = {54, 54, 54},
    ["Controls.Nest.TextColour"] = {208, 208, 208},
    ["Controls.Other.BorderColour"] = {20, 20, 20},
    ["Controls.Other.DisabledTextColour"] = {110, 110, 110},
    ["Controls.Other.FocusTextColour"] = {255, 255, 255},
    ["Controls.Other.TextColour"] = {220, 220, 220},
    ["Controls.Polyline.NextSkinColour"] = {110, 190, 240}, -- a shape's onion skins
    ["Controls.Polyline.PrevSkinColour"] = {240, 120, 110},
}
