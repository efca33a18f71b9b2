-- Room between controls.
{"Controls.Spacer.Layout",
    {"VGroup", MinHeight = 8, MaxHeight = 8,
        {"Spacer"},
    }
}
