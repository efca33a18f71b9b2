-- A number on a slider. The three range labels stand below the slider and take no room while they are
-- hidden; the expression line opens below all.
{"Controls.Slider.Layout",
    {"VGroup",
        {"HGroup", Spacing = 8, MinHeight = 24,
            {"Item", Name = "label", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"Item", Name = "slider"},
            {"Item", Name = "edit", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"HGroup", Spacing = 8,
            {"Spacer", Weight = 0, MinWidth = 110, MaxWidth = 110},
            {"HGroup", Spacing = 2,
                {"Item", Name = "minlabel", Weight = 3, Align = "left"},
                {"Item", Name = "midlabel", Weight = 4, Align = "hcentre"},
                {"Item", Name = "maxlabel", Weight = 3, Align = "right"},
            },
            {"Spacer", Weight = 0, MinWidth = 64, MaxWidth = 64},
        },
        {"Container", Name = "expression"},
    }
}
