-- How slowly points leave their first key and reach their last.
{"Dialogs.EasePoints.Layout",
    {"VGroup", Margin = 16, Spacing = 8, MinWidth = 360,
        {"HGroup", Weight = 0, Spacing = 8, MinHeight = 24,
            {"Item", Name = "m_LabelIn", Weight = 0, MinWidth = 80, MaxWidth = 80},
            {"Item", Name = "m_SliderIn"},
            {"Item", Name = "m_EditIn", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"HGroup", Weight = 0, Spacing = 8, MinHeight = 24,
            {"Item", Name = "m_LabelOut", Weight = 0, MinWidth = 80, MaxWidth = 80},
            {"Item", Name = "m_SliderOut"},
            {"Item", Name = "m_EditOut", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"Item", Name = "m_Note", Weight = 0, MinHeight = 16},
        {"Spacer", MinHeight = 8},
        {"Item", Name = "m_OKCancel", Weight = 0},
    }
}
