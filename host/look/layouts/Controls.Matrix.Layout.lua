-- A matrix of numbers below its name.
{"Controls.Matrix.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
        },
        {"Item", Name = "matrix", MinHeight = 80},
    }
}
