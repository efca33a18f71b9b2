-- Where the parts of the drawn range bar stand, in pixels.
{
    -- What keeps its size at the edges of the track and of the bar: left, top, right, bottom.
    Margins = {3, 3, 3, 3},
    Normal = {0, 1, 0, 1},
    -- How far the bar's caps reach over its ends.
    Cap = 7,
}
