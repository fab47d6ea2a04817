// Where a toast appears over the window it belongs to.
#pragma once

namespace platform {

enum class ToastPosition {
    Top = 0,
    Center = 1,
    Bottom = 2,
};

} // namespace platform
