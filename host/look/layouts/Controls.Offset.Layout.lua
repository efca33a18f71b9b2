-- Two numbers side by side.
{"Controls.Offset.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "xlabel", Weight = 0},
            {"Item", Name = "editx"},
            {"Item", Name = "ylabel", Weight = 0},
            {"Item", Name = "edity"},
        },
        {"Container", Name = "expressionx"},
        {"Container", Name = "expressiony"},
    }
}
