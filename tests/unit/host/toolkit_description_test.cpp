// Descriptions in the resource language: which are taken, and what is said of those that are not.
#include <windows.h>

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "toolkit_scene.h"
#include "trace_capture.h"

namespace {

using host_test::CapturedLine;
using host_test::kDialog;
using host_test::kLoginDescription;
using host_test::TraceCapture;

/// What is traced where a description is refused; an empty text for one that is taken. The device is gone afterwards.
std::string Refusal(const std::string& description) {
    const TraceCapture capture;
    const int result = ui_create_device_from_string(kDialog, "Dialog", description.c_str());
    const std::vector<CapturedLine> lines = capture.Lines();
    if (result == 0) {
        EXPECT_EQ(ui_destroy_device(kDialog), 0);
        EXPECT_TRUE(lines.empty()) << lines[0].text;
        return {};
    }
    EXPECT_EQ(lines.size(), 1U) << description;
    if (lines.size() != 1) {
        return "not exactly one line";
    }
    EXPECT_EQ(lines[0].module, "host");
    EXPECT_EQ(lines[0].component, "Toolkit");
    EXPECT_EQ(lines[0].type, dp::TraceType::Failure);
    EXPECT_NE(ui_destroy_device(kDialog), 0) << "a refused device must not exist";
    return lines[0].text;
}

std::string Repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

/// A dialog of one window; `more` stands among its resources, on line 3.
std::string OneWindow(const std::string& more, const std::string& cells = "W") {
    return "(Dialog Dialog (Components (NakedWindow W))\n(Resources\n" + more +
           "\n(.Layout (Grid (Rows 1) (Cols 1) " + cells + "))))";
}

/// A dialog whose page is the layout A.
std::string PageIsA(const std::string& layouts) {
    return "(Dialog Dialog (Components (SubLayout A)) (Resources (.Layout (Grid (Rows 1) (Cols 1) A))))\n" +
           layouts;
}

std::string LayoutOf(const std::string& name, const std::string& component) {
    const std::string child = component.substr(component.find(' ') + 1);
    return "(Layout " + name + " (Components (" + component +
           ")) (Resources (.Layout (Grid (Rows 1) (Cols 1) " + child + "))))\n";
}

/// A chain of `count` layouts inside each other.
std::string Chain(int count) {
    std::string layouts = LayoutOf("A", "SubLayout L1");
    for (int i = 1; i < count - 1; ++i) {
        layouts += LayoutOf("L" + std::to_string(i), "SubLayout L" + std::to_string(i + 1));
    }
    return PageIsA(layouts + LayoutOf("L" + std::to_string(count - 1), "NakedWindow W"));
}

TEST(Description, OfALoginDialogIsTaken) {
    EXPECT_EQ(Refusal(kLoginDescription), "");
}

TEST(Description, MayHaveBlanksOrNoneWhereverTheyMakeNoDifference) {
    EXPECT_EQ(Refusal(OneWindow("")), "");
    EXPECT_EQ(Refusal("\r\n\t " + OneWindow("( .Bitmap\"a.png\")(W.LeftOffset\r\n-5)") + "\r\n"), "");
}

TEST(Description, MayHaveItsSectionsInAnyOrderAndBlocksThatAreNotUsed) {
    EXPECT_EQ(Refusal("(Dialog Dialog (Resources (W.AttachLeft True) (.Layout (Grid (Rows 2) (Cols 2) W)))"
                      "(Components (NakedWindow W)))" +
                      LayoutOf("Spare", "NakedWindow W") +
                      "(Dialog Other (Resources (.Layout (Grid (Rows 1) (Cols 1)))))"),
              "");
}

TEST(Description, NamesAreToldApartByCase) {
    EXPECT_EQ(Refusal("(Dialog Dialog (Components (NakedWindow W) (NakedWindow w))"
                      "(Resources (.Layout (Grid (Rows 1) (Cols 2) W w))))"),
              "");
}

struct Refused {
    std::string description;
    const char* reason;
};

void ExpectRefused(const std::vector<Refused>& table) {
    for (const Refused& row : table) {
        EXPECT_EQ(Refusal(row.description), std::string("description, ") + row.reason) << row.description;
    }
}

TEST(Description, WithBrokenSyntaxIsRefusedWithItsLine) {
    ExpectRefused({
        {"", "line 1: there is no dialog \"Dialog\""},
        {"\n\n", "line 3: there is no dialog \"Dialog\""},
        {"Dialog", "line 1: \"(\" expected"},
        {"\n)", "line 2: \")\" closes nothing"},
        {OneWindow("") + "\n)", "line 5: \")\" closes nothing"},
        {"\n(Dialog\n(Components", "line 3: \"(\" is not closed"},
        {"(", "line 1: \"(\" is not closed"},
        {OneWindow("(.Bitmap \"a.png)"), "line 3: text is not closed"},
        {OneWindow("(.Bitmap \"a.png\n\")"), "line 3: text is not closed"},
        {"(\"", "line 1: text is not closed"},
        {OneWindow("(W.LeftOffset 3x)"), "line 3: malformed number"},
        {OneWindow("(W.LeftOffset -)"), "line 3: malformed number"},
        {OneWindow("(W.LeftOffset 1.5)"), "line 3: malformed number"},
        {OneWindow("(W.LeftOffset 32768)"), "line 3: number is too large"},
        {OneWindow("(W.LeftOffset -99999999999999999999999)"), "line 3: number is too large"},
        {"(Dialog #)", "line 1: unexpected character \"#\""},
        {"(Dialog \x01)", R"(line 1: unexpected character "\x01")"},
        {"(Dialog " + std::string(129, 'n') + ")", "line 1: name is too long"},
        {Repeated("(\n", 33), "line 33: lists are nested too deeply"},
        {Repeated("(", 1'000'000), "line 1: lists are nested too deeply"},
    });
}

TEST(Description, AtTheLimitsIsTaken) {
    EXPECT_EQ(Refusal(OneWindow("(W.LeftOffset 32767)(W.RightOffset -32767)")), "");
    EXPECT_EQ(Refusal("(Dialog Dialog (Components (NakedWindow " + std::string(128, 'n') +
                      ")) (Resources (.Layout (Grid (Rows 64) (Cols 64) " + std::string(128, 'n') + "))))"),
              "");
    EXPECT_EQ(Refusal(Chain(15)), "") << "sixteen with the dialog itself";
}

TEST(Description, WithBlocksThatAreNoneIsRefusedWithItsLine) {
    ExpectRefused({
        {"()", "line 1: (Dialog ...) or (Layout ...) expected"},
        {"(Window W)", "line 1: (Dialog ...) or (Layout ...) expected"},
        {"(\"Dialog\" Dialog)", "line 1: (Dialog ...) or (Layout ...) expected"},
        {"(dialog Dialog)", "line 1: (Dialog ...) or (Layout ...) expected"},
        {"(Dialog)", "line 1: a name without dots expected"},
        {"(Dialog \"Dialog\")", "line 1: a name without dots expected"},
        {"(Dialog 7)", "line 1: a name without dots expected"},
        {"(Dialog a.b)", "line 1: a name without dots expected"},
        {"(Dialog Dialog)", "line 1: \"Dialog\" has no layout"},
        {"(Dialog Dialog\nW)", "line 2: (Components ...) or (Resources ...) expected"},
        {"(Dialog Dialog\n(Others))", "line 2: (Components ...) or (Resources ...) expected"},
        {"(Dialog Dialog\n(Components)\n(Components))", "line 3: there are two sections \"Components\""},
        {"(Dialog Dialog\n(Resources)\n(Resources))", "line 3: there are two sections \"Resources\""},
        {OneWindow("") + "\n" + OneWindow(""), "line 5: there are two blocks of the name \"Dialog\""},
        {PageIsA(LayoutOf("A", "NakedWindow W") + LayoutOf("A", "NakedWindow W")),
         "line 3: there are two blocks of the name \"A\""},
        {LayoutOf("Dialog", "NakedWindow W"), "line 2: there is no dialog \"Dialog\""},
        {"(Dialog Other (Resources (.Layout (Grid (Rows 1) (Cols 1)))))",
         "line 1: there is no dialog \"Dialog\""},
    });
}

TEST(Description, WithWrongComponentsIsRefusedWithItsLine) {
    ExpectRefused({
        {"(Dialog Dialog (Components\nW))", "line 2: a component is given as (TYPE NAME)"},
        {"(Dialog Dialog (Components\n(NakedWindow)))", "line 2: a component is given as (TYPE NAME)"},
        {"(Dialog Dialog (Components\n(NakedWindow W V)))", "line 2: a component is given as (TYPE NAME)"},
        {"(Dialog Dialog (Components\n(\"NakedWindow\" W)))", "line 2: a component is given as (TYPE NAME)"},
        {"(Dialog Dialog (Components\n(Button W)))", "line 2: unknown component type \"Button\""},
        {"(Dialog Dialog (Components\n(NakedWindow 3)))", "line 2: a name without dots expected"},
        {"(Dialog Dialog (Components\n(NakedWindow W.V)))", "line 2: a name without dots expected"},
        {"(Dialog Dialog (Components (NakedWindow W)\n(SubLayout W)))",
         "line 2: there are two components \"W\""},
        {"(Dialog Dialog (Components (NakedWindow W)\n(NakedWindow V))\n"
         "(Resources (.Layout (Grid (Rows 1) (Cols 1) W))))",
         "line 2: component \"V\" is in no cell"},
    });
}

TEST(Description, WithWrongAttributesIsRefusedWithItsLine) {
    ExpectRefused({
        {OneWindow("W"), "line 3: a resource is given as (NAME.ATTRIBUTE VALUE)"},
        {OneWindow("()"), "line 3: a resource is given as (NAME.ATTRIBUTE VALUE)"},
        {OneWindow("(W True)"), "line 3: a resource is given as (NAME.ATTRIBUTE VALUE)"},
        {OneWindow("(W.AttachLeft)"), "line 3: a resource is given as (NAME.ATTRIBUTE VALUE)"},
        {OneWindow("(W.AttachLeft True True)"), "line 3: a resource is given as (NAME.ATTRIBUTE VALUE)"},
        {OneWindow("(\"W.AttachLeft\" True)"), "line 3: a resource is given as (NAME.ATTRIBUTE VALUE)"},
        {OneWindow("(V.AttachLeft True)"), "line 3: unknown component \"V\""},
        {OneWindow("(W.Colour 3)"), "line 3: unknown attribute \"Colour\""},
        {OneWindow("(W. 3)"), "line 3: unknown attribute \"\""},
        {OneWindow("(. 3)"), "line 3: unknown attribute \"\""},
        {OneWindow("(W.Attach.Left True)"), "line 3: unknown attribute \"Attach.Left\""},
        {OneWindow("(W.CloseButton True)"), "line 3: unknown attribute \"CloseButton\""},
        {OneWindow("(.AttachLeft True)"), "line 3: unknown attribute \"AttachLeft\""},
        {OneWindow("(W.Layout True)"), "line 3: unknown attribute \"Layout\""},
        {OneWindow("(W.AttachLeft 1)"), "line 3: attribute \"AttachLeft\" needs True or False"},
        {OneWindow("(W.AttachLeft true)"), "line 3: attribute \"AttachLeft\" needs True or False"},
        {OneWindow("(W.AttachLeft \"True\")"), "line 3: attribute \"AttachLeft\" needs True or False"},
        {OneWindow("(W.AttachLeft (True))"), "line 3: attribute \"AttachLeft\" needs True or False"},
        {OneWindow("(W.LeftOffset True)"), "line 3: attribute \"LeftOffset\" needs a number"},
        {OneWindow("(W.LeftOffset \"3\")"), "line 3: attribute \"LeftOffset\" needs a number"},
        {OneWindow("(.Bitmap 3)"), "line 3: attribute \"Bitmap\" needs the name of a file"},
        {OneWindow("(.Bitmap a.png)"), "line 3: attribute \"Bitmap\" needs the name of a file"},
        {OneWindow("(.Bitmap \"\")"), "line 3: attribute \"Bitmap\" needs the name of a file"},
        {OneWindow(R"((.Bitmap "..\a.png"))"), "line 3: attribute \"Bitmap\" needs the name of a file"},
        {OneWindow("(.Bitmap \"../a.png\")"), "line 3: attribute \"Bitmap\" needs the name of a file"},
        {OneWindow("(.Bitmap \"C:a.png\")"), "line 3: attribute \"Bitmap\" needs the name of a file"},
        {OneWindow("(W.AttachLeft True)\n(W.AttachLeft True)"),
         "line 4: attribute \"AttachLeft\" is given twice"},
    });
}

TEST(Description, WithAWrongGridIsRefusedWithItsLine) {
    const std::string begin =
        "(Dialog Dialog (Components (NakedWindow W) (NakedWindow V))\n(Resources (.Layout ";
    ExpectRefused({
        {begin + "True)))", "line 2: (Grid ...) expected"},
        {begin + "(Rows 1))))", "line 2: (Grid ...) expected"},
        {begin + "(Grid))))", "line 2: (Rows NUMBER) expected"},
        {begin + "(Grid\n(Cols 1) (Rows 1)))))", "line 3: (Rows NUMBER) expected"},
        {begin + "(Grid (Rows True) (Cols 1)))))", "line 2: (Rows NUMBER) expected"},
        {begin + "(Grid (Rows 1 1) (Cols 1)))))", "line 2: (Rows NUMBER) expected"},
        {begin + "(Grid (Rows 1)))))", "line 2: (Cols NUMBER) expected"},
        {begin + "(Grid (Rows 1) W))))", "line 2: (Cols NUMBER) expected"},
        {begin + "(Grid (Rows 0) (Cols 1)))))", "line 2: Rows is out of range"},
        {begin + "(Grid (Rows 1)\n(Cols 65)))))", "line 3: Cols is out of range"},
        {begin + "(Grid (Rows -1) (Cols 1)))))", "line 2: Rows is out of range"},
        {begin + "(Grid (Rows 2) (Cols 1)\nW\nX))))", "line 4: a cell names no component: \"X\""},
        {begin + "(Grid (Rows 2) (Cols 1)\nW\n3))))", "line 4: a cell names no component: \"\""},
        {begin + "(Grid (Rows 2) (Cols 1)\nW\n\"V\"))))", "line 4: a cell names no component: \"V\""},
        {begin + "(Grid (Rows 2) (Cols 1)\nW\nW))))", "line 4: component \"W\" is in two cells"},
        {begin + "(Grid (Rows 1) (Cols 1) W V))))", "line 2: there are more components than cells"},
        {begin + "(Grid (Rows 1) (Cols 2) W V))\n(.Layout (Grid (Rows 1) (Cols 1)))))",
         "line 3: attribute \"Layout\" is given twice"},
    });
}

TEST(Description, WithLayoutsThatDoNotFitTogetherIsRefusedWithItsLine) {
    ExpectRefused({
        {PageIsA(""), "line 1: there is no layout \"A\""},
        {PageIsA(LayoutOf("a", "NakedWindow W")), "line 1: there is no layout \"A\""},
        {PageIsA(LayoutOf("A", "SubLayout B")), "line 2: there is no layout \"B\""},
        {OneWindow("") + "\n" + LayoutOf("Spare", "SubLayout B"), "line 5: there is no layout \"B\""},
        {PageIsA(LayoutOf("A", "SubLayout A")), "line 2: layout \"A\" is used twice"},
        {PageIsA(LayoutOf("A", "SubLayout B") + LayoutOf("B", "SubLayout A")),
         "line 3: layout \"A\" is used twice"},
        {PageIsA(LayoutOf("A", "NakedWindow A")), "line 2: component \"A\" is used twice"},
        {Chain(16), "line 17: layouts are nested too deeply"},
        {Chain(5000), "line 17: layouts are nested too deeply"},
    });
}

TEST(Description, WithUnusedBlocksThatDoNotFitTogetherIsRefusedWithItsLine) {
    const std::string used = OneWindow("") + "\n";
    ExpectRefused({
        {used + LayoutOf("Spare", "NakedWindow Spare") + LayoutOf("A", "SubLayout A"),
         "line 6: layout \"A\" is used twice"},
        {used +
             "(Dialog Other (Components (SubLayout A))\n(Resources (.Layout (Grid (Rows 1) (Cols 1) A))))\n" +
             LayoutOf("A", "NakedWindow A"),
         "line 7: component \"A\" is used twice"},
        {used + Chain(16).substr(Chain(16).find('\n') + 1), "line 20: layouts are nested too deeply"},
    });
}

/// Each layout names the next one twice, under two more in between: put together, it would be 2 to the 60th windows.
TEST(Description, WithLayoutsThatMultiplyIsRefused) {
    std::string layouts;
    for (int i = 0; i < 60; ++i) {
        const std::string next = "A" + std::string(static_cast<std::size_t>(i) + 1, 'x');
        const std::string left = next + "l";
        const std::string right = next + "r";
        layouts += "(Layout A";
        layouts.append(static_cast<std::size_t>(i), 'x');
        layouts += " (Components (SubLayout ";
        layouts += left;
        layouts += ") (SubLayout ";
        layouts += right;
        layouts += ")) (Resources (.Layout (Grid (Rows 1) (Cols 2) ";
        layouts += left;
        layouts += ' ';
        layouts += right;
        layouts += "))))\n";
        layouts += LayoutOf(left, "SubLayout " + next) + LayoutOf(right, "SubLayout " + next);
    }
    layouts += LayoutOf("A" + std::string(60, 'x'), "NakedWindow W");
    EXPECT_NE(Refusal(PageIsA(layouts)), "");
}

TEST(Description, CutOffAnywhereIsRefused) {
    const std::string whole = kLoginDescription;
    const std::size_t end = whole.find_last_of(')') + 1;
    for (std::size_t length = 0; length < end; ++length) {
        EXPECT_EQ(Refusal(whole.substr(0, length)).find("description, line "), 0U) << "cut off at " << length;
    }
    EXPECT_EQ(Refusal(whole.substr(0, end)), "");
}

TEST(Description, WithBytesChangedIsTakenOrRefusedButHarmless) {
    constexpr int kVariants = 4000;
    std::mt19937 random(20'24); // always the same variants
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    int taken = 0;
    for (int variant = 0; variant < kVariants; ++variant) {
        std::string description = kLoginDescription;
        for (std::size_t changes = 1 + below(3); changes > 0; --changes) {
            const std::size_t at = below(description.size());
            switch (below(3)) {
            case 0:
                description[at] = static_cast<char>(1 + below(255));
                break;
            case 1:
                description.erase(at, 1 + below(40));
                break;
            default:
                description.insert(at, description.substr(below(description.size()), below(40)));
                break;
            }
        }
        const TraceCapture capture;
        if (ui_create_device_from_string(kDialog, "Dialog", description.c_str()) == 0) {
            EXPECT_EQ(ui_manage_device(kDialog), 0) << description;
            EXPECT_EQ(ui_destroy_device(kDialog), 0);
            EXPECT_TRUE(capture.Lines().empty());
            ++taken;
        } else {
            EXPECT_EQ(capture.Lines().size(), 1U) << description;
        }
    }
    EXPECT_GT(taken, 100) << "the variants are to reach the windows too";
    EXPECT_LT(taken, kVariants / 2);
}

} // namespace
