-- A line between controls, in the middle of its place.
{"Controls.Separator.Layout",
    {"VGroup", MinHeight = 9, MaxHeight = 9,
        {"Item", Name = "line"},
    }
}
