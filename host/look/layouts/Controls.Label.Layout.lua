-- A text over the whole width.
{"Controls.Label.Layout",
    {"HGroup", MinHeight = 24,
        {"Item", Name = "label"},
    }
}
