// What the login dialog looks like.
#pragma once

namespace kelda {

/// The dialog, whose only component is a bare window, in the resource language of the host's UI toolkit. The bytes of this text
/// are fixed, its empty first line and its columns included.
inline constexpr char kDialogDescription[] = R"ui(
(Dialog FormBasedAuthenticationDialog
    (Components
        (SubLayout                      Layout)
    )

    (Resources
        (.Bitmap                        "merido32.png")
        (.TitleBarImage                 "merido.png")
        (.AlwaysOnTop                   True)
        (.SystemMenuButton              True)
        (.CloseButton                   True)
        (.Layout
            (Grid (Rows 1) (Cols 1)
                Layout
            )
        )
    )
)

(Layout Layout
    (Components
        (NakedWindow                    NakedWindow)
    )

    (Resources
        (NakedWindow.AttachLeft         True)
        (NakedWindow.AttachRight        True)
        (NakedWindow.AttachTop          True)
        (NakedWindow.AttachBottom       True)
        (NakedWindow.KeyboardInput      True)
        (NakedWindow.TopOffset          0)
        (NakedWindow.BottomOffset       0)
        (NakedWindow.LeftOffset         0)
        (NakedWindow.RightOffset        0)
        (.AttachLeft                    True)
        (.AttachRight                   True)
        (.AttachTop                     True)
        (.AttachBottom                  True)
        (.TopOffset                     3)
        (.BottomOffset                  3)
        (.LeftOffset                    3)
        (.RightOffset                   3)
        (.Layout
            (Grid (Rows 1) (Cols 1)
                NakedWindow
            )
        )
    )
)

)ui";

} // namespace kelda
