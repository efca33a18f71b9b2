-- A row of buttons of which one is down.
{"Controls.MultiButton.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "buttons"},
        },
        {"Container", Name = "expression"},
    }
}
