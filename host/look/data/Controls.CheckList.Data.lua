-- Sizes of the list, in pixels.
{
    RowHeight = 24,
    Rows = 4, -- shown without scrolling
    Check = 22, -- room of the check box
}
