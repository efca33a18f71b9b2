-- A colour space beside its name.
{"Controls.Gamut.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "combo"},
        },
        {"Container", Name = "expression"},
    }
}
