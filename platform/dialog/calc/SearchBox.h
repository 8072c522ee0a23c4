#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/calc/DropDown.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel::office {

/// A combo box over a ListSource: its list holds the rows that match what is typed.
class SearchBox {
public:
    /// An open list shows no more; the others are reached by scrolling.
    static constexpr std::size_t visibleRows = 12;

    using Model = com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet>;

    SearchBox(const Model& model, bool isRightToLeft) : model_(model), isRightToLeft_(isRightToLeft) {}

    void Bind(std::shared_ptr<const ListSource> rows);
    std::optional<std::size_t> Selected() const { return chosen_; }
    /// Raises 9 for a row that the source lacks.
    void Select(std::optional<std::size_t> row);

    /// The window, once there is one.
    void Attach(const DropDown::Control& control) { list_.emplace(control); }

    [[nodiscard]] bool AreRowsRead() const { return isFilled_ || !rows_; }
    void ReadRows() const;
    /// Fills the list before its first use.
    void Prepare();
    /// The user edited the text or picked one. True when another row is chosen.
    [[nodiscard]] bool OnText();
    /// Whether Enter and Esc are the list's: a text is typed and not chosen yet, or the list is open.
    [[nodiscard]] bool IsInUse() const { return isTyped_ || IsOpen(); }
    /// Chooses the row that the typed text stands for, or none. True when the choice changes.
    [[nodiscard]] bool Commit();
    /// Restores what was chosen before the user began to type, or opened the list. True when the choice
    /// changes.
    [[nodiscard]] bool TakeBack();
    /// When the office has nothing else to do: opens the list on the matches of a text that is being typed;
    /// fills it with all rows after a choice.
    void Settle(bool hasFocus);

    /// Closes the list, if it is open.
    void Close();

private:
    bool IsOpen() const { return list_ && list_->IsOpen(); }
    std::string TypedText() const;
    void Show(const std::vector<std::uint32_t>& matches);
    void Choose(std::optional<std::size_t> row);

    /// As it is shown: a mirrored dialog's texts are marked with their direction.
    rtl::OUString Shown(const std::string& text) const;

    Model model_;
    bool isRightToLeft_;
    std::shared_ptr<const ListSource> rows_;
    std::vector<std::uint32_t> matches_;
    std::vector<std::string> shown_; ///< the texts of the matches
    std::optional<std::size_t> chosen_;
    std::optional<std::size_t> settled_; ///< what was chosen before the user began to type or to pick
    std::optional<DropDown> list_;
    std::string typed_; ///< last
    bool isTyped_ = false;
    bool opens_ = false; ///< the list, when the office has nothing else to do
    bool isFilled_ = false;
};

} // namespace qel::office
