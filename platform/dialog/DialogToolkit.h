#pragma once

#include "platform/dialog/Form.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The port through which the dialogs are shown. A form is designed as one table of controls; a toolkit builds
// the same dialog from it on every platform, mirrored when it is right-to-left.

namespace qel {

enum class ControlKind : std::uint8_t {
    Label,
    TextBox,
    Button,
    CheckBox,
    ComboBox,  ///< a drop-down list: one of its items is chosen, nothing else is typed
    BoundList, ///< a drop-down list over a ListSource: typing shows the rows that match
    ListBox,
    Line,      ///< divides the form; as long as it is wide
    FileDialog ///< takes no place on the form; AskForFile shows it
};

/// What the form's own code and the language table call a control of that kind.
std::string TypeNameOf(ControlKind kind);

/// In dialog units: horizontally a quarter of an average character's width of the dialog's font, vertically
/// an eighth of its height. Left is measured from the side where reading starts.
struct Place {
    std::int16_t left = 0, top = 0, width = 0, height = 0;
};

struct ControlDesign {
    const char* name; ///< unique on its form; one of an array of controls has its index, as in "TxtDate(0)"
    ControlKind kind;
    Place place = {};
    std::int32_t tag = 0;     ///< the number of its caption in the suite's table of texts; 0 for none
    const char* caption = ""; ///< as designed; shown until the form is translated
    /// Letters, one a language: the first that the shown caption holds is its access key.
    const char* mnemonic = "";
    std::int32_t ownText = 0; ///< without a tag: the number of its caption in the component's own strings
    bool isReadOnly = false;  ///< of a text box: shown and copied, not typed
};

struct FormDesign {
    const char* name;
    std::int32_t tag = 0; ///< the number of the form's caption in the component's own strings; 0 for none
    const char* caption = "";
    std::int16_t width = 0, height = 0; ///< of the area inside the frame, in dialog units
    /// In tab order; a label's mnemonic leads to the next control that takes the focus.
    std::span<const ControlDesign> controls;
    const char* defaultButton = ""; ///< the one that Enter presses
    const char* cancelButton = "";  ///< the one that Esc presses
};

/// The rows of a BoundList, read only as far as they are shown.
class ListSource {
public:
    virtual ~ListSource() = default;
    virtual std::size_t RowCount() const = 0;
    /// Never changes while the source is bound; a code and a name, say.
    virtual std::size_t ColumnCount() const = 0;
    virtual std::string Text(std::size_t row, std::size_t column) const = 0;
    /// The rows of which a column holds the typed text, letter case aside, in the order in which they are to
    /// be shown; all rows for an empty text.
    virtual std::vector<std::uint32_t> Matching(std::string_view typed) const = 0;
};

/// What the user does. Controls are told by their names. What the program changes raises no event. A handler
/// traps its own errors; it may change any control and may hide the dialog.
class DialogEvents {
public:
    virtual ~DialogEvents() = default;
    /// The dialog is about to be shown; everything can be set.
    virtual void OnLoad() = 0;
    /// A button was pressed, or a check box changed (its new state can be read).
    virtual void OnClick(std::string_view control) = 0;
    /// Another item or row was chosen (in a list box, too), or a text box's text was edited.
    virtual void OnChange(std::string_view control) = 0;
    /// A text box, combo box or bound list lost the focus to another control of the dialog, other than the
    /// cancel button.
    virtual void OnLeave(std::string_view control) = 0;
    /// The close box was used, or the dialog is ended from outside. It is hidden afterwards.
    virtual void OnQueryUnload() = 0;
};

struct FileQuestion {
    std::string title;
    std::string filter;           ///< a text for people, "|", and a pattern
    std::string startFolder = {}; ///< empty for the platform's choice
};

/// A dialog made from a design. Operations on a control that the design lacks, or that its kind does not
/// have, raise AutomationError 5 naming the control.
class Dialog {
public:
    virtual ~Dialog() = default;

    /// Loads the dialog (OnLoad), shows it before the calling window and returns when it was hidden.
    virtual void ShowModal() = 0;
    /// Ends ShowModal. The controls keep their state and can be read.
    virtual void Hide() = 0;
    /// Captions, tool tips and font; the layout follows the font.
    virtual TranslatableForm& Texts() = 0;
    /// The file that F1 opens.
    virtual void SetHelpFile(const std::string& path) = 0;

    virtual void SetEnabled(std::string_view control, bool isEnabled) = 0;
    virtual bool IsEnabled(std::string_view control) const = 0;
    virtual void SetFocus(std::string_view control) = 0;

    /// Text boxes: their text. Labels, buttons, check boxes: their caption. Combo boxes: the chosen item, or
    /// nothing. Bound lists: what was typed, or the chosen row.
    virtual std::string Text(std::string_view control) const = 0;
    /// Text boxes: their text. Labels, buttons and check boxes: their caption.
    virtual void SetText(std::string_view control, const std::string& text) = 0;

    /// Check boxes.
    virtual bool IsChecked(std::string_view control) const = 0;
    virtual void SetChecked(std::string_view control, bool isChecked) = 0;

    /// Combo and list boxes: replaces the items; none is chosen afterwards.
    virtual void SetItems(std::string_view control, const std::vector<std::string>& items) = 0;
    /// Combo boxes, list boxes, and rows of bound lists: the one that is chosen, counted from 0.
    virtual std::optional<std::size_t> Selected(std::string_view control) const = 0;
    /// None chooses nothing, and empties what was typed into a bound list.
    virtual void Select(std::string_view control, std::optional<std::size_t> index) = 0;

    /// Bound lists: replaces the rows; none is chosen afterwards. Null for no rows. A source may be slow when
    /// it is first asked for a row, so it is asked when the list is first opened or typed into. Leaving the
    /// list with a typed text chooses the first row that matches it, or none.
    virtual void Bind(std::string_view control, std::shared_ptr<const ListSource> rows) = 0;

    /// The path that the user chose to open; empty when the user chose none.
    virtual std::string AskForFile(std::string_view control, const FileQuestion& question) = 0;
};

/// (Windows' headers define macros such as CreateDialog, which names here avoid.)
class DialogToolkit {
public:
    virtual ~DialogToolkit() = default;
    /// A dialog that is not shown yet; it can be translated. `design` and `events` outlive it.
    virtual std::unique_ptr<Dialog> NewDialog(const FormDesign& design, bool isRightToLeft,
                                              DialogEvents& events) = 0;
};

} // namespace qel
