-- A list of values below its name, and a field for the chosen one.
{"Controls.ScriptValList.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
        },
        {"Item", Name = "list", MinHeight = 96},
        {"Item", Name = "edit", MinHeight = 24},
        {"Container", Name = "expression"},
    }
}
