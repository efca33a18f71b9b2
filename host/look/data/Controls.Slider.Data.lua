-- Where the parts of the drawn slider stand, in pixels.
{
    -- The mark at the default value: from the default's pixel to the bitmap's left edge, and from the
    -- track's top to the bitmap's top.
    Reset = {-3, 3},
    -- What keeps its size at the track bitmap's edges: left, top, right, bottom. The rest stretches.
    Margins = {3, 3, 3, 3},
}
