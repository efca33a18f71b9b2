-- A colour: its name, swatch and buttons, and a row for each channel ("sliders" is filled with
-- Controls.Color.Layout.Slider, once for each).
{"Controls.Color.Layout.Collapsed",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "buttonexpand", Weight = 0, MinWidth = 16, MaxWidth = 16},
            {"Item", Name = "label"},
            {"Item", Name = "swatch", Weight = 0, MinWidth = 40, MaxWidth = 40, MinHeight = 20},
            {"Item", Name = "buttonpick", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Item", Name = "buttonsample", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Item", Name = "reset", Weight = 0, MinWidth = 20, MaxWidth = 20},
        },
        {"VGroup", Name = "colorgroup",
            {"Container", Name = "sliders", Spacing = 4},
        },
        {"Container", Name = "expressioncolor"},
    }
}
