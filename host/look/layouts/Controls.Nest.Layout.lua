-- The heading of a group of controls: a triangle that opens and closes it, and its name.
{"Controls.Nest.Layout",
    {"HGroup", Spacing = 4, MinHeight = 24,
        {"Item", Name = "button", Weight = 0, MinWidth = 16, MaxWidth = 16},
        {"Item", Name = "label"},
    }
}
