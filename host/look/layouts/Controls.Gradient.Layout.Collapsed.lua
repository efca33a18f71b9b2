-- A gradient: its name and buttons over the gradient itself.
{"Controls.Gradient.Layout.Collapsed",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "buttonexpand", Weight = 0, MinWidth = 16, MaxWidth = 16},
            {"Item", Name = "label"},
            {"Item", Name = "previous", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Item", Name = "next", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Item", Name = "delete", Weight = 0, MinWidth = 24, MaxWidth = 24},
            {"Item", Name = "buttonpick", Weight = 0, MinWidth = 24, MaxWidth = 24},
        },
        {"Item", Name = "gradient", MinHeight = 32},
        {"Container", Name = "expression"},
    }
}
