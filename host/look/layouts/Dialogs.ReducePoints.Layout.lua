-- How far the curve may come to lie from where it was.
{"Dialogs.ReducePoints.Layout",
    {"VGroup", Margin = 16, Spacing = 8, MinWidth = 360,
        {"HGroup", Weight = 0, Spacing = 8, MinHeight = 24,
            {"Item", Name = "m_LabelError", Weight = 0, MinWidth = 80, MaxWidth = 80},
            {"Item", Name = "m_SliderError"},
            {"Item", Name = "m_EditError", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"Item", Name = "m_Note", Weight = 0, MinHeight = 16},
        {"Spacer", MinHeight = 8},
        {"Item", Name = "m_OKCancel", Weight = 0},
    }
}
