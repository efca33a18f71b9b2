-- The triangles below a histogram, and their three numbers.
{"Controls.Levels.Layout",
    {"VGroup",
        {"Item", Name = "levels", MinHeight = 24},
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "lowlabel", Weight = 0},
            {"Item", Name = "editlow", Weight = 0, MinWidth = 64, MaxWidth = 64},
            {"Spacer"},
            {"Item", Name = "gammalabel", Weight = 0},
            {"Item", Name = "editgamma", Weight = 0, MinWidth = 64, MaxWidth = 64},
            {"Spacer"},
            {"Item", Name = "highlabel", Weight = 0},
            {"Item", Name = "edithigh", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"Container", Name = "expressionlow"},
        {"Container", Name = "expressiongamma"},
        {"Container", Name = "expressionhigh"},
    }
}
