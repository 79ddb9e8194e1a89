// What dialogs take of the system and the memory, and that they give all of it back; icons, and what the system refuses.
#include <windows.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "testbed/support/import_patch.h"
#include "tests/support/message_pump.h"
#include "tests/support/process_counts.h"
#include "toolkit_scene.h"

namespace {

using host_test::Entries;
using host_test::kDialog;

/// One function that the toolkit's module imports, replaced for as long as this lives.
class ToolkitImport {
  public:
    ToolkitImport(const char* library, const char* function, void* replacement)
        : library_(library),
          function_(function),
          original(testbed::PatchImport(Toolkit(), library, function, replacement)) {
        EXPECT_NE(original, nullptr) << function;
    }
    ~ToolkitImport() { testbed::PatchImport(Toolkit(), library_, function_, original); }
    ToolkitImport(const ToolkitImport&) = delete;
    ToolkitImport& operator=(const ToolkitImport&) = delete;

  private:
    static HMODULE Toolkit() { return GetModuleHandleW(L"host_toolkit.dll"); }

    const char* library_;
    const char* function_;

  public:
    void* const original;
};

template <typename Function>
void* Address(Function* function) {
    return reinterpret_cast<void*>(function);
}

/// What the toolkit holds, as told by its own calls.
struct Held {
    std::set<void*> blocks;
    std::set<HICON> icons;
    std::set<UINT_PTR> timers;
};
Held held;

void* CountedMalloc(std::size_t size) {
    void* const block = std::malloc(size);
    held.blocks.insert(block);
    return block;
}
void CountedFree(void* block) {
    held.blocks.erase(block);
    std::free(block);
}
HICON WINAPI CountedCreateIcon(PBYTE bits, DWORD size, BOOL icon, DWORD version, int width, int height,
                               UINT flags) {
    HICON made = CreateIconFromResourceEx(bits, size, icon, version, width, height, flags);
    if (made != nullptr) {
        held.icons.insert(made);
    }
    return made;
}
BOOL WINAPI CountedDestroyIcon(HICON icon) {
    held.icons.erase(icon);
    return DestroyIcon(icon);
}

UINT_PTR WINAPI CountedSetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure) {
    const UINT_PTR made = SetTimer(window, id, milliseconds, procedure);
    held.timers.insert(made);
    return made;
}
BOOL WINAPI CountedKillTimer(HWND window, UINT_PTR id) {
    held.timers.erase(id);
    return KillTimer(window, id);
}

/// A file beside the test program, deleted in the end.
class ProgramFile {
  public:
    ProgramFile(const std::string& name, const std::string& content) {
        std::string path(MAX_PATH, '\0');
        path.resize(GetModuleFileNameA(nullptr, path.data(), MAX_PATH));
        path_ = path.substr(0, path.find_last_of('\\') + 1) + name;
        std::ofstream(path_, std::ios::binary) << content;
    }
    ~ProgramFile() { DeleteFileA(path_.c_str()); }
    ProgramFile(const ProgramFile&) = delete;
    ProgramFile& operator=(const ProgramFile&) = delete;

  private:
    std::string path_;
};

/// A picture of one red pixel.
std::string RedPicture() {
    constexpr unsigned char kBytes[] = {
        0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48,
        0x44, 0x52, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00,
        0x00, 0x1f, 0x15, 0xc4, 0x89, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x44, 0x41, 0x54, 0x78,
        0x9c, 0x63, 0xf8, 0xcf, 0xc0, 0xf0, 0x1f, 0x00, 0x05, 0x00, 0x01, 0xff, 0x89, 0x99,
        0x3d, 0x1d, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};
    return {reinterpret_cast<const char*>(kBytes), sizeof(kBytes)};
}

constexpr const char* kIconDescription = "(Dialog Dialog (Resources (.Bitmap \"toolkit_test_large.png\") "
                                         "(.TitleBarImage \"toolkit_test_small.png\")"
                                         "(.SystemMenuButton True) (.Layout (Grid (Rows 1) (Cols 1)))))";

