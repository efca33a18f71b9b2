-- Which shapes of a file to import.
{"Dialogs.ImportShape.Layout",
    {"VGroup", Margin = 16, Spacing = 8, MinWidth = 320,
        {"HGroup", Weight = 0, Spacing = 8, MinHeight = 24,
            {"Item", Name = "m_ImportIndexLabel"},
            {"Item", Name = "m_ImportIndexCombo", Weight = 0, MinWidth = 96},
        },
        {"Item", Name = "m_ImportNameLabel", Weight = 0, MinHeight = 16},
        {"Item", Name = "m_ImportAllCheck", Weight = 0, MinHeight = 24},
        {"Spacer", MinHeight = 8},
        {"Item", Name = "m_OKCancel", Weight = 0},
    }
}
