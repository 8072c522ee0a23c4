#include "why/WhyFormDesign.h"

namespace qel {

namespace {

using enum ControlKind;
namespace Own = WhyFormControl;

constexpr ControlDesign whyControls[] = {
    {.name = Own::Heading, .kind = Label, .place = {8, 6, 264, 9}},
    {.name = "LabelArguments", .kind = Label, .place = {8, 19, 264, 8}, .mnemonic = "Aא", .ownText = 1651},
    {.name = Own::Arguments, .kind = ListBox, .place = {8, 29, 264, 92}},
    {.name = "LabelExplanation", .kind = Label, .place = {8, 125, 264, 8}, .mnemonic = "Xס", .ownText = 1652},
    {.name = Own::Explanation, .kind = ListBox, .place = {8, 135, 264, 80}},
    {.name = "LabelStatement", .kind = Label, .place = {8, 219, 264, 8}, .mnemonic = "Sש", .ownText = 1653},
    {.name = Own::Statement,
     .kind = TextBox,
     .place = {8, 229, 264, 44},
     .isReadOnly = true,
     .isMultiLine = true},
    {.name = Own::Compare, .kind = Button, .place = {8, 286, 70, 14}, .mnemonic = "Mה", .ownText = 1654},
    {.name = "LabelComparison", .kind = Label, .place = {82, 277, 190, 8}, .ownText = 1655},
    {.name = Own::Comparison, .kind = ListBox, .place = {82, 286, 190, 24}},
    {.name = Own::FileDialog, .kind = FileDialog},
    {.name = "Line1", .kind = Line, .place = {8, 315, 264, 1}},
    {.name = Own::Lines, .kind = Button, .place = {8, 320, 62, 14}, .mnemonic = "Lר", .ownText = 1548},
    {.name = Own::EditFormula, .kind = Button, .place = {74, 320, 74, 14}, .mnemonic = "Eע", .ownText = 1656},
    {.name = Own::Copy, .kind = Button, .place = {152, 320, 58, 14}, .mnemonic = "Cת", .ownText = 1657},
    {.name = Own::Close, .kind = Button, .place = {214, 320, 58, 14}, .ownText = 1658},
};

constexpr FormDesign whyDesign = {.name = "frmWhy",
                                  .tag = 1650,
                                  .width = 280,
                                  .height = 340,
                                  .controls = whyControls,
                                  .defaultButton = Own::Lines,
                                  .cancelButton = Own::Close};

} // namespace

const FormDesign& WhyFormDesign() { return whyDesign; }

} // namespace qel
