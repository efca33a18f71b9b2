-- The tool that gives the image.
{"Controls.Image.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "source"},
            {"Item", Name = "clear", Weight = 0, MinWidth = 24, MaxWidth = 24},
        },
        {"Container", Name = "expression"},
    }
}
