-- A list of check boxes below its name.
{"Controls.CheckList.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
        },
        {"Item", Name = "list", MinHeight = 96},
        {"Container", Name = "expression"},
    }
}
