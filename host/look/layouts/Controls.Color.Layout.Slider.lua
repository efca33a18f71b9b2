-- One channel of a colour.
{"Controls.Color.Layout.Slider",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "labelcolor", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "slidercolor"},
            {"Item", Name = "resetcolor", Weight = 0, MinWidth = 20, MaxWidth = 20},
            {"Item", Name = "editcolor", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
    }
}
