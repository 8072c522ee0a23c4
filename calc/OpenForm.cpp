#include "calc/OpenForm.h"

#include <utility>

namespace qel::calc {

OpenForm::OpenForm(OpenForm*& shown, const Context& context, const Document& document,
                   std::unique_ptr<FormNeeds> needs, std::unique_ptr<BesideForm> form)
    : shown_(shown), context_(context), document_(document), needs_(std::move(needs)),
      form_(std::move(form)) {}

void OpenForm::Show(WindowSide side) {
    const rtl::Reference<OpenForm> self(this); // the document holds it from now on
    if (shown_ != nullptr) {
        shown_->Close();
    }
    shown_ = this;
    document_->addEventListener(this);
    form_->ShowBeside(side, [this] { DropLater(); });
}

void OpenForm::Close() {
    if (form_) {
        form_->Close();
        DropLater();
    }
}

void OpenForm::disposing(const com::sun::star::lang::EventObject& /*event*/) {
    document_.clear();
    if (!form_ || form_->IsBusy()) {
        return Close();
    }
    Drop();
}

void OpenForm::DropLater() {
    const rtl::Reference<OpenForm> self(this);
    drop_ = new office::LaterCall([self] { self->Drop(); });
    drop_->Post(context_);
}

void OpenForm::Drop() {
    const rtl::Reference<OpenForm> self(this);
    if (form_ && form_->IsBusy()) {
        return DropLater(); // a box of the form is open
    }
    if (drop_.is()) {
        drop_->Silence();
    }
    if (shown_ == this) {
        shown_ = nullptr;
    }
    form_.reset();
    needs_.reset();
    if (const Document document = std::exchange(document_, {}); document.is()) {
        document->removeEventListener(this);
    }
}

} // namespace qel::calc
