#pragma once

#include <com/sun/star/awt/XControl.hpp>
#include <cstddef>

namespace qel::office {

/// The list that a combo box opens. The office opens it for screen readers alone, so this is one.
class DropDown {
public:
    using Control = com::sun::star::uno::Reference<com::sun::star::awt::XControl>;

    explicit DropDown(const Control& control) : control_(control) {}

    [[nodiscard]] bool IsOpen() const;
    /// Opens it as large as its first `rows` items need. The cursor stays in the text.
    void Open(std::size_t rows);
    void Close();

private:
    void Toggle() const;

    Control control_;
    std::size_t rows_ = 0; ///< for which it was opened
};

} // namespace qel::office
