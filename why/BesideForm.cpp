#include "why/BesideForm.h"

#include <utility>

namespace qel {

void BesideForm::ShowBeside(WindowSide side, std::function<void()> closed) {
    closed_ = std::move(closed);
    Form().ShowBeside(side);
}

void BesideForm::Close() {
    closed_ = {};
    Form().Hide();
}

void BesideForm::OnQueryUnload() {
    WizardForm::OnQueryUnload();
    if (const auto closed = std::exchange(closed_, {})) {
        closed();
    }
}

void BesideForm::CloseByPerson() {
    Form().Hide();
    OnQueryUnload();
}

void BesideForm::RunCommand(const std::string& name, const std::function<void()>& command) noexcept {
    ++commands_;
    Trapped(name, command);
    --commands_;
}

} // namespace qel
