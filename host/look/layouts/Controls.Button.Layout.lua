-- A button as wide as the fields of the other controls.
{"Controls.Button.Layout",
    {"HGroup", Spacing = 8, MinHeight = 24,
        {"Spacer", Weight = 0, MinWidth = 110, MaxWidth = 110},
        {"Item", Name = "button"},
    }
}
