-- The two curves that part the tones into ranges.
{"Controls.ColorRanges.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
        },
        {"Item", Name = "ranges", MinWidth = 160, MinHeight = 128},
    }
}
