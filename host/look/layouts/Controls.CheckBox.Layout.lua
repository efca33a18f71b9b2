-- A check box with its text beside it, in line with the fields of other controls.
{"Controls.CheckBox.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Spacer", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "checkbox"},
        },
        {"Container", Name = "expression"},
    }
}