class Resources : public host_test::ToolkitTest {
  protected:
    HICON IconOf(WPARAM which) const {
        return reinterpret_cast<HICON>(SendMessageW(dialog, WM_GETICON, which, 0));
    }
    /// The colour in the middle of an icon.
    static COLORREF ColourOf(HICON icon) {
        constexpr int kSize = 16;
        HDC screen = GetDC(nullptr);
        HDC context = CreateCompatibleDC(screen);
        HBITMAP bitmap = CreateCompatibleBitmap(screen, kSize, kSize);
        HGDIOBJ previous = SelectObject(context, bitmap);
        DrawIconEx(context, 0, 0, icon, kSize, kSize, 0, nullptr, DI_NORMAL);
        const COLORREF colour = GetPixel(context, kSize / 2, kSize / 2);
        SelectObject(context, previous);
        DeleteObject(bitmap);
        DeleteDC(context);
        ReleaseDC(nullptr, screen);
        return colour;
    }

    void Cycle(bool destroysInside) {
        Manage(host_test::kLoginDescription);
        On(kUiActionDestroy, [] {});
        ui_set_timer(0, &host_test::Callback::Call, Keep([destroysInside] {
                         destroysInside ? ui_destroy_device(kDialog) : ui_exit_device(kDialog, 0);
                     }));
        Activate();
        ui_destroy_device(kDialog);
        callbacks.clear();
    }
};

using Icon = Resources;

TEST_F(Icon, IsReadFromTheFilesBesideTheProgram) {
    const ProgramFile large("toolkit_test_large.png", RedPicture());
    const ProgramFile small("toolkit_test_small.png", RedPicture());
    Manage(kIconDescription);
    EXPECT_EQ(ColourOf(IconOf(ICON_BIG)), RGB(255, 0, 0));
    EXPECT_EQ(ColourOf(IconOf(ICON_SMALL)), RGB(255, 0, 0));
}

TEST_F(Icon, IsTheSystemsWhereAFileIsMissingOrNoPicture) {
    HICON standard = LoadIconW(nullptr, IDI_APPLICATION);
    for (const std::string& content :
         {std::string(), std::string("no picture"), RedPicture().substr(0, 40)}) {
        const ProgramFile large("toolkit_test_large.png", content);
        Manage(kIconDescription);
        EXPECT_EQ(IconOf(ICON_BIG), standard);
        EXPECT_EQ(IconOf(ICON_SMALL), standard);
        ui_destroy_device(kDialog);
    }
}

TEST_F(Resources, AreGivenBackByTwoHundredDialogs) {
    const ProgramFile large("merido32.png", RedPicture());
    const ProgramFile small("merido.png", RedPicture());
    constexpr int kWarmUp = 5;
    constexpr int kCycles = 200;
    for (int i = 0; i < kWarmUp; ++i) {
        Cycle(i % 2 == 0);
    }
    const std::size_t windows = test_support::CountWindows();
    const std::size_t handles = test_support::CountHandles();
    const std::size_t drawn = test_support::CountGdiObjects();
    held = {};
    {
        const ToolkitImport allocation("msvcrt.dll", "malloc", Address(&CountedMalloc));
        const ToolkitImport release("msvcrt.dll", "free", Address(&CountedFree));
        const ToolkitImport icon("user32.dll", "CreateIconFromResourceEx", Address(&CountedCreateIcon));
        const ToolkitImport noIcon("user32.dll", "DestroyIcon", Address(&CountedDestroyIcon));
        const ToolkitImport timer("user32.dll", "SetTimer", Address(&CountedSetTimer));
        const ToolkitImport noTimer("user32.dll", "KillTimer", Address(&CountedKillTimer));
        for (int i = 0; i < kCycles; ++i) {
            Cycle(i % 2 == 0);
            EXPECT_TRUE(held.icons.empty());
            EXPECT_TRUE(held.timers.empty());
        }
    }
    // The registry's own list may have grown once; nothing grows with the number of dialogs.
    EXPECT_LE(held.blocks.size(), 2U);
    EXPECT_EQ(test_support::CountWindows(), windows);
    EXPECT_EQ(test_support::CountHandles(), handles);
    EXPECT_EQ(test_support::CountGdiObjects(), drawn);
}

