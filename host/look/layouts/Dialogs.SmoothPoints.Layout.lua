-- How far points go towards the middle of their neighbours.
{"Dialogs.SmoothPoints.Layout",
    {"VGroup", Margin = 16, Spacing = 8, MinWidth = 360,
        {"HGroup", Weight = 0, Spacing = 8, MinHeight = 24,
            {"Item", Name = "m_LabelStrength", Weight = 0, MinWidth = 80, MaxWidth = 80},
            {"Item", Name = "m_SliderStrength"},
            {"Item", Name = "m_EditStrength", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"Item", Name = "m_Note", Weight = 0, MinHeight = 16},
        {"Spacer", MinHeight = 8},
        {"Item", Name = "m_OKCancel", Weight = 0},
    }
}
