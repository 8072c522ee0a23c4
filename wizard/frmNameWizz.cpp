#include "wizard/frmNameWizz.h"

#include "cube/CubeConnection.h"
#include "cube/MemberListing.h"
#include "cube/NameQuery.h"
#include "platform/value/Conversion.h"
#include "support/ModError.h"
#include "text/Text.h"
#include "wizard/CubeFileChoice.h"
#include "wizard/NameFormDesign.h"
#include "wizard/OwnText.h"
#include "wizard/WizardStore.h"

#include <algorithm>
#include <set>

namespace qel {

using namespace NameForm;

namespace {

/// Two handlers below report themselves under this form's name, which the suite's support expects.
constexpr const char* reportedForm = "frmFuncQelWiz";
constexpr const char* dimTypePart = "SuperSum"; // only these dimension types have names

std::vector<MemberChoice> AllAnd(const WizardContext& context, const Hierarchy* hierarchy) {
    std::vector<MemberChoice> choices = {{allMembers, OwnText(context, OwnTextNumber::Everything)}};
    if (hierarchy == nullptr) {
        return choices;
    }
    for (MemberChoice& choice : ChoicesOf(*hierarchy->LevelAt(hierarchy->LevelCount() - 1))) {
        choices.push_back(std::move(choice));
    }
    return choices;
}

std::vector<MemberChoice> DimensionTypes(const LoadedCube& cube) {
    std::vector<MemberChoice> types;
    const auto hierarchy = cube.HierarchyNamed("SuperSumery", "SumeryCode");
    for (std::int32_t i = 1; hierarchy && i < hierarchy->LevelCount(); ++i) {
        const auto level = hierarchy->LevelAt(i);
        if (ContainsIgnoringCase(level->Name(), dimTypePart)) {
            types.push_back({level->Name(), CaptionWithKey(level->Name(), level->Caption())});
        }
    }
    return types;
}

} // namespace

frmNameWizz::frmNameWizz(const WizardContext& context, std::optional<NamedQuery> start)
    : WizardForm(context, NameFormDesign()), start_(std::move(start)), cubes_(Form(), cboDatabaseList),
      obs_(Form(), ComOBSNum), firmas_(Form(), ComFirma), dimTypes_(Form(), ComDim),
      members_(Form(), cmbmember), queries_(Context()) {}

void frmNameWizz::OnLoad() {
    Trapped("Form_Load", [this] {
        EnableButtons(false);
        Trapped("OpenDb", [this] { OpenDb(); });
        if (start_) {
            TakeQuery(*start_, OwnTextNumber::LackingChoices);
        } else if (!queries_.All().empty()) {
            TakeQuery(queries_.All().front(), OwnTextNumber::DroppedChoices);
        } else if (const std::string cubeFile = RememberedCubeFile(Context()); CanOpen(Context(), cubeFile)) {
            LoadCubeFile(cubeFile);
        }
        Form().SetText(LabelVersion, VersionText());
    });
}

void frmNameWizz::OnClick(std::string_view control) {
    Trapped(HandlerName(control, "Click"), [&] {
        if (control == CmdCubeFile) {
            const std::string cubeFile = AskForCubeFile(Form(), CmdDial, CubeFile());
            if (!cubeFile.empty()) {
                LoadCubeFile(cubeFile);
            }
        } else if (control == CmdRemove) {
            RemoveQuery();
        } else if (control == CmdOK) {
            CheckAndHandBack();
        } else if (control == CmdCancel) {
            Cancel();
        }
    });
}

void frmNameWizz::OnChange(std::string_view control) {
    Trapped(control == cmbmember ? std::string(control) : ChangeHandlerName(control), [&] {
        if (control == cboDatabaseList) {
            LoadCubeFile(CubeFile(), cubes_.Key().value_or(""));
        } else if (control == cmbmember) {
            ShowName();
        } else if (control == ListQuery && Form().Selected(ListQuery)) {
            TakeQuery(queries_.All().at(*Form().Selected(ListQuery)), OwnTextNumber::DroppedChoices);
        } else if (cube_ && (obs_.Is(control) || firmas_.Is(control) || dimTypes_.Is(control))) {
            SetMember();
        }
        if (control != ListQuery) {
            MarkQuery();
        }
    });
}

bool frmNameWizz::OnLeave(std::string_view control) {
    bool isTried = false;
    if (control != txtCubeFile) {
        return true;
    }
    Trapped(HandlerName(control, "LostFocus"), [&] {
        const std::string cubeFile(Trimmed(CubeFile()));
        if (cubeFile == takenFile_) {
            Form().SetText(txtCubeFile, takenFile_); // without blanks around it
        } else if (CanOpen(Context(), cubeFile)) {
            isTried = true;
            LoadCubeFile(cubeFile);
            if (CanTryAgain()) {
                Form().SetFocus(txtCubeFile); // a press that left the field would try again at once
            }
        }
    });
    return !isTried || !cube_;
}

void frmNameWizz::OpenDb() {
    queries_.Load();
    ShowQueries();
}

void frmNameWizz::ShowQueries() {
    std::vector<std::string> texts;
    for (const NamedQuery& query : queries_.All()) {
        texts.push_back(ShortDescriptionOf(query));
    }
    Form().SetItems(ListQuery, texts);
    MarkQuery();
}

void frmNameWizz::MarkQuery() { Form().Select(ListQuery, queries_.Find(Read())); }

bool frmNameWizz::LoadCubeFile(const std::string& cubeFile, const std::string& cubeName) {
    return Trapped(
        "Loadube",
        [&] {
            Form().SetText(txtCubeFile, cubeFile);
            takenFile_ = cubeFile;
            ClearLists();
            const auto connection = OpenCubeFile(Context().providers, cubeFile);
            if (!SetCube(Context(), cubes_, connection.get())) {
                Form().SetText(txtCubeFile, "");
                return;
            }
            cubes_.Choose(cubeName);
            FillFromCube();
        },
        reportedForm);
}

void frmNameWizz::FillFromCube() {
    const auto cube = OpenWizardCube(Context(), ChosenCube());
    if (!cube) {
        return;
    }
    constexpr std::int32_t nameLevel = 1;
    const auto obs = cube->FirstHierarchy("ActX");
    if (obs && obs->LevelCount() > nameLevel) {
        obs_.Fill(ChoicesOf(*obs->LevelAt(nameLevel)));
    }
    firmas_.Fill(AllAnd(Context(), cube->FirstHierarchy("Firma").get()));
    dimTypes_.Fill(DimensionTypes(*cube));
    cube_ = cube;
    SetMember();
    EnableButtons(true);
}

void frmNameWizz::SetMember() {
    Form().SetText(TxtName, "");
    members_.Bind([this] {
        std::vector<MemberRow> rows;
        Trapped(
            "SetMember", [&] { rows = ListMembers(); }, reportedForm);
        return rows;
    });
}

/// Codes and names of a level's groups that have data for the firm and the OBS.
std::vector<MemberRow> frmNameWizz::ListMembers() const {
    using namespace ModSetCube;
    if (!cube_ || !dimTypes_.Key()) {
        return {};
    }
    auto rows = ListRows(Context(), cube_->name.cubeFile,
                         {cube_->name.cubeName, SummaryGroupsListing{.summaryLevel = *dimTypes_.Key()}});
    const auto withData =
        Context()
            .providers.For(ComposeConnectionText(cube_->name.cubeFile, cube_->name.cubeName))
            .CreateRecordset();
    ThreadState own; // the thread's connection stays with the worksheet's cube
    OpenedCube ownCube;
    OpenMemberRecordset(own, Context().providers, ownCube, *withData, cube_->name.cubeFile,
                        {cube_->name.cubeName,
                         SummaryGroupsOfObsListing{.summaryLevel = *dimTypes_.Key(),
                                                   .firma = InBrackets(firmas_.Key().value_or(allMembers)),
                                                   .obsNumber = InBrackets(obs_.Key().value_or(""))}});
    std::set<std::string> names;
    for (const std::int32_t nameField = withData->FieldCount() - 2; !withData->AtEnd();
         withData->MoveNext()) {
        const Variant name = withData->FieldValue(nameField);
        names.insert(name.Is<Null>() ? std::string() : ToText(name, Context().locale));
    }
    std::erase_if(rows, [&](const MemberRow& row) { return !names.contains(row.name); });
    return rows;
}

void frmNameWizz::TakeQuery(const NamedQuery& query, std::int32_t message) {
    if (!CanOpen(Context(), query.cubeFile)) {
        Context().Messages().Show(MessageBoxStyle::Exclamation, "", query.cubeFile + " File Not Found");
        return;
    }
    if (!LoadCubeFile(query.cubeFile, query.cubeName) || !cube_) {
        return;
    }
    obs_.Choose(query.obs);
    firmas_.Choose(query.firma);
    const bool hasType = dimTypes_.Choose(query.dimType);
    SetMember();
    if (!hasType || ChosenCube().cubeName != query.cubeName || !ChooseMember(query)) {
        return Warn(Context(), OwnText(Context(), message) + "\r\n" + query.dimType + " " + query.dataMember);
    }
    ShowName();
    MarkQuery();
}

bool frmNameWizz::ChooseMember(const NamedQuery& query) {
    if (members_.Choose(query.dataMember)) {
        return true;
    }
    if (!query.obs.empty()) {
        return false;
    }
    const auto choices = obs_.Choices();
    return std::any_of(choices.begin(), choices.end(), [&](const MemberChoice& choice) {
        obs_.Choose(choice.key);
        SetMember();
        return members_.Choose(query.dataMember);
    });
}

void frmNameWizz::ShowName() {
    using namespace ModSetCube;
    Form().SetText(TxtName, "");
    const auto member = members_.Chosen();
    if (!member || !cube_) {
        return;
    }
    OpenOrReuse(Context().thread, Context().providers, opened_, cube_->name);
    opened_ = cube_->name;
    Form().SetText(TxtName, GetMemberName(Context().thread, Context().providers, Context().locale,
                                          cube_->name.cubeName, dimTypes_.Key().value_or(""),
                                          InBrackets(member->code)));
}

void frmNameWizz::RemoveQuery() {
    const auto index = Form().Selected(ListQuery);
    if (!index) {
        return;
    }
    const std::string question = OwnText(Context(), OwnTextNumber::RemoveQuery) + "\r\n\r\n" +
                                 DescriptionOf(queries_.All().at(*index));
    if (Context().Messages().Show(MessageBoxStyle::YesNoWithStop, componentName, question) !=
        MessageBoxAnswer::Yes) {
        return;
    }
    queries_.Remove(*index);
    ShowQueries();
}

NamedQuery frmNameWizz::Read() const {
    const auto level = Form().Selected(ComDim);
    const MemberRow member = members_.Chosen().value_or(MemberRow{});
    return {.cubeFile = CubeFile(),
            .cubeName = cubes_.Key().value_or(""),
            .dimType = dimTypes_.Key().value_or(""),
            .levelNum = level ? std::to_string(*level + 1) : std::string(),
            .dataMember = member.code,
            .firma = firmas_.Key().value_or(""),
            .obs = obs_.Key().value_or(""),
            .name = member.name};
}

void frmNameWizz::CheckAndHandBack() {
    const std::string cubeFile = CubeFile();
    if (const auto fault = CubeFileFault(Context(), cubeFile)) {
        return WarnNumbered(*fault);
    }
    if (cubeFile != takenFile_ || CanTryAgain()) {
        LoadCubeFile(cubeFile);
        return;
    }
    if (!cube_) {
        return WarnNumbered(noCubeFileText);
    }
    const NamedQuery query = Read();
    if (query.dataMember.empty()) {
        return Warn(Context(), OwnText(Context(), OwnTextNumber::NoMember));
    }
    Arguments.clear();
    for (const std::string& key :
         {query.cubeFile, query.cubeName, query.dimType, InBrackets(query.dataMember)}) {
        Arguments.push_back(InFormula(key));
    }
    Trapped("OpenDb", [&] { queries_.Use(query); });
    Form().Hide();
}

void frmNameWizz::ClearLists() {
    cube_.reset();
    EnableButtons(false);
    for (ChoiceBox* box : {&cubes_, &obs_, &firmas_, &dimTypes_}) {
        box->Clear();
    }
    members_.Clear();
    Form().SetText(TxtName, "");
}

void frmNameWizz::EnableButtons(bool isEnabled) {
    for (ChoiceBox* box : {&obs_, &firmas_, &dimTypes_}) {
        box->Enable(isEnabled);
    }
    members_.Enable(isEnabled);
    Form().SetEnabled(TxtName, isEnabled);
}

bool frmNameWizz::CanTryAgain() const { return !cube_ && IsServer(Context(), CubeFile()); }

std::string frmNameWizz::CubeFile() const { return Form().Text(txtCubeFile); }

} // namespace qel
