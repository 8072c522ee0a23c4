#pragma once

#include "platform/dialog/Form.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The port through which dialogs are shown. A form is designed as one table of controls, from which each
// platform's toolkit builds the dialog, mirrored when it is right-to-left.

namespace qel {

enum class ControlKind : std::uint8_t {
    Label,
    TextBox,
    Button,
    CheckBox,
    ComboBox,  ///< a drop-down list of fixed items
    BoundList, ///< a drop-down list over a ListSource, searched by typing
    ListBox,
    Line,      ///< a horizontal separator
    FileDialog ///< not on the form; AskForFile shows it
};

/// The type name of a control, as TranslateForm knows it.
std::string TypeNameOf(ControlKind kind);

/// In dialog units: a quarter of the dialog font's average character width, and an eighth of its height. Left
/// is measured from the side where reading starts.
struct Place {
    std::int16_t left = 0, top = 0, width = 0, height = 0;
};

/// Of a window, as a person looks at it.
enum class WindowSide : std::uint8_t { Left, Right };

struct ControlDesign {
    const char* name; ///< unique on the form; control arrays have an index: "TxtDate(0)"
    ControlKind kind;
    Place place = {};
    bool isReadOnly = false; ///< of a text box: cannot be edited, only copied
    bool isMultiLine =
        false;            ///< of a text box: wraps its text, which reads from left to right in any language
    std::int32_t tag = 0; ///< number of the caption in the suite's table of texts, or 0
    const char* caption = ""; ///< shown until the form is translated
    /// Letters, one per language: the first one that the shown caption holds is its access key.
    const char* mnemonic = "";
    /// Shown in parentheses after a caption that holds none of the letters.
    const char* spareKey = "";
    std::int32_t ownText = 0;    ///< without a tag: number of the caption in the component's own strings
    std::int32_t spokenText = 0; ///< of a control without a label: number of its name for screen readers
};

struct FormDesign {
    const char* name;
    std::int32_t tag = 0; ///< number of the caption in the component's own strings, or 0
    const char* caption = "";
    std::int16_t width = 0, height = 0; ///< of the area inside the frame, in dialog units
    /// In tab order. A label's mnemonic moves the focus to the next control that takes it.
    std::span<const ControlDesign> controls;
    const char* defaultButton = ""; ///< the one that Enter presses
    const char* cancelButton = "";  ///< the one that Esc presses
};

/// The rows of a BoundList, read as they are shown.
class ListSource {
public:
    virtual ~ListSource() = default;
    virtual std::size_t RowCount() const = 0;
    /// Constant while the source is bound. Usually 2: code and name.
    virtual std::size_t ColumnCount() const = 0;
    virtual std::string Text(std::size_t row, std::size_t column) const = 0;
    /// The rows in which a column contains the typed text, letter case ignored, in display order; all rows
    /// for an empty text.
    virtual std::vector<std::uint32_t> Matching(std::string_view typed) const = 0;
};

/// The user's actions, with the names of the controls. Changes by the program raise no event. A handler traps
/// its own errors; it may change any control and hide the dialog.
class DialogEvents {
public:
    virtual ~DialogEvents() = default;
    /// Called before the dialog is shown.
    virtual void OnLoad() = 0;
    /// A button was pressed, or a check box changed; IsChecked returns its new state.
    virtual void OnClick(std::string_view control) = 0;
    /// Another item or row was chosen, or the text of a text box was edited.
    virtual void OnChange(std::string_view control) = 0;
    /// A text box, combo box or bound list lost the focus to another control of the dialog, except the cancel
    /// button. False when the dialog shows something new: a press of a button that left the control was not
    /// meant for it, and does not count.
    [[nodiscard]] virtual bool OnLeave(std::string_view control) = 0;
    /// The close box was used, or the dialog is closed from outside. It is hidden afterwards.
    virtual void OnQueryUnload() = 0;
};

struct FileQuestion {
    std::string title;
    std::string filter;           ///< a description, "|", and a pattern
    std::string startFolder = {}; ///< empty for the platform's choice
};

/// A dialog built from a design. An unknown control, or an operation that its kind does not have, raises
/// AutomationError 5 with the control's name.
class Dialog {
public:
    virtual ~Dialog() = default;

    /// Calls OnLoad, shows the dialog in front of the calling window, and returns when it is hidden.
    virtual void ShowModal() = 0;
    /// Calls OnLoad, shows the dialog at a side of the calling window, and returns at once: both windows take
    /// keys and clicks. The close box calls OnQueryUnload. A toolkit without such dialogs shows this one
    /// as ShowModal does.
    virtual void ShowBeside(WindowSide /*side*/) { ShowModal(); }
    /// Ends ShowModal. The controls keep their state and can be read.
    virtual void Hide() = 0;
    /// A call of Hide that every thread may make at any time; it does nothing once the dialog is gone.
    virtual std::function<void()> Hider() = 0;
    /// Captions, tool tips and font; the layout follows the font.
    virtual TranslatableForm& Texts() = 0;
    /// The file that F1 opens.
    virtual void SetHelpFile(const std::string& path) = 0;

    virtual void SetEnabled(std::string_view control, bool isEnabled) = 0;
    virtual bool IsEnabled(std::string_view control) const = 0;
    virtual void SetFocus(std::string_view control) = 0;

    /// The text of a text box; the caption of a label, button or check box; the chosen item of a combo or
    /// list box, or empty; the typed text or chosen row of a bound list.
    virtual std::string Text(std::string_view control) const = 0;
    /// The text of a text box; the caption of a label, button or check box.
    virtual void SetText(std::string_view control, const std::string& text) = 0;
    /// What a screen reader calls a control that no label stands before.
    virtual void SetSpokenName(std::string_view control, const std::string& name) = 0;

    /// Check boxes.
    virtual bool IsChecked(std::string_view control) const = 0;
    virtual void SetChecked(std::string_view control, bool isChecked) = 0;

    /// Combo and list boxes: replaces the items and clears the selection.
    virtual void SetItems(std::string_view control, const std::vector<std::string>& items) = 0;
    /// The zero-based selection of a combo box, list box or bound list.
    virtual std::optional<std::size_t> Selected(std::string_view control) const = 0;
    /// Nullopt clears the selection, and the text typed into a bound list.
    virtual void Select(std::string_view control, std::optional<std::size_t> index) = 0;

    /// Bound lists: replaces the rows and clears the selection; null for no rows. Sources may be slow on
    /// first use, so they are read when the list is first opened or typed into. Leaving the list with a typed
    /// text chooses the first matching row, or none.
    virtual void Bind(std::string_view control, std::shared_ptr<const ListSource> rows) = 0;

    /// The path that the user chose to open, or empty.
    virtual std::string AskForFile(std::string_view control, const FileQuestion& question) = 0;
};

/// (Windows' headers define macros such as CreateDialog, which names here avoid.)
class DialogToolkit {
public:
    virtual ~DialogToolkit() = default;
    /// A hidden dialog, ready to be translated. `design` and `events` must outlive it.
    [[nodiscard]] virtual std::unique_ptr<Dialog> NewDialog(const FormDesign& design, bool isRightToLeft,
                                                            DialogEvents& events) = 0;
};

} // namespace qel
