-- A line between controls.
{"Controls.Separator.Layout",
    {"VGroup", MinHeight = 9, MaxHeight = 9, Margin = {0, 4, 0, 4},
        {"Item", Name = "line", MinHeight = 1, MaxHeight = 1},
    }
}
