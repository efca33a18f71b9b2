-- Where the parts of the drawn thumbwheel stand, in pixels.
{
    -- The mark that resets: from the frame's left and top.
    Reset = {5, 5},
    -- What keeps its size at the frame bitmap's edges: left, top, right, bottom.
    Margins = {3, 3, 3, 3},
    -- The frame's inner area, which the grip bitmap is repeated in: distance from its edges.
    Grip = {2, 2, 2, 2},
}
