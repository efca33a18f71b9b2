-- A font and its style.
{"Controls.Fontfile.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "font", Weight = 2},
            {"Item", Name = "style"},
        },
        {"Container", Name = "expression"},
    }
}
