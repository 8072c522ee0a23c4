#pragma once

#include "platform/dialog/calc/LaterCall.h"
#include "why/BesideForm.h"

#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/lang/XEventListener.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <cppuhelper/implbase1.hxx>
#include <memory>
#include <rtl/ref.hxx>

namespace qel::calc {

/// What a form works with beside its context; it outlives the form.
struct FormNeeds {
    virtual ~FormNeeds() = default;
};

/// Keeps a form that stands beside its document until the person closes it or the document.
class OpenForm : public cppu::WeakImplHelper1<com::sun::star::lang::XEventListener> {
public:
    using Context = com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>;
    using Document = com::sun::star::uno::Reference<com::sun::star::lang::XComponent>;

    /// `shown` is where it is known as long as it is shown: one that is known there already is closed.
    OpenForm(OpenForm*& shown, const Context& context, const Document& document,
             std::unique_ptr<FormNeeds> needs, std::unique_ptr<BesideForm> form);

    void Show(WindowSide side);
    /// Takes the form away, now or when its command ends.
    void Close();

    // XEventListener: the document is gone
    void SAL_CALL disposing(const com::sun::star::lang::EventObject& event) override;

private:
    void DropLater();
    void Drop();

    OpenForm*& shown_;
    Context context_;
    Document document_;
    std::unique_ptr<FormNeeds> needs_;
    std::unique_ptr<BesideForm> form_;
    rtl::Reference<office::LaterCall> drop_;
};

} // namespace qel::calc
