#include "wizard/FunctionFormDesign.h"

namespace qel {

namespace {

using namespace FunctionForm;
using enum ControlKind;

// File and cube are at the top; OBS on the left; accounts, activities and dates on the right; the other
// dimensions in two columns below; value and buttons at the bottom.
constexpr ControlDesign controls[] = {
    {.name = txtCubeFile, .kind = TextBox, .place = {8, 8, 336, 12}, .spokenText = 1528},
    {.name = CmdCubeFile, .kind = Button, .place = {348, 7, 74, 14}, .tag = 1473, .mnemonic = "Sב"},
    {.name = CmdDial, .kind = FileDialog},
    {.name = "LabelCubeName", .kind = Label, .place = {8, 28, 66, 8}, .tag = 1474, .mnemonic = "Nק"},
    {.name = cboDatabaseList, .kind = ComboBox, .place = {78, 26, 266, 12}},

    {.name = "Line1", .kind = Line, .place = {8, 45, 414, 1}},
    {.name = "LabelObs", .kind = Label, .place = {8, 54, 66, 8}, .tag = 1486, .mnemonic = "O"},
    {.name = ComOBSNum, .kind = ComboBox, .place = {78, 52, 112, 12}},
    {.name = "LabelObsX",
     .kind = Label,
     .place = {8, 70, 66, 8},
     .caption = "OBS Number",
     .mnemonic = "ס",
     .spareKey = "X",
     .ownText = 1523},
    {.name = ComObsX, .kind = ComboBox, .place = {78, 68, 112, 12}},
    {.name = "LabelObsLevel", .kind = Label, .place = {8, 86, 66, 8}, .tag = 1487, .mnemonic = "Lר"},
    {.name = ComLevel, .kind = ComboBox, .place = {78, 84, 112, 12}},
    {.name = "LabelLevelObs",
     .kind = Label,
     .place = {8, 102, 66, 8},
     .caption = "Which level",
     .mnemonic = "Wז",
     .ownText = 1524},
    {.name = ComLevelObs, .kind = ComboBox, .place = {78, 100, 112, 12}},
    {.name = "LabelObsData", .kind = Label, .place = {8, 118, 66, 8}, .tag = 1488, .mnemonic = "Dנ"},
    {.name = ComOBSData, .kind = ComboBox, .place = {78, 116, 112, 12}},
    {.name = ComAddOBS,
     .kind = Button,
     .place = {78, 132, 54, 14},
     .caption = "Select OBS",
     .mnemonic = "Eו",
     .ownText = 1501},
    {.name = ComRemoveObs,
     .kind = Button,
     .place = {136, 132, 54, 14},
     .caption = "Remove OBS",
     .mnemonic = "Rה",
     .ownText = 1502},
    {.name = LabelFirst, .kind = Label, .place = {8, 161, 66, 29}},
    {.name = "LabelListObs",
     .kind = Label,
     .place = {8, 151, 66, 8},
     .caption = "Picked OBS",
     .mnemonic = "Kט",
     .ownText = 1525},
    {.name = ListObs, .kind = ListBox, .place = {78, 150, 112, 40}},

    {.name = "LabelAccX", .kind = Label, .place = {200, 54, 66, 8}, .tag = 1483, .mnemonic = "Aג"},
    {.name = ComAccX, .kind = ComboBox, .place = {270, 52, 152, 12}},
    {.name = "LabelMember", .kind = Label, .place = {200, 70, 66, 8}, .tag = 1484, .mnemonic = "Gע"},
    {.name = ComMember, .kind = ComboBox, .place = {270, 68, 152, 12}},
    {.name = CheckAcc, .kind = CheckBox, .place = {200, 85, 222, 10}, .tag = 1485, .mnemonic = "Uח"},
    {.name = "LabelAccount",
     .kind = Label,
     .place = {200, 102, 66, 8},
     .tag = 1493,
     .mnemonic = "ם",
     .spareKey = "Q"},
    {.name = ListAccount, .kind = BoundList, .place = {270, 100, 152, 12}},
    {.name = ChekAct, .kind = CheckBox, .place = {200, 117, 222, 10}, .tag = 1489, .mnemonic = "Vל"},
    {.name = "LabelActivity",
     .kind = Label,
     .place = {200, 134, 66, 8},
     .caption = "Activity",
     .mnemonic = "ת",
     .spareKey = "Z",
     .ownText = 1526},
    {.name = ComActMember, .kind = BoundList, .place = {270, 132, 152, 12}},
    {.name = "Line4", .kind = Line, .place = {200, 152, 222, 1}},
    {.name = "LabelFromDate", .kind = Label, .place = {200, 162, 66, 8}, .tag = 1475, .mnemonic = "Fא"},
    {.name = TxtDateFrom, .kind = TextBox, .place = {270, 160, 64, 12}},
    {.name = "LabelToDate", .kind = Label, .place = {200, 178, 66, 8}, .tag = 1476, .mnemonic = "Tד"},
    {.name = TxtDateTo, .kind = TextBox, .place = {270, 176, 64, 12}},

    {.name = "Line2", .kind = Line, .place = {8, 197, 414, 1}},
    {.name = "LabelMeasure", .kind = Label, .place = {8, 206, 66, 8}, .tag = 1477, .mnemonic = "Mמ"},
    {.name = ChcMeasure, .kind = ComboBox, .place = {78, 204, 112, 12}},
    {.name = "LabelMoneySet", .kind = Label, .place = {200, 206, 66, 8}, .tag = 1480, .mnemonic = "Yף"},
    {.name = ComMoneySet, .kind = ComboBox, .place = {270, 204, 152, 12}},
    {.name = "LabelFirma", .kind = Label, .place = {8, 222, 66, 8}, .tag = 1479, .mnemonic = "Iפ"},
    {.name = ComFirma, .kind = ComboBox, .place = {78, 220, 112, 12}},
    {.name = "LabelPlbs", .kind = Label, .place = {200, 222, 66, 8}, .tag = 1482, .mnemonic = "Pכ"},
    {.name = ComPlbs, .kind = ComboBox, .place = {270, 220, 152, 12}},
    {.name = "LabelRh", .kind = Label, .place = {8, 238, 66, 8}, .tag = 1478, .mnemonic = "H"},
    {.name = ComRh, .kind = ComboBox, .place = {78, 236, 112, 12}},
    {.name = "LabelOB", .kind = Label, .place = {200, 238, 66, 8}, .tag = 1481, .mnemonic = "Bי"},
    {.name = ComOB, .kind = ComboBox, .place = {270, 236, 152, 12}},

    {.name = "Line3", .kind = Line, .place = {8, 255, 414, 1}},
    {.name = Command1, .kind = Button, .place = {8, 262, 66, 14}, .tag = 1490, .mnemonic = "Cש"},
    {.name = TxtCalc, .kind = TextBox, .place = {78, 263, 344, 12}, .isReadOnly = true, .spokenText = 1529},
    {.name = LabelVersion, .kind = Label, .place = {8, 289, 190, 8}},
    {.name = CmdOK, .kind = Button, .place = {206, 286, 60, 14}, .tag = 1491},
    {.name = Command2,
     .kind = Button,
     .place = {270, 286, 88, 14},
     .tag = 1494,
     .mnemonic = "צ",
     .spareKey = "J"},
    {.name = CmdCancel, .kind = Button, .place = {362, 286, 60, 14}, .tag = 1492},
};

constexpr FormDesign design = {
    .name = "frmFuncQelWiz",
    .tag = 1500,
    .caption = "Function QEL",
    .width = 430,
    .height = 308,
    .controls = controls,
    .defaultButton = CmdOK,
    .cancelButton = CmdCancel,
};

} // namespace

const FormDesign& FunctionFormDesign() { return design; }

} // namespace qel
