-- One channel of a stop's colour.
{"Controls.Gradient.Layout.Slider",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "labelcolor", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "slidercolor"},
            {"Item", Name = "resetcolor", Weight = 0},
            {"Item", Name = "editcolor", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
    }
}
