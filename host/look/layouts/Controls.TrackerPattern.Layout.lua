-- The pattern being followed, and how well.
{"Controls.TrackerPattern.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
        },
        {"HGroup", Spacing = 8,
            {"Item", Name = "pattern", Weight = 0, MinWidth = 96, MinHeight = 96},
            {"VGroup", Spacing = 4,
                {"Item", Name = "channels", MinHeight = 16, Align = "left"},
                {"Item", Name = "quality", MinHeight = 8},
                {"Item", Name = "status", MinHeight = 24},
                {"Spacer"},
            },
        },
    }
}
