-- Two numbers, one at each end of a bar.
{"Controls.Range.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "editlow", Weight = 0, MinWidth = 64, MaxWidth = 64},
            {"Item", Name = "range"},
            {"Item", Name = "edithigh", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"Container", Name = "expressionlow"},
        {"Container", Name = "expressionhigh"},
    }
}
