-- The two curves that part the tones into ranges. They bring the names of the ranges along.
{"Controls.ColorRanges.Layout",
    {"VGroup", Spacing = 4,
        {"HGroup", MinHeight = 24,
            {"Item", Name = "label"},
        },
        {"Item", Name = "ranges", MinWidth = 96, MinHeight = 168},
        {"Container", Name = "expression"},
    }
}
