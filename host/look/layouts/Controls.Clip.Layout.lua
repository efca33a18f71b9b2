-- An image sequence and a button that looks for one.
{"Controls.Clip.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "edit"},
            {"Item", Name = "browse", Weight = 0, MinWidth = 72, MaxWidth = 72},
        },
        {"Container", Name = "expression"},
    }
}
