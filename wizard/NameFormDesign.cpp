#include "wizard/NameFormDesign.h"

namespace qel {

namespace {

using namespace NameForm;
using enum ControlKind;

constexpr ControlDesign controls[] = {
    {.name = txtCubeFile, .kind = TextBox, .place = {8, 8, 206, 12}, .spokenText = 1528},
    {.name = CmdCubeFile, .kind = Button, .place = {218, 7, 74, 14}, .tag = 1473, .mnemonic = "Sב"},
    {.name = CmdDial, .kind = FileDialog},
    {.name = "LabelCubeName", .kind = Label, .place = {8, 28, 76, 8}, .tag = 1474, .mnemonic = "Cק"},
    {.name = cboDatabaseList, .kind = ComboBox, .place = {88, 26, 126, 12}},

    {.name = "Line1", .kind = Line, .place = {8, 45, 284, 1}},
    {.name = "LabelObs", .kind = Label, .place = {8, 54, 76, 8}, .tag = 1486, .mnemonic = "O"},
    {.name = ComOBSNum, .kind = ComboBox, .place = {88, 52, 126, 12}},
    {.name = "LabelFirma", .kind = Label, .place = {8, 70, 76, 8}, .tag = 1479, .mnemonic = "Fפ"},
    {.name = ComFirma, .kind = ComboBox, .place = {88, 68, 126, 12}},
    {.name = "LabelDim",
     .kind = Label,
     .place = {8, 86, 76, 8},
     .caption = "Dimension type",
     .mnemonic = "Dד",
     .ownText = 1504},
    {.name = ComDim, .kind = ComboBox, .place = {88, 84, 126, 12}},
    {.name = "LabelMember", .kind = Label, .place = {8, 102, 76, 8}, .tag = 1484, .mnemonic = "Gע"},
    {.name = cmbmember, .kind = BoundList, .place = {88, 100, 204, 12}},
    {.name = "LabelName",
     .kind = Label,
     .place = {8, 118, 76, 8},
     .caption = "Name",
     .mnemonic = "Nש",
     .ownText = 1505},
    {.name = TxtName, .kind = TextBox, .place = {88, 116, 204, 12}, .isReadOnly = true},

    {.name = "Line2", .kind = Line, .place = {8, 135, 284, 1}},
    {.name = "LabelQuery",
     .kind = Label,
     .place = {8, 143, 206, 8},
     .caption = "Saved queries",
     .mnemonic = "Qא",
     .ownText = 1506},
    {.name = ListQuery, .kind = ListBox, .place = {8, 156, 284, 38}},
    {.name = CmdRemove,
     .kind = Button,
     .place = {218, 139, 74, 14},
     .caption = "Remove",
     .mnemonic = "Rה",
     .ownText = 1507},

    {.name = "Line3", .kind = Line, .place = {8, 198, 284, 1}},
    {.name = LabelVersion, .kind = Label, .place = {8, 208, 150, 8}},
    {.name = CmdOK, .kind = Button, .place = {168, 205, 60, 14}, .tag = 1491},
    {.name = CmdCancel, .kind = Button, .place = {232, 205, 60, 14}, .tag = 1492},
};

constexpr FormDesign design = {
    .name = "frmNameWizz",
    .tag = 1503,
    .caption = "Name QEL",
    .width = 300,
    .height = 227,
    .controls = controls,
    .defaultButton = CmdOK,
    .cancelButton = CmdCancel,
};

} // namespace

const FormDesign& NameFormDesign() { return design; }

} // namespace qel
