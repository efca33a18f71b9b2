-- The histogram, and below it the buttons that show its layers.
{"Controls.Histogram.Layout",
    {"VGroup", Spacing = 4,
        {"Item", Name = "histogram", MinWidth = 160, MinHeight = 128},
        {"HGroup", Spacing = 4, MinHeight = 24,
            {"Item", Name = "buttoninput", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Item", Name = "buttonreference", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Item", Name = "buttonoutput", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Item", Name = "buttoncurve", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Spacer"},
        },
    }
}
