-- The curves, with the buttons and numbers of the chosen point below.
{"Controls.LUT.Layout",
    {"VGroup", Spacing = 4,
        {"Item", Name = "view", MinWidth = 160, MinHeight = 200},
        {"HGroup", Spacing = 4, MinHeight = 24,
            {"Item", Name = "channels", Weight = 0},
            {"Spacer"},
            {"Item", Name = "buttonpick", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Item", Name = "editin", Weight = 0, MinWidth = 64, MaxWidth = 64},
            {"Item", Name = "editout", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"Container", Name = "expression"},
    }
}
