-- A text, of one line or many, below its name.
{"Controls.TextEdit.Layout",
    {"VGroup", Spacing = 2,
        {"Item", Name = "label", MinHeight = 20, MaxHeight = 20},
        {"Item", Name = "textedit", MinHeight = 24},
        {"Container", Name = "expression"},
    }
}
