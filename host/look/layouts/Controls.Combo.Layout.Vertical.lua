-- A choice below its name, for long texts.
{"Controls.Combo.Layout.Vertical",
    {"VGroup",
        {"Item", Name = "label", MinHeight = 20, MaxHeight = 20},
        {"Item", Name = "combo", MinHeight = 24},
        {"Container", Name = "expression"},
    }
}