int refusedCall = 0;
int calls = 0;

HWND WINAPI RefusingCreateWindow(DWORD extended, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y,
                                 int width, int height, HWND parent, HMENU menu, HINSTANCE module,
                                 LPVOID parameter) {
    return ++calls == refusedCall ? nullptr
                                  : CreateWindowExW(extended, name, title, style, x, y, width, height, parent,
                                                    menu, module, parameter);
}

TEST_F(Resources, WindowsThatTheSystemRefusesLeaveADeviceThatMayBeManagedLater) {
    const ToolkitImport creation("user32.dll", "CreateWindowExW", Address(&RefusingCreateWindow));
    for (refusedCall = 1; refusedCall <= 2; ++refusedCall) {
        Create();
        On(kUiActionDestroy, [this] { Log("destroy"); });
        const std::size_t windows = test_support::CountWindows();
        calls = 0;
        EXPECT_NE(ui_manage_device(kDialog), 0);
        EXPECT_EQ(test_support::CountWindows(), windows);
        EXPECT_EQ(NativeWindow(kDialog), nullptr);
        EXPECT_EQ(NativeWindow(kDialog, "NakedWindow"), nullptr);
        EXPECT_NE(ui_activate_device(kDialog), 0);
        EXPECT_EQ(log, Entries{});
        EXPECT_EQ(ui_manage_device(kDialog), 0);
        EXPECT_EQ(ui_destroy_device(kDialog), 0);
        EXPECT_EQ(log, Entries{"destroy"});
        log.clear();
    }
}

int allocations = 0;
int refusedAllocation = 0;

void* RefusingMalloc(std::size_t size) {
    return ++allocations == refusedAllocation ? nullptr : std::malloc(size);
}

/// Runs `step` with its first allocation refused, then its second, and so on, until it succeeds.
template <typename Step>
int RefusalsUntilSuccess(Step step) {
    constexpr int kMost = 1000;
    const ToolkitImport allocation("msvcrt.dll", "malloc", Address(&RefusingMalloc));
    int refusals = 0;
    int result = -1;
    while (result != 0 && refusals < kMost) {
        refusedAllocation = ++refusals;
        allocations = 0;
        result = step();
    }
    refusedAllocation = 0;
    EXPECT_EQ(result, 0);
    return refusals - 1;
}

TEST_F(Resources, MemoryThatIsRefusedMakesAStepFailAndNothingElse) {
    EXPECT_GT(RefusalsUntilSuccess([] {
                  return ui_create_device_from_string(kDialog, "Dialog", host_test::kLoginDescription);
              }),
              10);
    EXPECT_GT(RefusalsUntilSuccess([] {
                  return ui_modify(kDialog, kDialog, kUiAttributeTitle, L"A title that is not that short", 0);
              }),
              0);
    host_test::Callback* const callback = Keep([this] { Log("called"); });
    EXPECT_GT(RefusalsUntilSuccess([&] {
                  return ui_add_action(kDialog, kDialog, kUiActionDestroy, &host_test::Callback::Call,
                                       callback, 0);
              }),
              0);
    EXPECT_GT(RefusalsUntilSuccess([&] { return ui_set_timer(0, &host_test::Callback::Call, callback); }), 0);
    EXPECT_GT(RefusalsUntilSuccess([] { return ui_manage_device(kDialog); }), 0);
    ASSERT_TRUE(test_support::PumpUntil([this] { return !log.empty(); }));
    ui_destroy_device(kDialog);
    EXPECT_EQ(log, (Entries{"called", "called"}));
}

} // namespace
