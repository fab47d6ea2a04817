// Where a toast appears over the active window.
#pragma once

enum class ZIQToastPosition {
    Top,
    Center,
    Bottom,
};

/// The position of the kit's notices: the middle of the window the user is looking at.
inline constexpr ZIQToastPosition ZIQCSToastPositionCenter = ZIQToastPosition::Center;
