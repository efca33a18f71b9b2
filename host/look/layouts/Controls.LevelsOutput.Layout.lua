-- The triangles below a gradient, and their two numbers.
{"Controls.LevelsOutput.Layout",
    {"VGroup",
        {"Item", Name = "levels", MinHeight = 24},
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "lowlabel", Weight = 0},
            {"Item", Name = "editlow", Weight = 0, MinWidth = 64, MaxWidth = 64},
            {"Spacer"},
            {"Item", Name = "highlabel", Weight = 0},
            {"Item", Name = "edithigh", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"Container", Name = "expressionlow"},
        {"Container", Name = "expressionhigh"},
    }
}
