-- Sizes of the list, in pixels.
{
    RowHeight = 24,
    Rows = 4, -- shown without scrolling
}
