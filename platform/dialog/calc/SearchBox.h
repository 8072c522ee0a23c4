#pragma once

#include "platform/dialog/DialogToolkit.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel::office {

/// A combo box over a ListSource: its list holds the rows that match what is typed.
class SearchBox {
public:
    using Model = com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet>;

    SearchBox(const Model& model, bool isRightToLeft) : model_(model), isRightToLeft_(isRightToLeft) {}

    void Bind(std::shared_ptr<const ListSource> rows);
    std::optional<std::size_t> Selected() const { return chosen_; }
    /// Raises 9 for a row that the source lacks.
    void Select(std::optional<std::size_t> row);

    /// Fills the list before its first use.
    void Prepare();
    /// The user edited the text or picked one. True when another row is chosen.
    [[nodiscard]] bool OnText();
    /// Whether the user typed a text that is not chosen yet.
    bool IsTyped() const { return isTyped_; }
    /// Chooses the row that the typed text stands for, or none. True when the choice changes.
    [[nodiscard]] bool Commit();
    /// Restores what was chosen before the user began to type.
    void TakeBack();
    /// Fills the list with all rows after a choice.
    void ShowAll();

private:
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
    std::optional<std::size_t> before_; ///< what was chosen before the user began to type
    bool isTyped_ = false;
    bool isFilled_ = false;
};

} // namespace qel::office
