-- The keys of a shape, and what can be done with those that are selected.
{"Dialogs.PolyKeyList.Layout",
    {"VGroup", Margin = 8, Spacing = 8, MinWidth = 264,
        {"Item", Name = "m_KeyList", MinHeight = 218},
        {"HGroup", Weight = 0, Spacing = 8, MinHeight = 24,
            {"Item", Name = "m_KindCombo"},
            {"Item", Name = "m_GoToButton", Weight = 0},
            {"Item", Name = "m_DeleteButton", Weight = 0},
        },
        {"Item", Name = "m_StateLabel", Weight = 0, MinHeight = 16},
    }
}
