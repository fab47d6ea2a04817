// Where a toast appears over the active window.
#pragma once

enum class ZIQToastPosition {
    Top,
    Center,
    Bottom,
};
